#include "ui/desktop_notification.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int durationOfTheDesktop = -1; // how long a note stays is the desktop's choice

QDBusMessage callOf(const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                          u"/org/freedesktop/Notifications"_s,
                                          u"org.freedesktop.Notifications"_s, method);
}

QDBusMessage notify(const QString &title, const QString &text)
{
    constexpr uint replacesNone = 0;
    const QVariantMap hints{{u"desktop-entry"_s, u"tessaly"_s}, {u"category"_s, u"transfer"_s}};
    QDBusMessage call = callOf(u"Notify"_s);
    call << u"Tessaly"_s << replacesNone << u"tessaly"_s << title << text << QStringList() << hints
         << durationOfTheDesktop;
    return call;
}

} // namespace

void notifyOnDesktop(const QString &title, const QString &text, const QDBusConnection &bus,
                     std::chrono::milliseconds timeLimit)
{
    if (!bus.isConnected()) return;
    // Some services read the text as markup and some show it as it is; they tell when asked.
    const QDBusPendingCall call =
        bus.asyncCall(callOf(u"GetCapabilities"_s), static_cast<int>(timeLimit.count()));
    auto *watcher = new QDBusPendingCallWatcher(call, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, title, text, bus] {
        watcher->deleteLater();
        const QDBusPendingReply<QStringList> capabilities = *watcher;
        if (!capabilities.isValid()) return;
        const bool readsMarkup = capabilities.value().contains(u"body-markup"_s);
        bus.send(notify(title, readsMarkup ? text.toHtmlEscaped() : text));
    });
}

} // namespace tessaly
