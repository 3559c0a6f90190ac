#include "app/app_delegate.h"
#include "app/start_up.h"
#include "platform/temporary_directory.h"
#include "platform/termination_watch.h"
#include "platform/utf8_locale.h"
#include "ui/sheets_in_front.h"
#include "ui/unmanaged_focus.h"
#include "ui/window_memory.h"

#include <QApplication>

using namespace tessaly;

int main(int argc, char *argv[])
{
    useUtf8Locale();
    outliveReaders();
    if (const std::optional<int> answered = answerCommandLine(argc, argv)) return *answered;

    const std::unique_ptr<QApplication> application = startApplication(argc, argv);
    const UnmanagedFocus focus;
    const SheetsInFront sheets;
    MainWindow window;
    AppDelegate delegate;
    delegate.connectTo(&window);
    const TerminationWatch termination([&delegate] { delegate.endSoon(); });
    QObject::connect(application.get(), &QApplication::aboutToQuit, &delegate,
                     [&delegate] { delegate.applicationWillTerminate(&delegate); });
    application->installEventFilter(&delegate);
    removeDeadSiblings();
    delegate.applicationDidFinishLaunching(application.get());
    restoreWindowSize(&window, windowMemoryFile());
    window.show();
    const int status = QApplication::exec();
    rememberWindowSize(&window, windowMemoryFile());
    return status;
}
