#include "files/scanner.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

#include "platform/files.h"
#include "engine/memory.h"

std::string MakeScanText(const char* bytes, std::size_t length) {
    const void* nul = std::memchr(bytes, '\0', length);
    const std::size_t used = nul != nullptr ? static_cast<std::size_t>(static_cast<const char*>(nul) - bytes) : length;
    std::string text;
    text.reserve(used + 2);
    text.append(bytes, used);
    text.append("\r\n");
    return text;
}

ReadTextResult ReadScanText(const char* path, std::string& text) {
    CFile file;
    if (!file.Open(path, CFile::modeRead)) return ReadTextResult::CannotOpen;
    const unsigned long long length = file.GetLength();
    // The bytes and the text made of them live side by side for a moment.
    if (!engine::MemoryFits(2.0 * length)) return ReadTextResult::NoMemory;
    try {
        std::string bytes;
        bytes.resize(static_cast<std::size_t>(length));
        // Read takes a 32-bit count: a file beyond 4 GB comes in pieces.
        std::size_t done = 0;
        while (done < bytes.size()) {
            const std::size_t piece = std::min<std::size_t>(bytes.size() - done, 1u << 30);
            const UINT got = file.Read(&bytes[done], static_cast<UINT>(piece));
            if (got == 0) break;
            done += got;
        }
        // A read that fails half-way would pass for a shorter file.
        if (file.GetError() != 0) return ReadTextResult::CannotOpen;
        file.Close();
        bytes.resize(done);
        text = MakeScanText(bytes.data(), bytes.size());
    } catch (const std::bad_alloc&) {
        return ReadTextResult::NoMemory;
    } catch (const std::length_error&) {  // a length beyond what a string can hold
        return ReadTextResult::NoMemory;
    }
    return ReadTextResult::Ok;
}

bool CRowScanner::NextRow(std::string_view& row) {
    while (m_pos < m_text.size() && !IsNumberChar(m_text[m_pos])) ++m_pos;
    if (m_pos >= m_text.size()) return false;
    const std::size_t begin = m_pos;
    std::size_t lf = m_text.find('\n', begin);
    if (lf == std::string_view::npos) lf = m_text.size();  // only for a text that lacks the appended line end
    m_pos = lf < m_text.size() ? lf + 1 : lf;
    // The byte before the LF goes with the line end (the CR of CR LF). When the row's first character is
    // that byte, the row is empty.
    std::size_t end = lf > begin ? lf - 1 : begin;
    while (end > begin && !IsNumberChar(m_text[end - 1])) --end;
    row = m_text.substr(begin, end - begin);
    return true;
}

bool CTokenScanner::NextToken(std::string_view& token) {
    while (m_pos < m_row.size() && !IsNumberChar(m_row[m_pos])) ++m_pos;
    if (m_pos >= m_row.size()) return false;
    const std::size_t begin = m_pos;
    while (m_pos < m_row.size() && IsNumberChar(m_row[m_pos])) ++m_pos;
    token = m_row.substr(begin, m_pos - begin);
    return true;
}

// A token of more than 19 characters is read whole. Such a token is valid data from a program that prints
// many digits ("0.12345678901234567890"); cutting it at 19 characters would silently change its value
// ("1.00000000000000000001e5" would lose its exponent), and refusing it would turn away a good file.
double TokenValue(std::string_view token) {
    char buffer[64];
    if (token.size() < sizeof buffer) {
        std::memcpy(buffer, token.data(), token.size());
        buffer[token.size()] = '\0';
        return std::atof(buffer);
    }
    return std::atof(std::string(token).c_str());
}

namespace {

// The pieces that a scanner of text walks through, counted.
template <class Scanner, bool (Scanner::*Next)(std::string_view&)>
std::size_t CountPieces(std::string_view text) {
    Scanner scanner(text);
    std::string_view piece;
    std::size_t count = 0;
    while ((scanner.*Next)(piece)) ++count;
    return count;
}

}  // namespace

std::size_t CountTokens(std::string_view row) { return CountPieces<CTokenScanner, &CTokenScanner::NextToken>(row); }

std::size_t CountRows(std::string_view text) { return CountPieces<CRowScanner, &CRowScanner::NextRow>(text); }

std::size_t ScanRowValues(CRowScanner& scanner, std::vector<double>& values) {
    values.clear();
    std::string_view row;
    if (!scanner.NextRow(row)) return 0;
    CTokenScanner tokens(row);
    std::string_view token;
    while (tokens.NextToken(token)) values.push_back(TokenValue(token));
    return values.size();
}
