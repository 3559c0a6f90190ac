// Asking the desktop to show or play a file.
#pragma once

#include <QDBusConnection>
#include <QString>

#include <chrono>
#include <functional>

namespace tessaly {

// Called with a sentence for people, at most once, on the main thread, perhaps before the function returns.
// Plain text: it may hold a file name.
using DesktopFailure = std::function<void(const QString &sentence)>;

// Has the desktop's file manager show the file selected in its folder; where no file manager answers within
// the time limit, the folder opens. Does not wait. Fails when the file is not there or the folder cannot be
// opened.
void revealInFileManager(const QString &path, DesktopFailure onFailure,
                         const QDBusConnection &bus = QDBusConnection::sessionBus(),
                         std::chrono::milliseconds timeLimit = std::chrono::seconds(10));

// Opens the file with the program that the desktop has for it. Fails when the file is not there, or when the
// desktop knows at once that nothing can open it; a player that fails later is not noticed.
void playInVideoPlayer(const QString &path, const DesktopFailure &onFailure);

} // namespace tessaly
