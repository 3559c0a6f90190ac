#include "e2e/program.h"

#include "e2e/desktop.h"
#include "support/test_case.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <sys/prctl.h>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

// Which connection on the accessibility bus is that of the process.
QString serviceOf(const QDBusConnection &bus, qint64 id)
{
    const auto ask = [&bus](const QString &method, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, method);
        message.setArguments(arguments);
        return bus.call(message);
    };
    const QStringList names = QDBusReply<QStringList>(ask(u"ListNames"_s, {}));
    for (const QString &name : names) {
        const QDBusReply<uint> process = ask(u"GetConnectionUnixProcessID"_s, {name});
        if (name.startsWith(u':') && process.isValid() && process.value() == id) return name;
    }
    return {};
}

void addLabels(const Control &below, QStringList &result)
{
    const QList<Control> children = below.children();
    for (const Control &child : children) {
        if (!child.is(State::showing)) continue;
        if (child.role() == Role::label && !child.name().isEmpty()) result << child.name();
        addLabels(child, result);
    }
}

} // namespace

Program::Program(Desktop &desktop, const QString &file, const ProgramOptions &options) : m_desktop(desktop)
{
    QProcessEnvironment environment = desktop.environment();
    environment.insert(options.environment);
    m_process.setProcessEnvironment(environment);
    m_process.setChildProcessModifier([beforeStart = options.beforeStart] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (beforeStart) beforeStart();
    });
    m_process.start(file, options.arguments);
    m_process.waitForStarted();
}

Program::~Program()
{
    m_process.kill();
    m_process.waitForFinished(test::waitLimit);
}

int Program::exitStatus() const
{
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void Program::send(int signal) const
{
    ::kill(static_cast<pid_t>(id()), signal);
}

QString Program::standardOutput()
{
    m_output += QString::fromUtf8(m_process.readAllStandardOutput());
    return m_output;
}

QString Program::standardError()
{
    m_error += QString::fromUtf8(m_process.readAllStandardError());
    return m_error;
}

std::optional<Control> Program::root() const
{
    if (m_service.isEmpty()) m_service = serviceOf(m_desktop.accessibilityBus(), id());
    if (m_service.isEmpty()) return std::nullopt;
    return Control(m_desktop.accessibilityBus(), m_service, u"/org/a11y/atspi/accessible/root"_s);
}

std::optional<Control> Program::find(Role role, const QString &name) const
{
    const std::optional<Control> top = root();
    return top ? findControl(*top, role, name) : std::nullopt;
}

bool Program::isEnabled(Role role, const QString &name) const
{
    const std::optional<Control> control = find(role, name);
    return control && control->is(State::enabled);
}

QString Program::fieldText(const QString &name) const
{
    const std::optional<Control> field = find(Role::field, name);
    return field ? field->text() : QString();
}

QStringList Program::labelsIn(Role sheet) const
{
    QStringList result;
    if (const std::optional<Control> control = find(sheet)) addLabels(*control, result);
    return result;
}

QString Program::describe()
{
    const std::optional<Control> top = root();
    const QString end = hasEnded() ? u"ended with %1"_s.arg(exitStatus()) : u"running"_s;
    return u"%1, %2\n%3\nstandard output:\n%4\nstandard error:\n%5"_s.arg(
        m_process.program(), end, top ? describeControls(*top) : u"not on the accessibility bus"_s,
        standardOutput(), standardError());
}

bool Program::click(Role role, const QString &name)
{
    if (!QTest::qWaitFor([&] { return isEnabled(role, name); }, test::waitLimit)) return false;
    const std::optional<Control> control = find(role, name);
    if (!control) return false;
    const QPoint middle = m_desktop.originOf(id()) + control->extents().center();
    return m_desktop
        .xdotool(
            {u"mousemove"_s, QString::number(middle.x()), QString::number(middle.y()), u"click"_s, u"1"_s})
        .has_value();
}

// F1 goes by its code: where the keymap says of Alt that it changes nothing there, as those from 2025 on do,
// xdotool would press that, too.
bool Program::press(QStringList keys)
{
    std::replace(keys.begin(), keys.end(), u"F1"_s, u"67"_s);
    return hasKeyboard() && m_desktop.xdotool(QStringList{u"key"_s} + keys);
}

bool Program::typeOver(const QString &text)
{
    // A list of completions that comes up under the mouse would take what lies there for chosen.
    const bool isAside = m_desktop.xdotool({u"mousemove"_s, u"1279"_s, u"899"_s}).has_value();
    return isAside && press({u"ctrl+a"_s}) &&
           m_desktop.xdotool({u"type"_s, u"--delay"_s, u"2"_s, u"--"_s, text});
}

bool Program::waitForFocus(Role role, const QString &name)
{
    const auto hasFocus = [&] {
        const std::optional<Control> control = find(role, name);
        return control && control->is(State::focused);
    };
    return QTest::qWaitFor(hasFocus, test::waitLimit);
}

bool Program::hasKeyboard() const
{
    return QTest::qWaitFor([this] { return m_desktop.hasKeyboard(id()); }, test::waitLimit);
}

} // namespace tessaly::e2e
