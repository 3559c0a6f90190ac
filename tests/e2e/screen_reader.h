// What a screen reader hears of values that change, on the accessibility bus.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace tessaly::e2e {

struct Announcement
{
    QString teller; // the control's name
    double value;
};

// Listens from the start to the end of its life; programs tell changes only while somebody listens.
class ScreenReader : public QObject
{
    Q_OBJECT

public:
    explicit ScreenReader(QDBusConnection bus);

    const QList<Announcement> &announcements() const { return m_announcements; }

private Q_SLOTS:
    void hear(const QDBusMessage &event);

private:
    QDBusConnection m_bus;
    QList<Announcement> m_announcements;
};

} // namespace tessaly::e2e
