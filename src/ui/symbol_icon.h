// The pictures that are built into the program.
#pragma once

#include <QIcon>
#include <QString>

namespace tessaly {

// The symbol ":/icons/NAME.svg", drawn in the palette's text colour at the moment of painting, so that it
// follows a change between light and dark; greyed when disabled.
QIcon symbolIcon(const QString &name);

// The same symbol in one colour, of this size in points.
QPixmap symbolPixmap(const QString &name, const QSize &size, qreal devicePixelRatio, const QColor &colour);

// What the desktop shows for the program.
QIcon applicationIcon();

} // namespace tessaly
