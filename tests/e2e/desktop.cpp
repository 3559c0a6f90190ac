#include "e2e/desktop.h"

#include "e2e/processes.h"
#include "support/test_case.h"

#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

#include <algorithm>
#include <unistd.h>

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

// Pointer and keyboard as on a display without a manager, and a place that is known for the source of drags.
constexpr auto swayConfig = R"(xwayland disable
default_border none
focus_follows_mouse no
mouse_warping none
input type:keyboard repeat_rate 0
output * mode 1280x900
for_window [title="^Drag source$"] floating enable, move absolute position 1000 700
exec echo $WAYLAND_DISPLAY
)";

// Of a node and those below it; sway lists the floating ones, which lie in front, from back to front.
void addWindows(const QJsonObject &node, QList<ManagedWindow> &windows)
{
    if (node.contains("pid"_L1)) {
        const QJsonObject rect = node["rect"_L1].toObject();
        windows << ManagedWindow{.id = node["id"_L1].toInteger(),
                                 .process = node["pid"_L1].toInteger(),
                                 .title = node["name"_L1].toString(),
                                 .place = QRect(rect["x"_L1].toInt(), rect["y"_L1].toInt(),
                                                rect["width"_L1].toInt(), rect["height"_L1].toInt()),
                                 .hasKeyboard = node["focused"_L1].toBool()};
    }
    for (const auto children : {"nodes"_L1, "floating_nodes"_L1}) {
        const QJsonArray below = node[children].toArray();
        for (const QJsonValue &child : below)
            addWindows(child.toObject(), windows);
    }
}

} // namespace

// The folder's name is short: addresses of sockets inside it have little room.
Desktop::Desktop(WindowManager manager) : m_manager(manager), m_root(u"/tmp/e2e-XXXXXX"_s)
{
    adoptOrphans();
    makeFolders();
    startDisplay();
    if (m_problem.isEmpty()) startManager();
    if (m_problem.isEmpty()) startBuses();
}

Desktop::~Desktop()
{
    QDBusConnection::disconnectFromBus(accessibilityConnection);
    QDBusConnection::disconnectFromBus(sessionConnection);
    endProcess(m_sessionBus);
    endProcess(m_windowManager);
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
    const QString number =
        startServer(m_display, u"Xvfb"_s,
                    {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1280x900x24"_s, u"-nolisten"_s,
                     u"tcp"_s, u"-r"_s}); // no key repeats because the machine was too busy to let go of it
    if (number.isEmpty()) m_problem = u"Xvfb did not start"_s;
    m_environment.insert(u"DISPLAY"_s, u":"_s + number);
}

void Desktop::startManager()
{
    if (m_manager == WindowManager::sway) startSway();
    if (m_manager != WindowManager::openbox) return;
    m_windowManager.setProcessEnvironment(m_environment);
    const QString told =
        startServer(m_windowManager, u"openbox"_s, {u"--sm-disable"_s, u"--startup"_s, u"echo up"_s});
    if (told.isEmpty()) m_problem = u"openbox did not start"_s;
}

// Some versions refuse to run for root; for another user everything has to be in a folder of that user's own.
void Desktop::startSway()
{
    constexpr uint nobody = 65534;
    const QString folder = m_root.filePath(u"sway"_s);
    const QString configuration = folder + u"/config"_s;
    QDir().mkpath(folder);
    QFile file(configuration);
    const bool isWritten = file.open(QFile::WriteOnly) && file.write(swayConfig) > 0;
    file.close();
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QStringList command{u"sway"_s, u"--config"_s, configuration};
    if (::geteuid() == 0) {
        const QString user = QString::number(nobody);
        command = QStringList{u"setpriv"_s,        u"--reuid"_s,     user,        u"--regid"_s, user,
                              u"--clear-groups"_s, u"--pdeathsig"_s, u"SIGTERM"_s} +
                  command;
        QFile::setPermissions(m_root.path(), QFile::permissions(m_root.path()) | QFile::ExeOther);
        if (::chown(QFile::encodeName(folder).constData(), nobody, nobody) != 0)
            m_problem = u"sway gets no folder"_s;
    }
    m_environment.insert(u"SWAYSOCK"_s, folder + u"/ipc"_s);
    QProcessEnvironment environment = m_environment;
    environment.insert(u"XDG_RUNTIME_DIR"_s, folder);
    environment.insert(u"WLR_BACKENDS"_s, u"x11"_s);
    environment.insert(u"WLR_RENDERER"_s, u"pixman"_s);
    m_windowManager.setProcessEnvironment(environment);
    const QString socket = startServer(m_windowManager, command.takeFirst(), command);
    if (m_problem.isEmpty() && (!isWritten || socket.isEmpty())) m_problem = u"sway did not start"_s;
    m_environment.insert(u"WAYLAND_DISPLAY"_s, folder + u'/' + socket);
    m_environment.insert(u"QT_QPA_PLATFORM"_s, u"wayland"_s);
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

std::optional<QString> Desktop::ask(const QString &program, const QStringList &words) const
{
    QProcess tool;
    tool.setProcessEnvironment(m_environment);
    tool.start(program, words);
    const bool isDone = tool.waitForFinished(toolTime) && tool.exitStatus() == QProcess::NormalExit;
    if (!isDone || tool.exitCode() != 0) return std::nullopt;
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

std::optional<QString> Desktop::xdotool(const QStringList &words) const
{
    return ask(u"xdotool"_s, words);
}

QList<ManagedWindow> Desktop::windowsOnSway() const
{
    QList<ManagedWindow> windows;
    const QByteArray tree =
        ask(u"swaymsg"_s, {u"--type"_s, u"get_tree"_s, u"--raw"_s}).value_or(QString()).toUtf8();
    addWindows(QJsonDocument::fromJson(tree).object(), windows);
    return windows;
}

QPoint Desktop::originOf(qint64 process, Stacked place) const
{
    QList<QPoint> origins;
    const QList<ManagedWindow> windows =
        m_manager == WindowManager::sway ? windowsOnSway() : QList<ManagedWindow>();
    for (const ManagedWindow &window : windows) {
        if (window.process == process) origins << window.place.topLeft();
    }
    if (origins.isEmpty()) return {};
    return place == Stacked::front ? origins.constLast() : origins.constFirst();
}

bool Desktop::hasKeyboard(qint64 process) const
{
    if (m_manager != WindowManager::sway)
        return xdotool({u"getwindowfocus"_s, u"-f"_s, u"getwindowpid"_s}) == QString::number(process);
    const QList<ManagedWindow> windows = windowsOnSway();
    return std::any_of(windows.begin(), windows.end(), [process](const ManagedWindow &window) {
        return window.hasKeyboard && window.process == process;
    });
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
