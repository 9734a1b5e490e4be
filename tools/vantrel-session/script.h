// The session language: one command a line, parsed and checked whole before anything runs.
#pragma once

#include <string>
#include <vector>

#include "tools/scripted/scripted.h"

struct SessionCommand {
    int line = 0;
    std::string name;               // the command word
    std::vector<std::string> args;  // the tokens after it, quotes removed
    std::string source;             // the line as written, trimmed
    // "dialog": the template and its actions
    int idd = 0;
    std::vector<CScriptedPrompts::DialogAction> actions;
};

struct SessionScriptError {
    int line = 0;
    std::string message;
};

// Splits a line into tokens: blanks separate, a double-quoted token may hold blanks. False on an open quote.
bool TokenizeLine(const std::string& line, std::vector<std::string>& tokens);

// Parses a whole script. On the first error fills error and returns false.
bool ParseSessionScript(const std::string& text, std::vector<SessionCommand>& commands, SessionScriptError& error);

// A whole token as a number; false if it is not one.
bool ParseIntToken(const std::string& token, int& value);
