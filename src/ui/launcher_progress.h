// The progress that docks and task bars draw over the program's icon.
#pragma once

#include <QDBusConnection>

#include <optional>

namespace tessaly {

// Tells by the signal com.canonical.Unity.LauncherEntry.Update, which several desktops listen to; nobody
// answers, and nothing happens where nobody listens. It is taken away at the end of this object. Main thread
// only.
class LauncherProgress
{
public:
    explicit LauncherProgress(const QDBusConnection &bus = QDBusConnection::sessionBus());
    ~LauncherProgress();
    LauncherProgress(const LauncherProgress &) = delete;
    LauncherProgress &operator=(const LauncherProgress &) = delete;

    // Shown within 0 to 100; told only when the whole percent changes. A value that is not finite is no
    // progress and hides it.
    void show(double percent);

private:
    void tell(std::optional<int> percent);

    QDBusConnection m_bus;
    std::optional<int> m_shown; // whole percent; absent while it is hidden
};

} // namespace tessaly
