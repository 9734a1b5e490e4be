// Scalar types, constants and message numbers of the dialog layer.
// Values follow the desktop API that the rest of the code is written against, so that code reads the
// same and numbers written into scripts (control IDs, commands) mean what they say.
#pragma once

#include <cstdint>

using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using BOOL = int;
using BYTE = std::uint8_t;
using INT_PTR = std::intptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using LPCTSTR = const char*;
using LPTSTR = char*;
using COLORREF = std::uint32_t;
using HICON = int;  // an icon is named by its resource number
using HCURSOR = int;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define RGB(r, g, b) \
    ((COLORREF)(((BYTE)(r) | ((std::uint32_t)(BYTE)(g) << 8)) | (((std::uint32_t)(BYTE)(b)) << 16)))
#define GetRValue(c) ((BYTE)(c))
#define GetGValue(c) ((BYTE)((c) >> 8))
#define GetBValue(c) ((BYTE)((c) >> 16))

struct RECT {
    long left = 0, top = 0, right = 0, bottom = 0;
};

struct POINT {
    long x = 0, y = 0;
};

class CRect : public RECT {
public:
    CRect() = default;
    CRect(long l, long t, long r, long b) { left = l; top = t; right = r; bottom = b; }
    long Width() const { return right - left; }
    long Height() const { return bottom - top; }
};

class CPoint : public POINT {
public:
    CPoint() = default;
    CPoint(long px, long py) { x = px; y = py; }
};

BOOL PtInRect(const RECT* rect, POINT pt);

// Dialog results and standard button IDs.
constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;

// Message box styles.
constexpr UINT MB_OK = 0x0;
constexpr UINT MB_ICONHAND = 0x10;
constexpr UINT MB_ICONSTOP = MB_ICONHAND;
constexpr UINT MB_ICONQUESTION = 0x20;
constexpr UINT MB_ICONEXCLAMATION = 0x30;
constexpr UINT MB_ICONINFORMATION = 0x40;
constexpr UINT MB_ICONMASK = 0xF0;

// Window messages that the system sends or handles.
constexpr UINT WM_SETICON = 0x0080;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_PAINT = 0x000F;
constexpr UINT WM_ICONERASEBKGND = 0x0027;
constexpr UINT WM_QUERYDRAGICON = 0x0037;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT WM_SYSCOMMAND = 0x0112;
constexpr UINT WM_RBUTTONDOWN = 0x0204;

constexpr UINT ICON_SMALL = 0;
constexpr UINT ICON_BIG = 1;

// Notification codes carried by WM_COMMAND.
constexpr UINT BN_CLICKED = 0;
constexpr UINT CBN_SELCHANGE = 1;

// Button messages.
constexpr UINT BM_GETCHECK = 0x00F0;
constexpr UINT BM_SETCHECK = 0x00F1;
constexpr int BST_UNCHECKED = 0;
constexpr int BST_CHECKED = 1;

// List box messages. ADDSTRING puts a line in its sorted place in a sorted box, at the end in others;
// INSERTSTRING puts it at the index given, sorted box or not.
constexpr UINT LB_ADDSTRING = 0x0180;
constexpr UINT LB_INSERTSTRING = 0x0181;
constexpr UINT LB_RESETCONTENT = 0x0184;
constexpr UINT LB_SETCURSEL = 0x0186;
constexpr UINT LB_GETCURSEL = 0x0188;
constexpr UINT LB_GETCOUNT = 0x018B;

// Combo box messages.
constexpr UINT CB_ADDSTRING = 0x0143;
constexpr UINT CB_GETCOUNT = 0x0146;
constexpr UINT CB_GETCURSEL = 0x0147;
constexpr UINT CB_INSERTSTRING = 0x014A;
constexpr UINT CB_RESETCONTENT = 0x014B;
constexpr UINT CB_SETCURSEL = 0x014E;

constexpr LRESULT LB_ERR = -1;
constexpr LRESULT CB_ERR = -1;

// Menus.
constexpr UINT MF_STRING = 0x0;
constexpr UINT MF_SEPARATOR = 0x800;
constexpr UINT TPM_LEFTALIGN = 0x0;
constexpr UINT TPM_RIGHTBUTTON = 0x2;

// System metrics.
constexpr int SM_CXICON = 11;
constexpr int SM_CYICON = 12;
int GetSystemMetrics(int index);

// Show commands.
constexpr int SW_SHOW = 5;
