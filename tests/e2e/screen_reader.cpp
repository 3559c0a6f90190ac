#include "e2e/screen_reader.h"

#include "e2e/control.h"

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

ScreenReader::ScreenReader(QDBusConnection bus) : m_bus(std::move(bus))
{
    m_bus.connect(QString(), QString(), u"org.a11y.atspi.Event.Object"_s, u"PropertyChange"_s, this,
                  SLOT(hear(QDBusMessage)));
    QDBusMessage registration =
        QDBusMessage::createMethodCall(u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/registry"_s,
                                       u"org.a11y.atspi.Registry"_s, u"RegisterEvent"_s);
    registration << u"object:property-change:accessible-value"_s << QStringList() << QString();
    const QDBusMessage answer = m_bus.call(registration);
    if (answer.type() != QDBusMessage::ReplyMessage) qWarning("%s", qUtf8Printable(answer.errorMessage()));
}

// The event itself holds no number; a screen reader asks for it.
void ScreenReader::hear(const QDBusMessage &event)
{
    if (event.arguments().value(0).toString() != u"accessible-value"_s) return;
    const Control teller(m_bus, event.service(), event.path());
    m_announcements += {.teller = teller.name(), .value = teller.value()};
}

} // namespace tessaly::e2e
