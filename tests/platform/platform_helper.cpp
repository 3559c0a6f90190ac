// A second copy of the program, for what only another process can show:
//   run PROGRAM ARGUMENT…     runs it to its end with this process's own channels
//   capture PROGRAM ARGUMENT… the same, but prints what was captured, in brackets
//   quit-during PROGRAM       quits the application while the main thread runs it
//   die-during WAY READING PROGRAM
//                             dies while a pool thread runs it: by return from main(), exit without any
//                             clearing up, or kill; reading nothing, output or errors of it
//   starve PROGRAM            runs it with 0, 1, 2, ... descriptors left to the process, until it can be run;
//                             prints each end on a line
//   hold-workspace            prints the temporary folder and stays until standard input ends
//   clear-workspaces          does what a launch does and prints the temporary folder
// Exit 0 when the run succeeded; else 1.
#include "platform/child_process.h"
#include "platform/main_queue.h"
#include "platform/temporary_directory.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

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

int dieDuring(const QString &way, const QString &reading, const QString &program)
{
    const Reading what = reading == "output"_L1   ? Reading::standardOutput
                         : reading == "errors"_L1 ? Reading::standardError
                                                  : Reading::nothing;
    asyncOnGlobalQueue([=] { (void)ChildProcess().run(program, {}, what); });
    waitForStart(program);
    if (way == "kill"_L1) std::raise(SIGKILL);
    if (way == "exit"_L1) std::_Exit(0);
    return 0;
}

int starve(const QString &program)
{
    const int next = ::dup(STDIN_FILENO);
    ::close(next);
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    for (int left = 0; left < 20; ++left) {
        limit.rlim_cur = static_cast<rlim_t>(next + left);
        ::setrlimit(RLIMIT_NOFILE, &limit);
        const CapturedRun run = runCapturingOutput(program, {});
        const bool failed = run.outcome.end == ProcessOutcome::End::failedToStart;
        say((failed ? run.outcome.failure.toUtf8() : run.output) + '\n');
        if (!failed) return 0;
    }
    return 1;
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
    if (mode == "die-during"_L1) return dieDuring(arguments.at(0), arguments.at(1), arguments.at(2));
    const QString program = arguments.takeFirst();
    if (mode == "starve"_L1) return starve(program);
    if (mode == "quit-during"_L1) return quitDuring(application, program);
    if (mode == "run"_L1) return runToEnd(program, arguments).succeeded() ? 0 : 1;
    const CapturedRun run = runCapturingOutput(program, arguments);
    say('[' + run.output + ']');
    return run.outcome.succeeded() ? 0 : 1;
}
