#include "e2e/control.h"

#include "support/test_case.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

constexpr auto accessible = "org.a11y.atspi.Accessible";

// Lists and tables can be long, and what they hold is not what tests look for.
bool isCollection(Role role)
{
    constexpr uint list = 31, table = 55, tree = 65, treeTable = 66;
    const auto number = static_cast<uint>(role);
    return number == list || number == table || number == tree || number == treeTable;
}

bool isCalled(const Control &control, Role role, const QString &name)
{
    return name.isEmpty() || (role == Role::slider ? control.description() : control.name()) == name;
}

std::optional<Control> findIn(const Control &control, Role role, const QString &name)
{
    if (!control.is(State::showing)) return std::nullopt;
    const Role ownRole = control.role();
    if (ownRole == role && isCalled(control, role, name)) return control;
    if (isCollection(ownRole)) return std::nullopt;
    const QList<Control> children = control.children();
    for (const Control &child : children) {
        if (std::optional<Control> found = findIn(child, role, name)) return found;
    }
    return std::nullopt;
}

QString stateOf(const Control &control)
{
    QString words;
    if (!control.is(State::enabled)) words += u" (disabled)"_s;
    if (control.is(State::focused)) words += u" (focused)"_s;
    if (control.role() == Role::field) words += u" holds \"%1\""_s.arg(control.text());
    return words;
}

} // namespace

Control::Control(QDBusConnection bus, QString service, QString path)
    : m_bus(std::move(bus)), m_service(std::move(service)), m_path(std::move(path))
{}

QVariantList Control::call(const char *interface, const char *method, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, m_path, QString::fromLatin1(interface),
                                                          QString::fromLatin1(method));
    message.setArguments(arguments);
    const QDBusMessage answer = m_bus.call(message, QDBus::Block, test::waitLimit);
    const bool isGood = answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty();
    return isGood ? answer.arguments() : QVariantList{QVariant()};
}

QVariant Control::property(const char *interface, const char *name) const
{
    const QVariant value = call("org.freedesktop.DBus.Properties", "Get",
                                {QString::fromLatin1(interface), QString::fromLatin1(name)})
                               .constFirst();
    return value.value<QDBusVariant>().variant();
}

QString Control::name() const
{
    return property(accessible, "Name").toString();
}

QString Control::description() const
{
    return property(accessible, "Description").toString();
}

Role Control::role() const
{
    return static_cast<Role>(call(accessible, "GetRole").constFirst().toUInt());
}

bool Control::is(State state) const
{
    const QVariant answer = call(accessible, "GetState").constFirst();
    if (!answer.canConvert<QDBusArgument>()) return false;
    const auto words = answer.value<QDBusArgument>();
    const auto bit = static_cast<uint>(state);
    quint64 states = 0;
    words.beginArray();
    for (int shift = 0; !words.atEnd(); shift += 32) {
        uint word = 0;
        words >> word;
        states |= quint64(word) << shift;
    }
    words.endArray();
    return (states >> bit & 1) != 0;
}

QString Control::text() const
{
    constexpr auto interface = "org.a11y.atspi.Text";
    const int length = property(interface, "CharacterCount").toInt();
    return call(interface, "GetText", {0, length}).constFirst().toString();
}

double Control::value() const
{
    return property("org.a11y.atspi.Value", "CurrentValue").toDouble();
}

QRect Control::extents() const
{
    constexpr uint onScreen = 0;
    const QVariant answer = call("org.a11y.atspi.Component", "GetExtents", {onScreen}).constFirst();
    return answer.canConvert<QDBusArgument>() ? qdbus_cast<QRect>(answer) : QRect();
}

QList<Control> Control::children() const
{
    QList<Control> result;
    const QVariant answer = call(accessible, "GetChildren").constFirst();
    if (!answer.canConvert<QDBusArgument>()) return result;
    const auto references = answer.value<QDBusArgument>();
    references.beginArray();
    while (!references.atEnd()) {
        QString service;
        QDBusObjectPath path;
        references.beginStructure();
        references >> service >> path;
        references.endStructure();
        result << Control(m_bus, service, path.path());
    }
    references.endArray();
    return result;
}

std::optional<Control> findControl(const Control &root, Role role, const QString &name)
{
    const QList<Control> windows = root.children();
    for (auto window = windows.crbegin(); window != windows.crend(); ++window) {
        if (std::optional<Control> found = findIn(*window, role, name)) return found;
    }
    return std::nullopt;
}

QString describeControls(const Control &root, int depth)
{
    QString lines;
    const QList<Control> children = root.children();
    for (const Control &child : children) {
        if (!child.is(State::showing)) continue;
        lines +=
            QString(depth * 2, u' ') +
            u"role %1 \"%2\"%3\n"_s.arg(static_cast<uint>(child.role())).arg(child.name(), stateOf(child));
        if (!isCollection(child.role())) lines += describeControls(child, depth + 1);
    }
    return lines;
}

} // namespace tessaly::e2e
