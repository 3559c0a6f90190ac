// Messages between parts of the program that do not know each other.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

namespace tessaly {

// Main thread only.
class NotificationCenter
{
public:
    using UserInfo = QVariantMap;

    struct Notification
    {
        QString name;
        QObject *object; // the sender, may be null
        UserInfo userInfo;
    };

    using Observer = std::function<void(const Notification &)>;

    static NotificationCenter &defaultCenter();

    // Calls the observer for every notification of that name, from any sender, until the context dies.
    void addObserver(QObject *context, const QString &name, Observer observer);

    // Calls the observers at once, in the order in which they were added; returns when the last has returned.
    // An observer added meanwhile is not called for this notification, one whose context dies meanwhile
    // neither.
    void postNotification(const QString &name, QObject *object, const UserInfo &userInfo);

private:
    struct Registration
    {
        QPointer<QObject> context;
        QString name;
        Observer observer;
    };

    void forgetTheDead();

    // Shared, so that an observer outlives its own removal while it runs.
    std::vector<std::shared_ptr<const Registration>> m_registrations;
};

} // namespace tessaly
