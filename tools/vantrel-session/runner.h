// Runs a parsed session against the real main dialog, hidden, through the handlers a click reaches.
#pragma once

#include <string>
#include <vector>

#include "script.h"

// Exit codes of a session.
enum SessionExit { kSessionDone = 0, kSessionScriptError = 2, kSessionTimeout = 3 };

// Runs the commands; relative paths are taken from scriptDir, but those of the pictures that the session
// writes from outputDir. Prints the transcript to standard output and script errors to standard error.
// Returns the exit code.
int RunSession(const std::vector<SessionCommand>& commands, const std::string& scriptDir,
               const std::string& outputDir);
