// A reference to a control that a form provides. Using one that is not connected ends the program, with its
// name.
#pragma once

#include <QObject>
#include <QPointer>

namespace tessaly {

// Owns nothing: an outlet whose control has been destroyed counts as not connected. T is a QObject type. Main
// thread only.
template<class T>
class Outlet
{
public:
    // The name is the object name in the form, and must live as long as the outlet.
    explicit Outlet(const char *name) : m_name(name) {}

    QString name() const { return QString::fromLatin1(m_name); }
    bool isConnected() const { return !m_object.isNull(); }

    void connectTo(T *object) { m_object = object; }

    // Connects to the object of this name and type: `root` itself, or the first one below it. When there is
    // none the outlet is left unconnected and the answer is false.
    bool connectFrom(QObject *root)
    {
        T *self = root->objectName() == name() ? qobject_cast<T *>(root) : nullptr;
        m_object = self ? self : root->findChild<T *>(name());
        return isConnected();
    }

    T *get() const
    {
        if (m_object.isNull()) qFatal("The outlet \"%s\" is not connected", m_name);
        return m_object.data();
    }
    T *operator->() const { return get(); }
    T &operator*() const { return *get(); }

private:
    const char *m_name;
    QPointer<T> m_object;
};

} // namespace tessaly
