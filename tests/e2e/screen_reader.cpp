#include "e2e/screen_reader.h"

#include "e2e/control.h"
#include "e2e/tasks.h"

#include <QDBusVariant>
#include <QTest>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

// The arguments of every event: what kind, two numbers, and what has come about.
QString kindOf(const QDBusMessage &event)
{
    return event.arguments().value(0).toString();
}

bool isBegun(const QDBusMessage &event)
{
    return event.arguments().value(1).toInt() == 1;
}

QString contentOf(const QDBusMessage &event)
{
    return event.arguments().value(3).value<QDBusVariant>().variant().toString();
}

// Of other controls, such as labels, readers keep a new name to themselves.
bool isNameSpoken(Role role)
{
    return role == Role::frame || role == Role::slider || role == Role::image || role == Role::statusBar;
}

// Newer versions of Qt name a sheet with the program's name behind its own.
QString withoutProgram(QString name)
{
    const auto program = u" \u2014 Tessaly"_s;
    if (name.endsWith(program)) name.chop(program.size());
    return name;
}

} // namespace

ScreenReader::ScreenReader(QDBusConnection bus) : m_bus(std::move(bus))
{
    const auto object = u"org.a11y.atspi.Event.Object"_s;
    listen(object, u"PropertyChange"_s, SLOT(hearChange(QDBusMessage)));
    listen(object, u"StateChanged"_s, SLOT(hearState(QDBusMessage)));
    listen(object, u"Announcement"_s, SLOT(hearAnnouncement(QDBusMessage)));
    listen(u"org.a11y.atspi.Event.Window"_s, u"Activate"_s, SLOT(hearWindow(QDBusMessage)));
    for (const QString &event :
         {u"object:property-change:accessible-value"_s, u"object:property-change:accessible-name"_s,
          u"object:state-changed:focused"_s, u"object:announcement"_s, u"window:activate"_s})
        registerFor(event);
}

void ScreenReader::listen(const QString &interface, const QString &member, const char *slot)
{
    m_bus.connect(QString(), QString(), interface, member, this, slot);
}

void ScreenReader::registerFor(const QString &event)
{
    QDBusMessage registration =
        QDBusMessage::createMethodCall(u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/registry"_s,
                                       u"org.a11y.atspi.Registry"_s, u"RegisterEvent"_s);
    registration << event << QStringList() << QString();
    // On a busy machine the registry was seen to end while it began; the next call starts it anew.
    QDBusMessage answer;
    const auto isRegistered = [&] {
        answer = m_bus.call(registration);
        return answer.type() == QDBusMessage::ReplyMessage;
    };
    if (!QTest::qWaitFor(isRegistered, workTime)) qWarning("%s", qUtf8Printable(answer.errorMessage()));
}

// The event itself need not hold what is new; a screen reader asks for it.
void ScreenReader::hearChange(const QDBusMessage &event)
{
    const Control teller(m_bus, event.service(), event.path());
    if (kindOf(event) == "accessible-value"_L1)
        m_announcements += {.teller = teller.name(), .value = teller.value()};
    if (kindOf(event) == "accessible-name"_L1 && isNameSpoken(teller.role())) speak(u"name"_s, teller.name());
}

void ScreenReader::hearState(const QDBusMessage &event)
{
    if (kindOf(event) != "focused"_L1 || !isBegun(event)) return;
    speak(u"focus"_s, withoutProgram(Control(m_bus, event.service(), event.path()).name()));
}

void ScreenReader::hearWindow(const QDBusMessage &event)
{
    speak(u"window"_s, withoutProgram(Control(m_bus, event.service(), event.path()).name()));
}

void ScreenReader::hearAnnouncement(const QDBusMessage &event)
{
    speak(u"says"_s, contentOf(event));
}

// There is nothing to speak of a control that is gone by now.
void ScreenReader::speak(const QString &what, const QString &text)
{
    if (!text.isEmpty()) m_spoken += what + u' ' + text;
}

} // namespace tessaly::e2e
