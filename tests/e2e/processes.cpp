#include "e2e/processes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

struct Status
{
    qint64 parent = 0;
    char state = 'Z';
};

Status statusOf(qint64 id)
{
    QFile file(u"/proc/%1/stat"_s.arg(id));
    if (!file.open(QIODevice::ReadOnly)) return {};
    // The name in front is in brackets and may hold anything.
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 2) return {};
    return {.parent = fields.at(1).toLongLong(), .state = fields.at(0).at(0)};
}

QList<RunningProcess> allProcesses()
{
    QList<RunningProcess> result;
    const QStringList names = QDir(u"/proc"_s).entryList(QDir::Dirs);
    for (const QString &name : names) {
        const qint64 id = name.toLongLong();
        if (id == 0) continue;
        const Status status = statusOf(id);
        if (status.state == 'Z' || status.state == 'X') continue;
        const QString executable = QFile::symLinkTarget(u"/proc/%1/exe"_s.arg(id));
        result << RunningProcess{id, status.parent, QFileInfo(executable).fileName()};
    }
    return result;
}

void addBelow(qint64 id, const QList<RunningProcess> &all, QList<RunningProcess> &result)
{
    for (const RunningProcess &process : all) {
        if (process.parent != id) continue;
        result << process;
        addBelow(process.id, all, result);
    }
}

} // namespace

QList<RunningProcess> processesBelow(qint64 id)
{
    QList<RunningProcess> result;
    addBelow(id, allProcesses(), result);
    return result;
}

void adoptOrphans()
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

QList<RunningProcess> runningMediaTools()
{
    QList<RunningProcess> tools = processesBelow(::getpid());
    tools.removeIf([](const RunningProcess &process) {
        return process.program != "ffmpeg"_L1 && process.program != "ffprobe"_L1;
    });
    return tools;
}

bool suspendConverter()
{
    for (const RunningProcess &tool : runningMediaTools()) {
        if (tool.program != "ffmpeg"_L1 || ::kill(static_cast<pid_t>(tool.id), SIGSTOP) != 0) continue;
        char state = 0;
        do // it stops a moment later, unless it ends before
            state = statusOf(tool.id).state;
        while (state != 'T' && state != 'Z');
        if (state == 'T') return true;
    }
    return false;
}

void resumeConverters()
{
    for (const RunningProcess &tool : runningMediaTools())
        ::kill(static_cast<pid_t>(tool.id), SIGCONT);
}

void endWithTest(QProcess &process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
}

void endProcess(QProcess &process)
{
    if (process.state() == QProcess::NotRunning) return;
    process.terminate();
    if (process.waitForFinished(2000)) return;
    process.kill();
    process.waitForFinished();
}

void killProcessesBelowTest()
{
    // Those whose parent is killed become children of the test, to be waited for in the next round.
    QList<RunningProcess> left = processesBelow(::getpid());
    while (!left.isEmpty()) {
        for (const RunningProcess &process : left) {
            ::kill(static_cast<pid_t>(process.id), SIGKILL);
            if (process.parent == ::getpid()) ::waitpid(static_cast<pid_t>(process.id), nullptr, 0);
        }
        left = processesBelow(::getpid());
    }
}

} // namespace tessaly::e2e
