// Device contexts, the objects selected into them, and bitmaps. Shapes, text and copies are in
// drawshapes.cpp and drawtext.cpp.
#include "platform/drawing.h"

#include <QFrame>
#include <QWidget>
#include <QPaintEngine>
#include <algorithm>
#include <cmath>

#include "platform/dcstate.h"
#include "platform/dialogwindow.h"

namespace platform {

DcState::DcState() {
    stockPen.CreatePen(PS_SOLID, 1, RGB(0, 0, 0));
    stockBrush.CreateSolidBrush(RGB(255, 255, 255));
    stockFont.CreatePointFont(100, "MS Sans Serif");
    Reset();
}

// The painter goes before the image it paints on.
DcState::~DcState() { painter.reset(); }

void DcState::Reset() {
    painter.reset();
    image.reset();
    widget = nullptr;
    clientSize = QSize();
    kind = Kind::None;
    ratio = 1.0;
    pen = stockPen;
    penObject = &stockPen;
    brush = stockBrush;
    brushObject = &stockBrush;
    font = stockFont;
    fontObject = &stockFont;
    bitmapObject = &stockBitmap;
    position = CPoint(0, 0);
    bkMode = OPAQUE;
    textColor = RGB(0, 0, 0);
    bkColor = RGB(255, 255, 255);
}

int DcState::DeviceEdge(int edge) const { return image ? qRound(edge * image->devicePixelRatio()) : edge; }

raster::Bounds DcState::Surface() const {
    if (kind == Kind::Memory && image) {
        // The image is the logical size times its ratio, rounded up: truncating gives the logical size back.
        const qreal r = image->devicePixelRatio();
        return {0, 0, static_cast<int>(image->width() / r), static_cast<int>(image->height() / r)};
    }
    if (kind == Kind::Paint && painter) return {0, 0, clientSize.width(), clientSize.height()};
    return {};
}

QPainter* DcState::ActivePainter() {
    if (kind == Kind::Memory && image && !image->isNull() && !painter) {
        painter = std::make_unique<QPainter>(image.get());
        painter->setRenderHint(QPainter::Antialiasing, false);
        painter->setRenderHint(QPainter::TextAntialiasing, false);
    }
    return painter.get();
}

void DcState::ReleaseImagePainter() {
    if (kind == Kind::Memory) painter.reset();
}

void DcState::FillSpan(int y, int left, int right, COLORREF color) {
    const raster::Bounds surface = Surface();
    if (y < surface.top || y >= surface.bottom) return;
    left = std::max(left, surface.left);
    right = std::min(right, surface.right);
    if (left >= right) return;
    if (kind == Kind::Memory) {
        ReleaseImagePainter();
        // A logical pixel covers whole device pixels, so that a one-pixel line stays sharp at any ratio.
        const int deviceRight = std::min(DeviceEdge(right), image->width());
        const int deviceLeft = DeviceEdge(left);
        for (int row = DeviceEdge(y); row < std::min(DeviceEdge(y + 1), image->height()); ++row) {
            QRgb* line = reinterpret_cast<QRgb*>(image->scanLine(row));
            std::fill(line + deviceLeft, line + deviceRight, ToQRgb(color));
        }
    } else if (painter) {
        painter->fillRect(QRect(left, y, right - left, 1), QColor(ToQRgb(color)));
    }
}

void DcState::FillDeviceSpans(const std::vector<raster::Span>& spans, COLORREF color) {
    if (kind != Kind::Memory || !image) return;
    ReleaseImagePainter();
    for (const raster::Span& span : spans) {
        const int left = std::max(span.left, 0), right = std::min(span.right, image->width());
        if (span.y < 0 || span.y >= image->height() || left >= right) continue;
        QRgb* line = reinterpret_cast<QRgb*>(image->scanLine(span.y));
        std::fill(line + left, line + right, ToQRgb(color));
    }
}

void DcState::FillSpans(const std::vector<raster::Span>& spans, COLORREF color) {
    for (const raster::Span& span : spans) FillSpan(span.y, span.left, span.right, color);
}

}  // namespace platform

using platform::DcState;

// ---- pens, brushes, fonts ---------------------------------------------------------------------------------

BOOL CPen::CreatePen(int style, int width, COLORREF color) {
    if (style != PS_SOLID && style != PS_DASH && style != PS_DOT && style != PS_NULL) return FALSE;
    m_style = style;
    m_width = width < 1 ? 1 : width;  // width 0 is the one-pixel pen
    m_color = color & 0x00FFFFFF;
    m_created = true;
    return TRUE;
}

BOOL CBrush::CreateSolidBrush(COLORREF color) {
    m_color = color & 0x00FFFFFF;
    m_created = true;
    return TRUE;
}

BOOL CFont::CreatePointFont(int pointSize, LPCTSTR faceName, CDC* /*dc*/) {
    m_pointSizeTenths = pointSize;
    m_face = faceName ? faceName : "";
    m_created = true;
    return TRUE;
}

// ---- bitmaps ----------------------------------------------------------------------------------------------

