// A second copy of the program, for what only another process can show:
//   run PROGRAM ARGUMENT…     runs it to its end with this process's own channels
//   capture PROGRAM ARGUMENT… the same, but prints what was captured, in brackets
//   end-with-pool PROGRAM     leaves main() while a pool thread still runs it
//   quit-during PROGRAM       quits the application while the main thread runs it
//   hold-workspace            prints the temporary folder and stays until standard input ends
//   clear-workspaces          does what a launch does and prints the temporary folder
// Exit 0 when the run succeeded; else 1.
#include "platform/child_process.h"
#include "platform/main_queue.h"
#include "platform/temporary_directory.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

using namespace tessaly;

void say(const QByteArray &line)
{
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

void sayFolder()
{
    say(NSTemporaryDirectory().toUtf8() + '\n');
}

// The fake tool has begun when it has noted its start.
void waitForStart(const QString &program)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (QFileInfo::exists(program + ".pids"_L1)) loop.quit();
    });
    look.start(5);
    loop.exec();
}

int endWithPool(const QString &program)
{
    asyncOnGlobalQueue([program] { runToEnd(program, {}); });
    waitForStart(program);
    return 0;
}

int quitDuring(QCoreApplication &application, const QString &program)
{
    ProcessOutcome outcome;
    QTimer::singleShot(0, &application, [&] { outcome = runToEnd(program, {}); });
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &application, [&] {
        if (QFileInfo::exists(program + ".pids"_L1)) QCoreApplication::quit();
    });
    look.start(5);
    application.exec();
    return outcome.end == ProcessOutcome::End::stopped ? 0 : 1;
}

int holdWorkspace()
{
    sayFolder();
    while (std::getchar() != EOF) {
    }
    return 0;
}

} // namespace

int main(int count, char *words[])
{
    QCoreApplication application(count, words);
    QCoreApplication::setApplicationName(u"Another Name"_s);
    QStringList arguments = QCoreApplication::arguments().sliced(1);
    const QString mode = arguments.takeFirst();
    if (mode == "hold-workspace"_L1) return holdWorkspace();
    if (mode == "clear-workspaces"_L1) {
        removeTemporaryDirectory();
        removeDeadSiblings();
        sayFolder();
        return 0;
    }
    const QString program = arguments.takeFirst();
    if (mode == "end-with-pool"_L1) return endWithPool(program);
    if (mode == "quit-during"_L1) return quitDuring(application, program);
    if (mode == "run"_L1) return runToEnd(program, arguments).succeeded() ? 0 : 1;
    const CapturedRun run = runCapturingOutput(program, arguments);
    say('[' + run.output + ']');
    return run.outcome.succeeded() ? 0 : 1;
}
