// A note that the desktop shows to someone who is looking at something else.
#pragma once

#include <QDBusConnection>
#include <QString>

#include <chrono>

namespace tessaly {

// Has the desktop (org.freedesktop.Notifications) show a note; both texts are plain text. Does not wait, and
// nothing happens where there is no such service or it does not answer within the time limit. Main thread
// only.
void notifyOnDesktop(const QString &title, const QString &text,
                     const QDBusConnection &bus = QDBusConnection::sessionBus(),
                     std::chrono::milliseconds timeLimit = std::chrono::seconds(10));

} // namespace tessaly
