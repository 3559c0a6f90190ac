#include "ui/desktop_notification.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int durationOfTheDesktop = -1; // how long a note stays is the desktop's choice

const auto service = u"org.freedesktop.Notifications"_s;
const auto servicePath = u"/org/freedesktop/Notifications"_s;
const auto defaultAction = u"default"_s; // a click on the note itself

QDBusMessage callOf(const QString &method)
{
    return QDBusMessage::createMethodCall(service, servicePath, service, method);
}

} // namespace

// One note, from the question what the service can do until it is gone from the screen.
class NoteOnScreen : public QObject
{
    Q_OBJECT

public:
    NoteOnScreen(QObject *context, DesktopNote note, const QDBusConnection &bus, int timeLimit)
        : QObject(context), m_note(std::move(note)), m_bus(bus), m_timeLimit(timeLimit)
    {
        // Some services read the text as markup and some show it as it is; they tell when asked.
        whenAnswered(callOf(u"GetCapabilities"_s), [this](const QDBusPendingCall &call) {
            const QDBusPendingReply<QStringList> capabilities = call;
            show(capabilities.value());
        });
    }

private Q_SLOTS:
    void takeToken(uint id, const QString &token)
    {
        if (id == m_id) m_token = token;
    }
    void runAction(uint id, const QString &key)
    {
        if (id != m_id) return;
        deleteLater();
        const std::size_t index = key.toUInt();
        if (key == defaultAction)
            m_note.whenClicked(m_token);
        else if (index < m_note.actions.size())
            m_note.actions[index].run(m_token);
    }
    void forget(uint id, uint)
    {
        if (id == m_id) deleteLater();
    }

private:
    template<class Handler>
    void whenAnswered(const QDBusMessage &message, const Handler &handler)
    {
        auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(message, m_timeLimit), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, handler] {
            watcher->deleteLater();
            if (watcher->isError())
                deleteLater();
            else
                handler(*watcher);
        });
    }

    void show(const QStringList &capabilities)
    {
        const bool readsMarkup = capabilities.contains(u"body-markup"_s);
        const bool hasActions = capabilities.contains(u"actions"_s) && m_note.whenClicked;
        if (hasActions) listen();
        constexpr uint replacesNone = 0;
        const QVariantMap hints{{u"desktop-entry"_s, u"tessaly"_s}, {u"category"_s, u"transfer"_s}};
        QDBusMessage call = callOf(u"Notify"_s);
        call << u"Tessaly"_s << replacesNone << u"tessaly"_s << m_note.title
             << (readsMarkup ? m_note.text.toHtmlEscaped() : m_note.text)
             << (hasActions ? actionList() : QStringList()) << hints << durationOfTheDesktop;
        whenAnswered(call, [this, hasActions](const QDBusPendingCall &answer) {
            const QDBusPendingReply<uint> id = answer;
            m_id = id.value();
            if (!hasActions) deleteLater();
        });
    }

    QStringList actionList() const
    {
        QStringList list{defaultAction, tr("Show")};
        for (std::size_t i = 0; i < m_note.actions.size(); ++i)
            list << QString::number(i) << m_note.actions[i].title;
        return list;
    }

    void listen()
    {
        m_bus.connect(service, servicePath, service, u"ActivationToken"_s, this,
                      SLOT(takeToken(uint, QString)));
        m_bus.connect(service, servicePath, service, u"ActionInvoked"_s, this,
                      SLOT(runAction(uint, QString)));
        m_bus.connect(service, servicePath, service, u"NotificationClosed"_s, this, SLOT(forget(uint, uint)));
    }

    DesktopNote m_note;
    QDBusConnection m_bus;
    int m_timeLimit; // milliseconds
    uint m_id = 0;   // the service's number for it
    QString m_token;
};

void notifyOnDesktop(QObject *context, const DesktopNote &note, const QDBusConnection &bus,
                     std::chrono::milliseconds timeLimit)
{
    if (bus.isConnected()) new NoteOnScreen(context, note, bus, static_cast<int>(timeLimit.count()));
}

} // namespace tessaly

#include "desktop_notification.moc"
