// Keeps the computer awake while something long is done.
#pragma once

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QString>

#include <optional>

namespace tessaly {

// As long as it lives, the login manager (org.freedesktop.login1) is asked not to suspend and not to count
// the session as idle. Does not wait; where there is no login manager, or it refuses, nothing happens. The
// request hangs on an open file, so it ends with the program in whatever way that dies. Main thread only.
class SleepInhibitor
{
public:
    // The desktop may show the reason, a phrase for people.
    explicit SleepInhibitor(const QString &reason, const QDBusConnection &bus = QDBusConnection::systemBus());
    ~SleepInhibitor();
    SleepInhibitor(const SleepInhibitor &) = delete;
    SleepInhibitor &operator=(const SleepInhibitor &) = delete;

private:
    // The answer holds the open file, and drops it also when it comes after the end.
    std::optional<QDBusPendingCall> m_call;
};

} // namespace tessaly
