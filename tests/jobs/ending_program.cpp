// A program that comes to its end in a named way while its converter runs: ending_program FOLDER WAY. FOLDER
// holds the converter; WAY is return, exit, or kill.
#include "jobs/converter_run.h"
#include "platform/bundle.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <condition_variable>
#include <csignal>
#include <mutex>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.size() != 3) return 99;
    tessaly::setResourceFolders({words.at(1)});

    std::mutex guard;
    std::condition_variable said;
    bool running = false;
    QThreadPool::globalInstance()->start([&] {
        tessaly::ConverterRun().run({}, [&](const QByteArray &) {
            const std::lock_guard lock(guard);
            running = true;
            said.notify_all();
        });
    });
    std::unique_lock lock(guard);
    said.wait(lock, [&] { return running; });
    lock.unlock();

    if (words.at(2) == QLatin1StringView("kill")) std::raise(SIGKILL);
    if (words.at(2) == QLatin1StringView("exit")) std::_Exit(0);
    return 0;
}
