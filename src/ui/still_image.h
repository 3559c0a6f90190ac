// A still on disk as a picture on the screen.
#pragma once

#include <QImage>
#include <QString>

namespace tessaly {

// The picture in the file; none when it cannot be read as a whole. A JPEG without its end counts as half of a
// picture: it is what a killed converter or a full disk leaves, and the reader would fill the rest with grey.
// A picture of more than 3840 pixels in a side is read smaller, which also spares the memory. Any thread.
QImage stillFromFile(const QString &path);

// Whether there is such a picture.
bool isStill(const QString &path);

} // namespace tessaly
