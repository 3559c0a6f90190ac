#include "app/start_up.h"

#include <QApplication>
#include <QSettings>

#include <cstdio>
#include <cstdlib>
#include <string_view>

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

constexpr const char *noScreen =
    "tessaly: there is no screen to open a window on; tessaly-cli does the same on the command line.\n";

// Without a screen Qt prints a stack of messages about its plugins and then gives up with a fatal one.
void sayOnceThatThereIsNoScreen(QtMsgType type, const QMessageLogContext &, const QString &)
{
    if (type != QtFatalMsg) return;
    std::fputs(noScreen, stderr);
    std::_Exit(EXIT_FAILURE);
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

std::unique_ptr<QApplication> startApplication(int &argc, char *argv[])
{
    keepNothingOfPanels();
    const QtMessageHandler usual = qInstallMessageHandler(sayOnceThatThereIsNoScreen);
    auto application = std::make_unique<QApplication>(argc, argv);
    qInstallMessageHandler(usual);
    describe(*application);
    return application;
}

} // namespace tessaly
