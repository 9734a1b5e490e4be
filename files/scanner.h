// Chief header of files/, for what is read (resultfiles.h is the chief header for what is written). files/
// holds the formats of every text file that Vantrel reads or writes, and nothing of the window: a reader or a
// writer returns what went wrong, and the window (workspace/, training/, shell/) shows it.
//   scanner.h      the number-row scanner below, which every file of numbers goes through
//   datafile.h     files of patterns: the data set, the testing file, new data; the acceptance of a data set
//   paramfile.h    the parameter file
// May include: platform/'s strings and files, and engine/; never workspace/, training/ or shell/. The Python
// module and the fuzz targets use these readers as the window does.
// Owns: nothing beyond a call. A reader fills what its caller hands it; a text read whole is its caller's.
//
// The number-row scanner: the one way numbers are read from text. Data set files, parameter files, testing
// files and the new data of online training all go through it.
//
// Text. A file is read whole; the text ends at its first NUL byte, and "\r\n" is appended in memory, so every
// row ends in LF whether or not the file's last line has a line end.
//
// Number characters are the digits, '.', '-', '+', 'E' and 'e'; every other byte separates.
//
// Row. A row begins at a number character and ends at the next LF. The LF and the one byte before it are not
// part of the row (the format's line end is CR LF; in a line ended by a bare LF that byte is the line's last
// character and is lost all the same), and trailing separators are stripped. A line without any number
// character is no row.
//
// Token. A maximal run of number characters within a row; its value is what atof makes of it.
//
// Plain C++ on the standard library (files through the platform's CFile), usable without any window.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

inline bool IsNumberChar(char c) {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'E' || c == 'e';
}

// The text of a file's bytes: cut at the first NUL, with "\r\n" appended.
std::string MakeScanText(const char* bytes, std::size_t length);

enum class ReadTextResult { Ok, CannotOpen, NoMemory };

// The message of every file of numbers that does not open.
inline constexpr const char* kCannotOpenFile = "Sorry, Cannot Open File!";

// Reads the file at path whole into text (as MakeScanText makes it). On CannotOpen or NoMemory, text is
// left as it was.
ReadTextResult ReadScanText(const char* path, std::string& text);

// Walks the rows of a text from its start.
class CRowScanner {
public:
    explicit CRowScanner(std::string_view text) : m_text(text) {}
    // Walks to the next number character and cuts the row that begins there; the scanner then stands behind
    // the row's LF. False when the text holds no further number character.
    bool NextRow(std::string_view& row);

private:
    std::string_view m_text;
    std::size_t m_pos = 0;
};

// Walks the tokens of one row from left to right.
class CTokenScanner {
public:
    explicit CTokenScanner(std::string_view row) : m_row(row) {}
    bool NextToken(std::string_view& token);

private:
    std::string_view m_row;
    std::size_t m_pos = 0;
};

// The value of a token, as atof reads it: only a valid leading part counts, and a token without one (a lone
// 'e', '-' or '+') is 0.
double TokenValue(std::string_view token);

std::size_t CountTokens(std::string_view row);

// Rows of the text: the lines that hold a number character.
std::size_t CountRows(std::string_view text);

// Scans the next row of scanner into values (emptied first); returns the row's token count, which is 0 when
// the text has no further row.
std::size_t ScanRowValues(CRowScanner& scanner, std::vector<double>& values);
