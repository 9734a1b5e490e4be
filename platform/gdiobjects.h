// The objects a device context draws with: pens, brushes, fonts and bitmaps (drawing.h has the contexts).
#pragma once

#include <memory>

#include "platform/strings.h"
#include "platform/types.h"

class CDC;

constexpr int PS_SOLID = 0;
constexpr int PS_DASH = 1;
constexpr int PS_DOT = 2;
constexpr int PS_NULL = 5;

constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

class CGdiObject {
public:
    virtual ~CGdiObject() = default;
};

class CPen : public CGdiObject {
public:
    CPen() = default;
    CPen(int style, int width, COLORREF color) { CreatePen(style, width, color); }
    BOOL CreatePen(int style, int width, COLORREF color);
    BOOL DeleteObject() { m_created = false; return TRUE; }

    int m_style = PS_SOLID;
    int m_width = 1;
    COLORREF m_color = 0;
    bool m_created = false;
};

class CBrush : public CGdiObject {
public:
    CBrush() = default;
    explicit CBrush(COLORREF color) { CreateSolidBrush(color); }
    BOOL CreateSolidBrush(COLORREF color);
    BOOL DeleteObject() { m_created = false; return TRUE; }

    COLORREF m_color = 0;
    bool m_created = false;
};

class CFont : public CGdiObject {
public:
    // pointSize is in tenths of a point (110 is 11 points). Faces that this system lacks fall back to
    // metric-compatible ones ("Times New Roman" to a serif, "MS Sans Serif" to a sans face).
    BOOL CreatePointFont(int pointSize, LPCTSTR faceName, CDC* dc = nullptr);
    BOOL DeleteObject() { m_created = false; return TRUE; }

    int m_pointSizeTenths = 100;
    CString m_face;
    bool m_created = false;
};

class CBitmap : public CGdiObject {
public:
    CBitmap();
    ~CBitmap() override;
    BOOL CreateCompatibleBitmap(CDC* dc, int width, int height);
    BOOL DeleteObject();
    // Width and height in pixels; 0 before creation.
    int Width() const;
    int Height() const;
    // The pixel at (x, y) as RGB, for tests; 0 outside.
    COLORREF GetPixel(int x, int y) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
    friend class CDC;
};
