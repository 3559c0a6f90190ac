#include "ui/sleep_inhibitor.h"

#include <QDBusMessage>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage inhibit(const QString &reason)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                                       u"org.freedesktop.login1.Manager"_s, u"Inhibit"_s);
    call << u"sleep:idle"_s << u"Tessaly"_s << reason << u"block"_s;
    return call;
}

} // namespace

SleepInhibitor::SleepInhibitor(const QString &reason, const QDBusConnection &bus)
{
    if (bus.isConnected()) m_call = bus.asyncCall(inhibit(reason));
}

SleepInhibitor::~SleepInhibitor() = default;

} // namespace tessaly
