// The drawing layer, checked pixel by pixel in a bitmap drawn through a memory DC.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <set>

#include "platform/drawing.h"
#include "platform/templates.h"

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBlack = RGB(0, 0, 0);
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kGreen = RGB(0, 255, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);

// A white canvas of the given size, selected into a memory DC.
class Canvas {
public:
    Canvas(int width, int height) {
        dc.CreateCompatibleDC(nullptr);
        bitmap.CreateCompatibleBitmap(&dc, width, height);
        old = dc.SelectObject(&bitmap);
        RECT all{0, 0, width, height};
        dc.FillSolidRect(&all, kWhite);
    }
    ~Canvas() { dc.SelectObject(old); }
    COLORREF At(int x, int y) const { return bitmap.GetPixel(x, y); }
    // A line from (x0, y0) to (x1, y1) with the pen that is selected.
    void Line(int x0, int y0, int x1, int y1) {
        dc.MoveTo(x0, y0);
        dc.LineTo(x1, y1);
    }
    // The bounding box of pixels that are not white; empty (right < left) when there are none.
    RECT Inked() const {
        RECT box{bitmap.Width(), bitmap.Height(), -1, -1};
        for (int y = 0; y < bitmap.Height(); ++y)
            for (int x = 0; x < bitmap.Width(); ++x)
                if (At(x, y) != kWhite) {
                    box.left = std::min<long>(box.left, x);
                    box.top = std::min<long>(box.top, y);
                    box.right = std::max<long>(box.right, x);
                    box.bottom = std::max<long>(box.bottom, y);
                }
        return box;
    }

    CDC dc;
    CBitmap bitmap;
    CBitmap* old = nullptr;
};

}  // namespace

TEST(DrawingLines, LineLeavesOutItsLastPixel) {
    Canvas c(40, 40);
    CPen pen(PS_SOLID, 1, kBlack);
    c.dc.SelectObject(&pen);
    c.Line(2, 5, 10, 5);
    for (int x = 2; x < 10; ++x) EXPECT_EQ(c.At(x, 5), kBlack) << "pixel " << x << " of the line is missing";
    EXPECT_EQ(c.At(10, 5), kWhite) << "the end pixel of a line must be left out";
    EXPECT_EQ(c.At(1, 5), kWhite);

    c.Line(20, 30, 20, 20);  // upward
    for (int y = 21; y <= 30; ++y) EXPECT_EQ(c.At(20, y), kBlack) << "vertical line, row " << y;
    EXPECT_EQ(c.At(20, 20), kWhite) << "the end pixel of an upward line must be left out";

    c.Line(0, 10, 10, 20);  // diagonal
    for (int i = 0; i < 10; ++i) EXPECT_EQ(c.At(i, 10 + i), kBlack) << "diagonal step " << i;
    EXPECT_EQ(c.At(10, 20), kWhite);
}

TEST(DrawingLines, DottedPenLeavesGapsOfThreePixels) {
    Canvas c(40, 5);
    CPen dotted(PS_DOT, 1, RGB(0xD2, 0xD2, 0xD2));
    c.dc.SelectObject(&dotted);
    c.Line(0, 2, 30, 2);
    std::string pattern;
    for (int x = 0; x < 12; ++x) pattern += c.At(x, 2) == RGB(0xD2, 0xD2, 0xD2) ? '#' : '.';
    EXPECT_EQ(pattern, "###...###...") << "a dotted line alternates three pixels on and three off";
}

TEST(DrawingLines, WidePenCoversTwoColumnsAndItsEnd) {
    Canvas c(20, 20);
    CPen pen(PS_SOLID, 2, kBlack);
    c.dc.SelectObject(&pen);
    c.Line(10, 2, 10, 15);
    EXPECT_EQ(c.At(9, 8), kBlack);
    EXPECT_EQ(c.At(10, 8), kBlack);
    EXPECT_EQ(c.At(11, 8), kWhite) << "a pen of width 2 is two pixels wide";
    EXPECT_EQ(c.At(10, 15), kBlack) << "a wide pen's round end covers the last pixel";
}

TEST(DrawingLines, LinesFarBeyondTheBitmapAreClippedQuickly) {
    Canvas c(50, 50);
    CPen pen(PS_SOLID, 1, kBlack);
    c.dc.SelectObject(&pen);
    const auto start = std::chrono::steady_clock::now();
    c.Line(-1000000, 25, 1000000, 25);
    c.Line(25, -1000000, 26, 1000000);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LT(seconds, 1.0) << "clipping must not walk millions of invisible pixels";
    EXPECT_EQ(c.At(0, 25), kBlack);
    EXPECT_EQ(c.At(49, 25), kBlack);
}

