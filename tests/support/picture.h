// A picture in memory: what a plot draws into a bitmap through a memory DC, as its paint does, or what a
// widget shows. Pixels by position and colour, and a PNG in the pictures folder for a person to look at.
#pragma once

#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QString>
#include <QWidget>
#include <string>

#include "platform/drawing.h"
#include "shell/plots.h"
#include "support/paths.h"

class Picture {
public:
    explicit Picture(const QImage& image) : m_image(image.convertToFormat(QImage::Format_RGB32)) {}

    template <class Plot>
    static Picture Of(Plot& plot, int width, int height) {
        CDC dc;
        dc.CreateCompatibleDC(nullptr);
        CBitmap bitmap;
        bitmap.CreateCompatibleBitmap(&dc, width, height);
        CBitmap* old = dc.SelectObject(&bitmap);
        DrawAll(plot, &dc, RECT{0, 0, width, height});
        dc.SelectObject(old);
        QImage image(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const COLORREF c = bitmap.GetPixel(x, y);
                image.setPixel(x, y, qRgb(GetRValue(c), GetGValue(c), GetBValue(c)));
            }
        return Picture(image);
    }
    static Picture Of(QWidget& widget) { return Picture(widget.grab().toImage()); }

    bool IsNull() const { return m_image.isNull(); }
    // The pixel at (x, y); black outside.
    COLORREF At(int x, int y) const {
        if (!m_image.valid(x, y)) return RGB(0, 0, 0);
        const QRgb pixel = m_image.pixel(x, y);
        return RGB(qRed(pixel), qGreen(pixel), qBlue(pixel));
    }
    // Pixels of that colour in [left, right) x [top, bottom).
    int Count(COLORREF colour, int left, int top, int right, int bottom) const {
        int n = 0;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x) n += At(x, y) == colour;
        return n;
    }
    void Save(const std::string& name) const {
        QDir().mkpath(QString::fromStdString(PictureFolder()));
        m_image.save(QString::fromStdString(PictureFolder() + "/" + name + ".png"));
    }

private:
    QImage m_image;
};
