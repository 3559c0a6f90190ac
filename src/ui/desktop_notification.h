// A note that the desktop shows to someone who is looking at something else.
#pragma once

#include <QDBusConnection>
#include <QString>

#include <chrono>
#include <functional>
#include <vector>

namespace tessaly {

struct DesktopNote
{
    // Something to do, offered where the service has actions. The token is the desktop's permission to bring
    // a window to the front; empty where it gives none.
    struct Action
    {
        QString title;
        std::function<void(const QString &activationToken)> run;
    };

    QString title; // plain text, as is the other one
    QString text;
    std::function<void(const QString &activationToken)> whenClicked;
    std::vector<Action> actions;
};

// Has the desktop (org.freedesktop.Notifications) show a note. Does not wait, and nothing happens where there
// is no such service or it does not answer within the time limit. What a click on the note runs is called
// from the event loop, at most once, as long as the context lives. Main thread only.
void notifyOnDesktop(QObject *context, const DesktopNote &note,
                     const QDBusConnection &bus = QDBusConnection::sessionBus(),
                     std::chrono::milliseconds timeLimit = std::chrono::seconds(10));

} // namespace tessaly
