// Looking at painted widgets, at any scale of the screen.
#pragma once

#include <QBackingStore>
#include <QImage>
#include <QWidget>

#include <cmath>

namespace tessaly::test {

// Everything that `view` and the views inside it paint, made afresh.
inline QImage pictureOf(QWidget *view)
{
    return view->grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

// What has been painted for the screen in this window: the sum of all partial repaints so far.
inline QImage screenPictureOf(QWidget *window)
{
    const auto *shown = dynamic_cast<QImage *>(window->backingStore()->paintDevice());
    return shown ? shown->convertToFormat(QImage::Format_ARGB32_Premultiplied) : QImage();
}

// The colour of the pixel whose area holds this place, in points.
inline QColor colorAt(const QImage &picture, double x, double y)
{
    const double ratio = picture.devicePixelRatio();
    return picture.pixelColor(static_cast<int>(std::floor(x * ratio)),
                              static_cast<int>(std::floor(y * ratio)));
}

// A picture of the same kind and size, in one colour.
inline QImage plainPicture(const QImage &like, const QColor &color)
{
    QImage result(like.size(), QImage::Format_ARGB32_Premultiplied);
    result.setDevicePixelRatio(like.devicePixelRatio());
    result.fill(color);
    return result;
}

} // namespace tessaly::test
