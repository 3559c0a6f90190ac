// The size of the window, remembered from one run to the next.
#pragma once

#include <QString>

class QWidget;

namespace tessaly {

// Where it is kept: a file of our own in the person's folder for settings.
QString windowMemoryFile();

// Gives the window its size of last time, as far as the screen has room for it; without a memory it keeps the
// one it has. To be called before it is shown.
void restoreWindowSize(QWidget *window, const QString &file);

// Remembers the size, and whether the window fills the screen. What cannot be written is not remembered.
void rememberWindowSize(const QWidget *window, const QString &file);

} // namespace tessaly
