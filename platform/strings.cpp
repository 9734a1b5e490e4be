#include "platform/strings.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

void CString::Format(const char* format, ...) {
    // Most texts are short read-outs written after every iteration: format into the stack first and touch
    // the heap only for a longer text.
    char small[128];
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    const int needed = std::vsnprintf(small, sizeof small, format, copy);
    va_end(copy);
    if (needed < 0) {
        m_text.clear();
    } else if (static_cast<size_t>(needed) < sizeof small) {
        m_text.assign(small, static_cast<size_t>(needed));
    } else {
        std::vector<char> buffer(static_cast<size_t>(needed) + 1);
        std::vsnprintf(buffer.data(), buffer.size(), format, args);
        m_text.assign(buffer.data(), static_cast<size_t>(needed));
    }
    va_end(args);
}

int CString::ReverseFind(char ch) const {
    const size_t pos = m_text.rfind(ch);
    return pos == std::string::npos ? -1 : static_cast<int>(pos);
}


CString CString::Left(int count) const {
    if (count <= 0) return CString();
    return CString(m_text.substr(0, static_cast<size_t>(count)));
}

CString CString::Right(int count) const {
    if (count <= 0) return CString();
    const size_t n = static_cast<size_t>(count);
    return n >= m_text.size() ? *this : CString(m_text.substr(m_text.size() - n));
}

CString CString::Mid(int first) const {
    if (first < 0) first = 0;
    if (static_cast<size_t>(first) >= m_text.size()) return CString();
    return CString(m_text.substr(static_cast<size_t>(first)));
}

CString CString::Mid(int first, int count) const {
    if (first < 0) first = 0;
    if (count <= 0 || static_cast<size_t>(first) >= m_text.size()) return CString();
    return CString(m_text.substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

