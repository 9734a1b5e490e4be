// Data exchange between dialog fields and controls.
#include <cctype>
#include <cerrno>
#include <cmath>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/dialoglink.h"
#include "platform/prompt.h"
#include "platform/shared.h"
#include "platform/window.h"

namespace {

platform::DialogControls* WindowWith(CDataExchange* dx, int id) {
    platform::DialogControls* window = dx->m_pDlgWnd != nullptr ? dx->m_pDlgWnd->Window() : nullptr;
    return (window != nullptr && window->HasControl(id)) ? window : nullptr;
}

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return std::string();
    const size_t last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

// The framework's own prompt for a text that does not parse; the exchange stops at that field.
[[noreturn]] void Refuse(CDataExchange* dx, const char* prompt) {
    AfxPromptHook().MessageBox(dx->m_pDlgWnd, prompt, AfxAppTitle(), MB_ICONEXCLAMATION);
    dx->Fail();
}

// A decimal number as a user types it: a sign, digits with at most one point (at least one digit), and an
// exponent. The C library reads more ("nan", "inf", hexadecimal "0x1p-3"), none of which a field of this
// program can use: a NaN passes every comparison that guards a setting.
bool IsDecimalNumber(const std::string& t) {
    size_t i = 0, digits = 0;
    auto run = [&] {
        size_t n = 0;
        while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i, ++n;
        return n;
    };
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    digits += run();
    if (i < t.size() && t[i] == '.') ++i, digits += run();
    if (digits == 0) return false;
    if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
        ++i;
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
        if (run() == 0) return false;
    }
    return i == t.size();
}

// The parsers store whole values, and a field is shown from a whole value: a run may be reading the field, or
// writing the one bound to a read-out (see shared.h).
bool ParseDouble(const std::string& text, double& value) {
    const std::string t = Trimmed(text);
    if (!IsDecimalNumber(t)) return false;
    const double parsed = std::strtod(t.c_str(), nullptr);
    if (!std::isfinite(parsed)) return false;  // beyond the largest double ("1e400")
    AfxWriteShared(value, parsed);
    return true;
}

bool ParseUnsigned(const std::string& text, UINT& value) {
    const std::string t = Trimmed(text);
    if (t.empty() || t[0] == '-') return false;
    char* end = nullptr;
    errno = 0;
    const unsigned long long parsed = std::strtoull(t.c_str(), &end, 10);
    if (end != t.c_str() + t.size() || errno == ERANGE || parsed > UINT_MAX) return false;
    AfxWriteShared(value, static_cast<UINT>(parsed));
    return true;
}

bool ParseInt(const std::string& text, int& value) {
    const std::string t = Trimmed(text);
    if (t.empty()) return false;
    char* end = nullptr;
    errno = 0;
    const long long parsed = std::strtoll(t.c_str(), &end, 10);
    if (end != t.c_str() + t.size() || errno == ERANGE || parsed < INT_MIN || parsed > INT_MAX) return false;
    AfxWriteShared(value, static_cast<int>(parsed));
    return true;
}

std::string ShowDouble(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

template <class Number>
std::string ShowWhole(Number value) {
    return std::to_string(value);
}

// A number's exchange: shown as show writes it; read back by parse, or refused with the framework's prompt.
template <class Number>
void ExchangeNumber(CDataExchange* dx, int id, Number& value, bool (*parse)(const std::string&, Number&),
                    std::string (*show)(Number), const char* prompt) {
    platform::DialogControls* window = WindowWith(dx, id);
    if (window == nullptr) return;
    if (dx->m_bSaveAndValidate) {
        if (!parse(window->Text(id), value)) Refuse(dx, prompt);
    } else {
        window->SetText(id, show(AfxReadShared(value)));
    }
}

}  // namespace

void DDX_Text(CDataExchange* dx, int id, double& value) {
    ExchangeNumber(dx, id, value, ParseDouble, ShowDouble, "Please enter a number.");
}

void DDX_Text(CDataExchange* dx, int id, UINT& value) {
    ExchangeNumber(dx, id, value, ParseUnsigned, ShowWhole<UINT>, "Please enter a positive integer.");
}

void DDX_Text(CDataExchange* dx, int id, int& value) {
    ExchangeNumber(dx, id, value, ParseInt, ShowWhole<int>, "Please enter an integer.");
}

void DDX_Text(CDataExchange* dx, int id, CString& value) {
    platform::DialogControls* window = WindowWith(dx, id);
    if (window == nullptr) return;
    if (dx->m_bSaveAndValidate) value = CString(window->Text(id));
    else window->SetText(id, value.str());
}

void DDX_Check(CDataExchange* dx, int id, int& value) {
    platform::DialogControls* window = WindowWith(dx, id);
    if (window == nullptr) return;
    if (dx->m_bSaveAndValidate) AfxWriteShared(value, window->Send(id, BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0);
    else window->Send(id, BM_SETCHECK, value != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
}

void DDX_Radio(CDataExchange* dx, int id, int& value) {
    platform::DialogControls* window = WindowWith(dx, id);
    if (window == nullptr) return;
    const std::vector<int> group = window->RadioGroupOf(id);
    if (dx->m_bSaveAndValidate) {
        int checked = -1;
        for (size_t i = 0; i < group.size(); ++i)
            if (window->Send(group[i], BM_GETCHECK, 0, 0) == BST_CHECKED) checked = static_cast<int>(i);
        AfxWriteShared(value, checked);
    } else {
        for (size_t i = 0; i < group.size(); ++i)
            window->Send(group[i], BM_SETCHECK, static_cast<int>(i) == value ? BST_CHECKED : BST_UNCHECKED, 0);
    }
}

void DDX_Control(CDataExchange* dx, int id, CWnd& control) {
    if (WindowWith(dx, id) != nullptr) control.SubclassDlgItem(static_cast<UINT>(id), dx->m_pDlgWnd);
}
