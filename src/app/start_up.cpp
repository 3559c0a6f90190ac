#include "app/start_up.h"

#include "app/plugin_choice.h"

#include <QApplication>
#include <QDir>
#include <QProcessEnvironment>
#include <QSettings>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr const char *usage = "Usage: tessaly\n"
                              "\n"
                              "Opens a window in which a video is opened and saved in another frame size.\n"
                              "\n"
                              "  --help     this text\n"
                              "  --version  the version\n"
                              "\n"
                              "Without a screen, and in scripts: tessaly-cli --help\n";

constexpr const char *elsewhere = "tessaly-cli does the same on the command line.\n";

// Where Qt looks for the plugins that open windows.
QStringList platformPluginFolders()
{
    QStringList folders = QCoreApplication::libraryPaths();
    for (QString &folder : folders)
        folder += u"/platforms"_s;
    return folders << qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
}

bool holdsWaylandPlugin(const QString &folder)
{
    return !folder.isEmpty() && !QDir(folder).entryList({u"libqwayland*.so"_s}, QDir::Files).isEmpty();
}

// "NAME=value" of the variables that are set and not empty.
QStringList settings(const QProcessEnvironment &environment, const QStringList &names)
{
    QStringList result;
    for (const QString &name : names) {
        const QString value = environment.value(name);
        if (!value.isEmpty()) result << name + u'=' + value;
    }
    return result;
}

QString reasonForNoWindow(const QProcessEnvironment &environment, const QStringList &pluginFolders)
{
    const QStringList screens = settings(environment, {u"WAYLAND_DISPLAY"_s, u"DISPLAY"_s});
    if (screens.isEmpty()) return u"there is no screen to open a window on"_s;

    const QString platform = environment.value(u"QT_QPA_PLATFORM"_s);
    const bool isWaylandAlone = environment.value(u"DISPLAY"_s).isEmpty();
    const bool mayBeWayland = platform.isEmpty() || platform.startsWith("wayland"_L1);
    const bool hasPlugin = std::any_of(pluginFolders.begin(), pluginFolders.end(), holdsWaylandPlugin);
    if (isWaylandAlone && mayBeWayland && !hasPlugin)
        return u"qt6-wayland is missing, the package with which Qt opens windows on Wayland"_s;

    if (!platform.isEmpty())
        return u"QT_QPA_PLATFORM=%1 in the environment asks for windows that cannot be opened here"_s.arg(
            platform);
    return u"no window can be opened on the screen of "_s + screens.join(" or of "_L1);
}

// When there is no window to open Qt prints a stack of messages about its plugins and then gives up with a
// fatal one.
void sayOnceWhyThereIsNoWindow(QtMsgType type, const QMessageLogContext &, const QString &)
{
    if (type != QtFatalMsg) return;
    const QString why = whyNoWindow(QProcessEnvironment::systemEnvironment(), platformPluginFolders());
    std::fputs(qUtf8Printable(why), stderr);
    std::_Exit(EXIT_FAILURE);
}

// Qt reads its arguments as long as there is an application object.
std::unique_ptr<QApplication> makeApplication(int argc, char *argv[])
{
    static QByteArrayList chosen = choosePlugins();
    static std::vector<char *> arguments(argv, argv + argc);
    auto place = arguments.begin() + std::min(argc, 1);
    for (QByteArray &argument : chosen)
        place = arguments.insert(place, argument.data()) + 1;
    static int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    return std::make_unique<QApplication>(count, arguments.data());
}

// What the desktop knows the program by.
void describe(QApplication &application)
{
    application.setApplicationName(u"tessaly"_s);
    application.setApplicationDisplayName(u"Tessaly"_s);
    application.setApplicationVersion(QStringLiteral(TESSALY_VERSION));
    application.setDesktopFileName(u"tessaly"_s);
}

// Qt's own panels would keep their size and the folders that were visited in a file of Qt's.
void keepNothingOfPanels()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s);
}

} // namespace

std::optional<int> answerCommandLine(int argc, char *argv[])
{
    bool fileWasNamed = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--help" || word == "-h") {
            std::fputs(usage, stdout);
            return EXIT_SUCCESS;
        }
        if (word == "--version") {
            std::puts("tessaly " TESSALY_VERSION);
            return EXIT_SUCCESS;
        }
        fileWasNamed = fileWasNamed || !word.starts_with('-');
    }
    if (fileWasNamed) std::fputs("tessaly: files are opened in the window, by Open or by a drop.\n", stderr);
    return std::nullopt;
}

QString whyNoWindow(const QProcessEnvironment &environment, const QStringList &pluginFolders)
{
    return u"tessaly: "_s + reasonForNoWindow(environment, pluginFolders) + u"; "_s +
           QLatin1StringView(elsewhere);
}

std::unique_ptr<QApplication> startApplication(int argc, char *argv[])
{
    keepNothingOfPanels();
    const QtMessageHandler usual = qInstallMessageHandler(sayOnceWhyThereIsNoWindow);
    std::unique_ptr<QApplication> application = makeApplication(argc, argv);
    qInstallMessageHandler(usual);
    describe(*application);
    return application;
}

} // namespace tessaly
