// CString: the text type of the dialog layer, a byte string with printf formatting.
#pragma once

#include <string>

#include "platform/types.h"

class CString {
public:
    CString() = default;
    CString(const char* text) : m_text(text ? text : "") {}  // NOLINT: implicit as in the API it mirrors
    CString(const std::string& text) : m_text(text) {}       // NOLINT
    CString(const char* text, int length) : m_text(text, static_cast<size_t>(length)) {}

    // printf-style formatting. Numbers are always written with the C locale (see the start-up code).
    void Format(const char* format, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 2, 3)))
#endif
        ;

    int GetLength() const { return static_cast<int>(m_text.size()); }
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    char GetAt(int index) const { return m_text[static_cast<size_t>(index)]; }

    // Index of the last occurrence of ch, or -1.
    int ReverseFind(char ch) const;
    // Index of the first occurrence of text at or after start, or -1.
    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    operator const char*() const { return m_text.c_str(); }  // NOLINT: LPCTSTR conversion
    const std::string& str() const { return m_text; }

    CString& operator+=(const CString& other) { m_text += other.m_text; return *this; }
    CString& operator+=(const char* other) { m_text += other; return *this; }
    CString& operator+=(char ch) { m_text += ch; return *this; }

    friend CString operator+(const CString& a, const CString& b) { return CString(a.m_text + b.m_text); }
    friend CString operator+(const CString& a, const char* b) { return CString(a.m_text + b); }
    friend CString operator+(const char* a, const CString& b) { return CString(a + b.m_text); }
    friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CString& a, const char* b) { return a.m_text == b; }
    friend bool operator!=(const CString& a, const CString& b) { return a.m_text != b.m_text; }
    friend bool operator!=(const CString& a, const char* b) { return a.m_text != b; }

private:
    std::string m_text;
};
