#include "ui/still_image.h"

#include <QFile>
#include <QImageReader>

namespace tessaly {

namespace {

// JPEG's marker "end of image" (ISO/IEC 10918-1, B.2.1).
constexpr QByteArrayView endOfImage("\xff\xd9");

bool isHalfOfAPicture(const QImageReader &reader)
{
    if (reader.format() != "jpeg") return false;
    QFile file(reader.fileName());
    return !file.open(QIODevice::ReadOnly) || !file.readAll().endsWith(endOfImage);
}

} // namespace

QImage stillFromFile(const QString &path)
{
    constexpr QSize largest(3840, 3840); // more than a screen shows
    QImageReader reader(path);
    if (isHalfOfAPicture(reader)) return {};
    const QSize size = reader.size();
    if (size.width() > largest.width() || size.height() > largest.height()) {
        reader.setScaledSize(size.scaled(largest, Qt::KeepAspectRatio));
    }
    return reader.read();
}

bool isStill(const QString &path)
{
    const QImageReader reader(path);
    return reader.canRead() && !isHalfOfAPicture(reader);
}

} // namespace tessaly