CBitmap::CBitmap() : m_impl(std::make_unique<Impl>()) {}
CBitmap::~CBitmap() = default;

BOOL CBitmap::CreateCompatibleBitmap(CDC* dc, int width, int height) {
    if (width < 0 || height < 0) return FALSE;
    // A bitmap of no area is valid and shows nothing, as for a control that has no size yet. It has the
    // device pixels of the DC's screen, and is drawn on in logical pixels.
    const qreal ratio = dc != nullptr ? dc->m_state->ratio : 1.0;
    m_impl->image = std::make_shared<QImage>(static_cast<int>(std::ceil(width * ratio)),
                                             static_cast<int>(std::ceil(height * ratio)), QImage::Format_RGB32);
    m_impl->image->setDevicePixelRatio(ratio);
    m_impl->image->fill(Qt::black);
    return TRUE;
}

BOOL CBitmap::DeleteObject() {
    m_impl->image.reset();
    return TRUE;
}

int CBitmap::Width() const {
    return m_impl->image ? static_cast<int>(m_impl->image->width() / m_impl->image->devicePixelRatio()) : 0;
}
int CBitmap::Height() const {
    return m_impl->image ? static_cast<int>(m_impl->image->height() / m_impl->image->devicePixelRatio()) : 0;
}

COLORREF CBitmap::GetPixel(int x, int y) const {
    const QImage* image = m_impl->image.get();
    if (!image || x < 0 || y < 0 || x >= Width() || y >= Height()) return 0;
    const qreal r = image->devicePixelRatio();
    return platform::FromQRgb(image->pixel(qRound(x * r), qRound(y * r)));
}

// ---- device contexts --------------------------------------------------------------------------------------

CDC::CDC() : m_state(std::make_unique<DcState>()) {}
CDC::~CDC() = default;

BOOL CDC::CreateCompatibleDC(CDC* dc) {
    const qreal ratio = dc != nullptr ? dc->m_state->ratio : 1.0;
    m_state->Reset();
    m_state->kind = DcState::Kind::Memory;
    m_state->ratio = ratio;
    return TRUE;
}

BOOL CDC::DeleteDC() {
    m_state->Reset();
    return TRUE;
}

namespace {

// Selects a pen, brush or font that was created: the DC draws with a copy of it from now on, and remembers
// which object it was. Returns the object selected before, or null and changes nothing.
template <class Object>
Object* Select(Object* object, Object& drawsWith, Object*& selected) {
    if (!object || !object->m_created) return nullptr;
    Object* old = selected;
    drawsWith = *object;
    selected = object;
    return old;
}

}  // namespace

CPen* CDC::SelectObject(CPen* pen) { return Select(pen, m_state->pen, m_state->penObject); }

CBrush* CDC::SelectObject(CBrush* brush) { return Select(brush, m_state->brush, m_state->brushObject); }

CFont* CDC::SelectObject(CFont* font) { return Select(font, m_state->font, m_state->fontObject); }

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    // Only a memory DC takes a bitmap, as in the API this stands in for.
    if (!bitmap || m_state->kind != DcState::Kind::Memory) return nullptr;
    CBitmap* old = m_state->bitmapObject;
    m_state->ReleaseImagePainter();
    m_state->image = bitmap->m_impl->image;
    m_state->bitmapObject = bitmap;
    return old;
}

int CDC::SetBkMode(int mode) {
    const int old = m_state->bkMode;
    if (mode == TRANSPARENT || mode == OPAQUE) m_state->bkMode = mode;
    return old;
}

COLORREF CDC::SetTextColor(COLORREF color) {
    const COLORREF old = m_state->textColor;
    m_state->textColor = color & 0x00FFFFFF;
    return old;
}

CPaintDC::CPaintDC(CWnd* window) {
    m_state->kind = DcState::Kind::Paint;
    QWidget* widget = window ? platform::WidgetOf(window) : nullptr;
    // A widget can be painted only from its own paint event; anywhere else this DC draws nothing.
    if (!widget || !widget->testAttribute(Qt::WA_WState_InPaintEvent)) return;
    // Client coordinates start inside a frame's border, as a window's client area does.
    QRect client = widget->rect();
    if (auto* frame = qobject_cast<QFrame*>(widget)) client = frame->contentsRect();
    m_state->widget = widget;
    m_state->clientSize = client.size();
    m_state->painter = std::make_unique<QPainter>(widget);
    // The device actually painted: the screen's backing store, or the image of a grab or render.
    const QPaintEngine* engine = m_state->painter->paintEngine();
    m_state->ratio = engine != nullptr && engine->paintDevice() != nullptr ? engine->paintDevice()->devicePixelRatio()
                                                                           : widget->devicePixelRatio();
    m_state->painter->setRenderHint(QPainter::Antialiasing, false);
    m_state->painter->setRenderHint(QPainter::TextAntialiasing, false);
    m_state->painter->translate(client.topLeft());
    m_state->painter->setClipRect(QRect(QPoint(0, 0), client.size()));
}

CPaintDC::~CPaintDC() { m_state->Reset(); }
