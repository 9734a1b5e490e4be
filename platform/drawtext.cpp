// Text of CDC: fonts, TextOut and DrawText.
#include <QFont>
#include <QFontMetrics>
#include <QString>
#include <QStringList>

#include "platform/dcstate.h"
#include "platform/drawing.h"
#include "platform/fonts.h"

namespace platform {

QFont QtFontOf(const CFont& font) {
    // Tenths of a point at 96 dots per inch, truncated as the API this stands in for does: 110 gives
    // 14 pixels, 100 gives 13, 70 gives 9.
    QFont result = StandInFont(font.m_face.str().c_str(), font.m_pointSizeTenths, true);
    result.setStyleStrategy(QFont::NoAntialias);
    // Full hinting snaps small glyphs to the pixel grid; without it the point of "1.00" at 7 points
    // covers no pixel centre and vanishes.
    result.setHintingPreference(QFont::PreferFullHinting);
    return result;
}

}  // namespace platform

namespace {

QString ToQString(const CString& text) { return QString::fromUtf8(text.str().c_str()); }

// Prepares the painter for text in the DC's font and colour; null when the DC has no surface.
QPainter* TextPainter(platform::DcState& state) {
    QPainter* painter = state.ActivePainter();
    if (!painter) return nullptr;
    painter->setFont(platform::QtFontOf(state.font));
    painter->setPen(QColor(platform::ToQRgb(state.textColor)));
    return painter;
}

// One line with its cell's top-left at (x, y), over the background colour when the mode is opaque.
void DrawLine(platform::DcState& state, QPainter* painter, int x, int y, const QString& line) {
    const QFontMetrics metrics = painter->fontMetrics();
    if (state.bkMode == OPAQUE)
        painter->fillRect(QRect(x, y, metrics.horizontalAdvance(line), metrics.height()),
                          QColor(platform::ToQRgb(state.bkColor)));
    painter->drawText(QPoint(x, y + metrics.ascent()), line);
}

}  // namespace

BOOL CDC::TextOut(int x, int y, const CString& text) {
    QPainter* painter = TextPainter(*m_state);
    if (!painter) return FALSE;
    DrawLine(*m_state, painter, x, y, ToQString(text));
    return TRUE;
}

int CDC::DrawText(const CString& text, RECT* rect, UINT format) {
    if (!rect) return 0;
    QPainter* painter = TextPainter(*m_state);
    if (!painter) return 0;
    const QFontMetrics metrics = painter->fontMetrics();
    const bool single = (format & DT_SINGLELINE) != 0;
    const QStringList lines = single ? QStringList{ToQString(text)} : ToQString(text).split('\n');
    const int lineHeight = metrics.height();
    const int width = static_cast<int>(rect->right - rect->left);
    int y = static_cast<int>(rect->top);
    // Vertical centring applies to a single line only, as in the API this stands in for: without
    // DT_SINGLELINE the text starts at the rectangle's top.
    if (single && (format & DT_VCENTER))
        y = static_cast<int>(rect->top + rect->bottom - lineHeight) / 2;
    painter->save();
    painter->setClipRect(QRect(static_cast<int>(rect->left), static_cast<int>(rect->top), width,
                               static_cast<int>(rect->bottom - rect->top)));
    for (const QString& line : lines) {
        const int advance = metrics.horizontalAdvance(line);
        int x = static_cast<int>(rect->left);
        if (format & DT_CENTER)
            x = static_cast<int>(rect->left + rect->right - advance) / 2;
        else if (format & DT_RIGHT)
            x = static_cast<int>(rect->right) - advance;
        DrawLine(*m_state, painter, x, y, line);
        y += lineHeight;
    }
    painter->restore();
    return lineHeight * static_cast<int>(lines.size());
}
