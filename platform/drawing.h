// Drawing: device contexts over an image, drawing with the objects of gdiobjects.h.
//
// A CPaintDC paints a control during its paint; a memory DC (CreateCompatibleDC) draws into a CBitmap, and
// BitBlt copies it. Coordinates are pixels of the control's client area. Lines leave out their last pixel
// and rectangles and ellipses their right and bottom edge, as the desktop API they stand in for does.
#pragma once

#include <memory>

#include "platform/gdiobjects.h"
#include "platform/strings.h"
#include "platform/types.h"

class CWnd;

namespace platform {
struct DcState;
}

constexpr DWORD SRCCOPY = 0x00CC0020;

constexpr UINT DT_LEFT = 0x0;
constexpr UINT DT_CENTER = 0x1;
constexpr UINT DT_RIGHT = 0x2;
constexpr UINT DT_VCENTER = 0x4;
constexpr UINT DT_SINGLELINE = 0x20;

class CDC {
public:
    CDC();
    virtual ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    // A memory DC compatible with dc; draws into the bitmap selected into it.
    BOOL CreateCompatibleDC(CDC* dc);
    BOOL DeleteDC();

    CPen* SelectObject(CPen* pen);
    CBrush* SelectObject(CBrush* brush);
    CFont* SelectObject(CFont* font);
    CBitmap* SelectObject(CBitmap* bitmap);

    int SetBkMode(int mode);
    COLORREF SetTextColor(COLORREF color);

    void FillSolidRect(const RECT* rect, COLORREF color);
    CPoint MoveTo(int x, int y);
    BOOL LineTo(int x, int y);
    BOOL Ellipse(int x1, int y1, int x2, int y2);
    BOOL Rectangle(int x1, int y1, int x2, int y2);
    COLORREF SetPixel(int x, int y, COLORREF color);
    BOOL TextOut(int x, int y, const CString& text);
    int DrawText(const CString& text, RECT* rect, UINT format);
    BOOL DrawIcon(int x, int y, HICON icon);
    BOOL BitBlt(int x, int y, int width, int height, CDC* source, int xSource, int ySource, DWORD rop);


protected:
    std::unique_ptr<platform::DcState> m_state;
    friend class CBitmap;
};

// The DC of a control's paint: draws on the control's window. Outside the paint of that window, or for a
// window that has none, it draws nothing.
class CPaintDC : public CDC {
public:
    explicit CPaintDC(CWnd* window);
    ~CPaintDC() override;
};