TEST(DrawingShapes, RectangleHasPenOutlineBrushInsideAndExclusiveEdges) {
    Canvas c(30, 30);
    CPen pen(PS_SOLID, 1, kBlue);
    CBrush brush(kGreen);
    c.dc.SelectObject(&pen);
    c.dc.SelectObject(&brush);
    c.dc.Rectangle(5, 5, 15, 12);
    EXPECT_EQ(c.At(5, 5), kBlue) << "top-left corner is outline";
    EXPECT_EQ(c.At(14, 11), kBlue) << "bottom-right pixel inside the box is outline";
    EXPECT_EQ(c.At(10, 5), kBlue);
    EXPECT_EQ(c.At(5, 8), kBlue);
    EXPECT_EQ(c.At(10, 8), kGreen) << "the inside is the brush's colour";
    EXPECT_EQ(c.At(15, 8), kWhite) << "the right edge is exclusive";
    EXPECT_EQ(c.At(10, 12), kWhite) << "the bottom edge is exclusive";
}

TEST(DrawingShapes, EllipseIsRoundFilledAndStaysInsideItsBox) {
    Canvas c(30, 30);
    CPen pen(PS_SOLID, 1, kRed);
    CBrush brush(kGreen);
    c.dc.SelectObject(&pen);
    c.dc.SelectObject(&brush);
    c.dc.Ellipse(10 - 3, 10 - 3, 10 + 3, 10 + 3);
    EXPECT_EQ(c.At(10, 10), kGreen) << "the centre is filled with the brush";
    EXPECT_EQ(c.At(7, 10), kRed) << "the left edge is outlined with the pen";
    EXPECT_EQ(c.At(7, 7), kWhite) << "the box's corner is not part of the ellipse";
    const RECT ink = c.Inked();
    EXPECT_EQ(ink.left, 7);
    EXPECT_EQ(ink.top, 7);
    EXPECT_EQ(ink.right, 12) << "right edge of the box is exclusive";
    EXPECT_EQ(ink.bottom, 12) << "bottom edge of the box is exclusive";
}

TEST(DrawingPixels, SetPixelSetsAndReportsTheColour) {
    Canvas c(10, 10);
    EXPECT_EQ(c.dc.SetPixel(3, 4, RGB(0x12, 0x34, 0x56)), RGB(0x12, 0x34, 0x56));
    EXPECT_EQ(c.At(3, 4), RGB(0x12, 0x34, 0x56)) << "COLORREF is 0x00BBGGRR";
    EXPECT_EQ(c.dc.SetPixel(10, 4, kBlack), static_cast<COLORREF>(-1)) << "outside the bitmap";
    EXPECT_EQ(c.dc.SetPixel(-1, 4, kBlack), static_cast<COLORREF>(-1));
}

TEST(DrawingPixels, FillSolidRectCoversLeftTopUpToRightBottomExclusive) {
    Canvas c(10, 10);
    RECT r{2, 3, 6, 8};
    c.dc.FillSolidRect(&r, kBlue);
    const RECT ink = c.Inked();
    EXPECT_EQ(ink.left, 2);
    EXPECT_EQ(ink.top, 3);
    EXPECT_EQ(ink.right, 5);
    EXPECT_EQ(ink.bottom, 7);
    EXPECT_EQ(c.At(4, 5), kBlue);
}

TEST(DrawingCopy, BitBltCopiesARegionAndClipsAtTheEdges) {
    Canvas source(20, 20);
    source.dc.SetPixel(2, 3, kRed);
    source.dc.SetPixel(5, 5, kBlue);
    Canvas target(20, 20);
    ASSERT_TRUE(target.dc.BitBlt(10, 10, 8, 8, &source.dc, 0, 0, SRCCOPY));
    EXPECT_EQ(target.At(12, 13), kRed);
    EXPECT_EQ(target.At(15, 15), kBlue);
    EXPECT_EQ(target.At(2, 3), kWhite) << "only the destination rectangle changes";
    // Beyond the destination's edge the copy is clipped, not wrapped.
    ASSERT_TRUE(target.dc.BitBlt(15, 15, 20, 20, &source.dc, 0, 0, SRCCOPY));
    EXPECT_EQ(target.At(17, 18), kRed);
    EXPECT_FALSE(target.dc.BitBlt(0, 0, 5, 5, &source.dc, 0, 0, 0x00EE0086)) << "only SRCCOPY is supported";
}

