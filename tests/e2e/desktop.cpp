#include "e2e/desktop.h"

#include "e2e/processes.h"
#include "support/test_case.h"

#include <QDBusMessage>
#include <QDir>
#include <QStandardPaths>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

constexpr auto sessionConnection = "e2e-session"_L1;
constexpr auto accessibilityConnection = "e2e-accessibility"_L1;
constexpr int toolTime =
    20'000; // milliseconds; it waits for ever on a window that has just gone, and is tried again then

// Starts a server that prints one line as soon as it can be used, and gives that line.
QString startServer(QProcess &server, const QString &program, const QStringList &arguments)
{
    endWithTest(server);
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(program, arguments);
    while (!server.canReadLine()) {
        if (!server.waitForReadyRead(test::waitLimit)) return {};
    }
    return QString::fromUtf8(server.readLine()).trimmed();
}

} // namespace

// The folder's name is short: addresses of sockets inside it have little room.
Desktop::Desktop() : m_root(u"/tmp/e2e-XXXXXX"_s)
{
    adoptOrphans();
    makeFolders();
    startDisplay();
    if (m_problem.isEmpty()) startBuses();
}

Desktop::~Desktop()
{
    QDBusConnection::disconnectFromBus(accessibilityConnection);
    QDBusConnection::disconnectFromBus(sessionConnection);
    endProcess(m_sessionBus);
    endProcess(m_display);
    killProcessesBelowTest();
}

void Desktop::makeFolders()
{
    const auto folder = [this](const QString &name) {
        QString path = m_root.filePath(name);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    };
    const QProcessEnvironment system = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"PATH"_s, u"ASAN_OPTIONS"_s, u"UBSAN_OPTIONS"_s}) {
        if (system.contains(name)) m_environment.insert(name, system.value(name));
    }
    folder(u"files"_s);
    m_environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    m_environment.insert(u"HOME"_s, folder(u"home"_s));
    m_environment.insert(u"TMPDIR"_s, folder(u"tmp"_s));
    m_environment.insert(u"XDG_RUNTIME_DIR"_s, folder(u"run"_s));
    m_environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    m_environment.insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
    // A test may well ask about a control that is just going; what Qt says of that is not the program's word.
    m_environment.insert(u"QT_LOGGING_RULES"_s, u"qt.accessibility.atspi.warning=false"_s);
}

void Desktop::startDisplay()
{
    m_display.setProcessEnvironment(m_environment);
    const QString number = startServer(
        m_display, u"Xvfb"_s,
        {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1280x900x24"_s, u"-nolisten"_s, u"tcp"_s});
    if (number.isEmpty()) m_problem = u"Xvfb did not start"_s;
    m_environment.insert(u"DISPLAY"_s, u":"_s + number);
}

void Desktop::startBuses()
{
    m_sessionBus.setProcessEnvironment(m_environment);
    const QString address =
        startServer(m_sessionBus, u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    const QDBusConnection session = QDBusConnection::connectToBus(address, sessionConnection);
    const QDBusMessage answer =
        session.call(QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s,
                                                    u"GetAddress"_s),
                     QDBus::Block, test::waitLimit);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        m_problem = u"no accessibility bus: "_s + answer.errorMessage();
        return;
    }
    m_accessibilityBus =
        QDBusConnection::connectToBus(answer.arguments().constFirst().toString(), accessibilityConnection);
    if (!m_accessibilityBus->isConnected()) m_problem = u"the accessibility bus takes no connection"_s;
    m_environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
    m_environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, address);
}

QString Desktop::temporaryFolder() const
{
    return m_root.filePath(u"tmp"_s);
}

QString Desktop::filesFolder() const
{
    return m_root.filePath(u"files"_s);
}

std::optional<QString> Desktop::xdotool(const QStringList &words) const
{
    QProcess tool;
    tool.setProcessEnvironment(m_environment);
    tool.start(u"xdotool"_s, words);
    const bool isDone = tool.waitForFinished(toolTime) && tool.exitStatus() == QProcess::NormalExit;
    if (!isDone || tool.exitCode() != 0) return std::nullopt;
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

void Desktop::savePicture(const QString &path) const
{
    const QString import = QStandardPaths::findExecutable(u"import"_s);
    if (import.isEmpty()) return;
    QProcess tool;
    tool.setProcessEnvironment(m_environment);
    tool.start(import, {u"-window"_s, u"root"_s, path});
    tool.waitForFinished(test::waitLimit);
}

} // namespace tessaly::e2e
