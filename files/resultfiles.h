// Chief header of files/ for what is written (scanner.h tells the folder and what is read):
//   resultfiles.h   stamped names beside the executable, appends and closes that return their failure, and the
//                   blocks of a result file
//   verification.h  the two output files of a verification, its pattern sets and their rows
// Written files lie beside the executable, have CR LF line ends and numbers in fixed notation. A writer owns
// its CFile for one call; the paths belong to the caller.
//
// Result files: one text file per run with a block per trial (or per unit of the Error Correction
// Algorithm), for people to read. Written beside the executable (where it can't be written, in the user's
// data folder: AfxWrittenFilesDirectory). The workspace's members CreateResultFile, WriteRunResults and
// WriteErrCorResults (workspace/writtenfiles.cpp) build on the pieces declared here and show what went wrong.
#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <vector>

#include "platform/strings.h"
#include "platform/types.h"

// "%d%d%d_%d%d%d_" + suffix from a local time: year, month (1 to 12), day, hour, minute, second, none padded.
// 17 March 2011 at 14:05:27 with the suffix "result.txt" gives 2011317_14527_result.txt.
std::string TimestampedFileName(const struct tm& local, const char* suffix);

// "NAME.N.EXT" for the path "NAME.EXT" (or "NAME.N" when it has no extension).
std::string AsideName(const std::string& path, int number);

// The one maker of stamped files: creates an empty file in AfxWrittenFilesDirectory, named from the local
// time of its creation by TimestampedFileName, and fills path. When that name is taken (a run in the same
// second, in this window or another beside the same program, or another moment whose unpadded digits read
// alike), the file gets the first free AsideName, N counting from 1: the higher N, the later the file, and
// nothing a user kept is emptied or moved. False when no file could be created; error then receives the
// system's error number.
bool CreateStampedFile(const char* suffix, CString& path, int& error);
// The same for the moment local.
bool CreateStampedFile(const char* suffix, const struct tm& local, CString& path, int& error);

// The information line of a written file that could not be made or opened: its name, its folder and the
// cause, "Cannot write NAME in FOLDER: CAUSE.".
CString WriteFailureLine(const CString& path, int error);

class CFile;
// Closes a file that was written. When the close or a write before it failed (a full disk, a size limit),
// returns what the window shows under "Error": the file and the cause; what the file holds is then
// incomplete. Returns an empty text when everything was written.
CString CloseWrittenFile(CFile& file, const CString& path);

// Appends the pieces to the end of the existing file at path, one write each, and closes it. After a write
// or close that fails, failure is what CloseWrittenFile gave and path is emptied: nothing more is written to a
// file known to be incomplete, and a call with an empty path does nothing (WriteFailed, no failure). A file
// that can't be opened gives no failure text: the caller has its own message for it, and openError receives
// the system's error number.
enum class AppendResult { Written, CannotOpen, WriteFailed };
AppendResult AppendToFile(CString& path, const std::vector<std::string>& pieces, CString& failure, int& openError);

// One array on one line: each element as "%.6f", one blank between them, then "\r\n". An infinity or a NaN,
// which a diverging training can leave, prints as the C library writes it ("inf", "-inf", "nan", "-nan").
std::string ValueLine(const double* values, std::size_t count);

// The four arrays of one section of a block.
struct CResultSection {
    const double* inputWeights;   // units x inputs
    const double* outputWeights;  // units + 1, the bias first
    const double* centers;        // units x inputs
    const double* widths;         // units
};

// The writes of one block, in order: each text line, and each value line whole. Without initial the block
// has no Initial Conditions section (the Error Correction Algorithm keeps no initial copies).
std::vector<std::string> ResultBlock(UINT units, UINT inputs, UINT iterations, double error,
                                     const CResultSection* initial, const CResultSection& trained);