TEST(DrawingText, TextOutPlacesTheCellTopLeftAtThePointWithoutAntialiasing) {
    Canvas c(200, 60);
    CFont font;
    font.CreatePointFont(110, "Times New Roman");
    c.dc.SelectObject(&font);
    c.dc.SetBkMode(TRANSPARENT);
    c.dc.SetTextColor(kBlack);
    c.dc.TextOut(20, 20, "Hello 10");
    const RECT ink = c.Inked();
    ASSERT_GE(ink.right, ink.left) << "no text was drawn";
    EXPECT_GE(ink.top, 20) << "y is the top of the text cell, not the baseline";
    EXPECT_LE(ink.top, 26);
    EXPECT_LE(ink.bottom, 20 + 16) << "11 points are 14 pixels at 96 dpi";
    EXPECT_GE(ink.left, 20);
    std::set<COLORREF> colours;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 200; ++x) colours.insert(c.At(x, y));
    EXPECT_EQ(colours, (std::set<COLORREF>{kWhite, kBlack})) << "text must not be antialiased";
}

TEST(DrawingText, DrawTextCentresAndVCentreNeedsSingleLine) {
    CFont font;
    font.CreatePointFont(100, "Times New Roman");
    RECT box{0, 0, 200, 100};
    Canvas centred(200, 100);
    centred.dc.SelectObject(&font);
    centred.dc.SetBkMode(TRANSPARENT);
    centred.dc.DrawText("Centre", &box, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    const RECT a = centred.Inked();
    EXPECT_NEAR((a.left + a.right) / 2.0, 100, 3) << "DT_CENTER centres horizontally";
    EXPECT_NEAR((a.top + a.bottom) / 2.0, 50, 4) << "DT_VCENTER with DT_SINGLELINE centres vertically";

    Canvas top(200, 100);
    top.dc.SelectObject(&font);
    top.dc.SetBkMode(TRANSPARENT);
    top.dc.DrawText("Centre", &box, DT_CENTER | DT_VCENTER);
    EXPECT_LT(top.Inked().bottom, 20) << "without DT_SINGLELINE the text stands at the top";
}

TEST(DrawingText, SmallPointsSurviveWithoutAntialiasing) {
    Canvas c(40, 20);
    CFont font;
    font.CreatePointFont(70, "Times New Roman");
    c.dc.SelectObject(&font);
    c.dc.SetBkMode(TRANSPARENT);
    c.dc.TextOut(5, 2, ".");
    EXPECT_GE(c.Inked().right, c.Inked().left) << "the point of an exponent label such as 1.00 vanished at 7 points";
}

TEST(DrawingIcons, DrawIconPaintsTheTemplateRowsWithItsPalette) {
    const IconTemplate* icon = AfxFindIconTemplate(128);
    ASSERT_NE(icon, nullptr) << "icon 128 is missing from the resources";
    Canvas c(icon->size + 10, icon->size + 10);
    ASSERT_TRUE(c.dc.DrawIcon(5, 5, 128));
    int checked = 0;
    for (int row = 0; row < icon->size; ++row)
        for (int col = 0; col < icon->size && icon->rows[row][col]; ++col) {
            const char key = icon->rows[row][col];
            const char* at = std::strchr(icon->paletteKeys, key);
            if (key == ' ' || !at) {
                EXPECT_EQ(c.At(5 + col, 5 + row), kWhite) << "a blank is transparent at " << col << "," << row;
            } else {
                EXPECT_EQ(c.At(5 + col, 5 + row), icon->paletteColors[at - icon->paletteKeys])
                    << "icon pixel " << col << "," << row;
                ++checked;
            }
        }
    EXPECT_GT(checked, 0);
    EXPECT_FALSE(c.dc.DrawIcon(0, 0, 99999)) << "an unknown icon draws nothing";
}

TEST(DrawingSafety, DrawingWithoutSurfaceOrAfterDeletionDoesNothing) {
    CDC plain;
    plain.MoveTo(0, 0);
    EXPECT_TRUE(plain.LineTo(10, 10));
    EXPECT_EQ(plain.SetPixel(1, 1, kBlack), static_cast<COLORREF>(-1));

    CPaintDC noWindow(nullptr);
    noWindow.TextOut(0, 0, "x");
    noWindow.Ellipse(0, 0, 5, 5);

    CDC memory;
    memory.CreateCompatibleDC(nullptr);
    {
        CBitmap bitmap;
        bitmap.CreateCompatibleBitmap(&memory, 10, 10);
        memory.SelectObject(&bitmap);
    }  // the bitmap is gone while still selected
    memory.Rectangle(0, 0, 5, 5);
    memory.TextOut(0, 0, "still safe");

    CBitmap empty;
    ASSERT_TRUE(empty.CreateCompatibleBitmap(&memory, 0, 0));
    memory.SelectObject(&empty);
    memory.FillSolidRect(nullptr, kBlack);
    EXPECT_EQ(empty.GetPixel(0, 0), 0u);
}
