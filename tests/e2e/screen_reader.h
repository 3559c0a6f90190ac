// What a screen reader hears on the accessibility bus.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>

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

    // Values that have changed.
    const QList<Announcement> &announcements() const { return m_announcements; }

    // What a reader speaks, in order, a line each: "window NAME" for one that became the active one, "focus
    // NAME", both without the program's name behind a title, "name NAME" for a window, a slider, a picture or
    // a status line that got a new name, and "says TEXT".
    const QStringList &spoken() const { return m_spoken; }

private Q_SLOTS:
    void hearChange(const QDBusMessage &event);
    void hearState(const QDBusMessage &event);
    void hearWindow(const QDBusMessage &event);
    void hearAnnouncement(const QDBusMessage &event);

private:
    void listen(const QString &interface, const QString &member, const char *slot);
    void registerFor(const QString &event);
    void speak(const QString &what, const QString &text);

    QDBusConnection m_bus;
    QList<Announcement> m_announcements;
    QStringList m_spoken;
};

} // namespace tessaly::e2e
