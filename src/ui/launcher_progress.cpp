#include "ui/launcher_progress.h"

#include <QDBusMessage>

#include <algorithm>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

LauncherProgress::LauncherProgress(const QDBusConnection &bus) : m_bus(bus) {}

LauncherProgress::~LauncherProgress()
{
    tell(std::nullopt);
}

void LauncherProgress::show(double percent)
{
    if (std::isfinite(percent)) {
        tell(static_cast<int>(std::clamp(percent, 0.0, 100.0)));
    } else {
        tell(std::nullopt);
    }
}

void LauncherProgress::tell(std::optional<int> percent)
{
    if (percent == m_shown || !m_bus.isConnected()) return;
    m_shown = percent;
    QDBusMessage signal = QDBusMessage::createSignal(u"/com/canonical/unity/launcherentry/tessaly"_s,
                                                     u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s);
    signal << u"application://tessaly.desktop"_s
           << QVariantMap{{u"progress"_s, percent.value_or(0) / 100.0},
                          {u"progress-visible"_s, percent.has_value()}};
    m_bus.send(signal);
}

} // namespace tessaly
