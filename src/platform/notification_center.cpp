#include "platform/notification_center.h"

#include <utility>

namespace tessaly {

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(QObject *context, const QString &name, Observer observer)
{
    forgetTheDead();
    m_registrations.push_back(
        std::make_shared<const Registration>(Registration{context, name, std::move(observer)}));
}

void NotificationCenter::postNotification(const QString &name, QObject *object, const UserInfo &userInfo)
{
    forgetTheDead();
    const Notification notification{name, object, userInfo};
    const auto present = m_registrations;
    for (const auto &registration : present)
        if (registration->name == name && registration->context) registration->observer(notification);
}

void NotificationCenter::forgetTheDead()
{
    std::erase_if(m_registrations, [](const auto &registration) { return !registration->context; });
}

} // namespace tessaly
