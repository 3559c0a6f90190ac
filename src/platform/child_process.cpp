#include "platform/child_process.h"

#include "platform/busy_input.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <mutex>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tessaly {

namespace {

using End = ProcessOutcome::End;

// How long a wait may take to notice endAllRuns().
constexpr std::chrono::milliseconds noticing = 100ms;

std::atomic_bool ending = false;

void endWithTheApplication()
{
    static std::once_flag once;
    std::call_once(once, [] { qAddPostRoutine(endAllRuns); });
}

bool eventLoopIsRunning()
{
    const QCoreApplication *application = QCoreApplication::instance();
    const QThread *current = QThread::currentThread();
    return application && application->thread() == current && current->loopLevel() > 0;
}

// One child from its start to its end.
class Run
{
public:
    Run(const QString &programPath, const QStringList &arguments, ProcessLimits processLimits,
        QProcess::ProcessChannelMode channels)
        : program(programPath), limits(processLimits)
    {
        process.setProgram(program.isEmpty() ? program : QFileInfo(program).absoluteFilePath());
        process.setArguments(arguments);
        process.setStandardInputFile(QProcess::nullDevice());
        process.setProcessChannelMode(channels);
        QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [this] { readOutput(); });
        QObject::connect(&process, &QProcess::errorOccurred, &process, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) startFailed = true;
        });
    }

    CapturedRun toTheEnd()
    {
        if (runsAreEnding()) return {{End::stopped, 0, {}}, {}};
        endWithTheApplication();
        if (limits.time > 0ms) deadline.setRemainingTime(limits.time);
        process.start();
        if (eventLoopIsRunning()) waitInEventLoop();
        waitPlainly();
        return {outcome(), output};
    }

private:
    bool isOver() const { return process.state() == QProcess::NotRunning; }

    void waitInEventLoop()
    {
        const BusyInput busy;
        QEventLoop loop;
        QObject::connect(&process, &QProcess::stateChanged, &loop, [this, &loop] {
            if (isOver()) loop.quit();
        });
        QTimer check;
        QObject::connect(&check, &QTimer::timeout, &loop, [this, &check] {
            stopWhenDue();
            check.start(untilNextCheck());
        });
        check.start(untilNextCheck());
        if (!isOver()) loop.exec();
        if (isOver()) return;
        // Somebody else ended the loop: the application is quitting.
        endAllRuns();
        stop(End::stopped);
    }

    void waitPlainly()
    {
        while (!isOver() && !process.waitForFinished(static_cast<int>(untilNextCheck().count())))
            stopWhenDue();
    }

    std::chrono::milliseconds untilNextCheck() const
    {
        if (stopReason || deadline.isForever()) return noticing;
        return std::min(noticing, std::chrono::milliseconds(deadline.remainingTime()));
    }

    void stopWhenDue()
    {
        if (runsAreEnding()) stop(End::stopped);
        if (deadline.hasExpired()) stop(End::timedOut);
    }

    void stop(End reason)
    {
        if (stopReason || isOver()) return;
        stopReason = reason;
        process.kill();
    }

    void readOutput()
    {
        output += process.readAllStandardOutput();
        if (limits.outputBytes <= 0 || output.size() <= limits.outputBytes) return;
        output.truncate(limits.outputBytes);
        stop(End::tooMuchOutput);
    }

    ProcessOutcome outcome() const
    {
        if (startFailed) return {End::failedToStart, 0, startFailureReason(program, process.errorString())};
        if (stopReason) return {*stopReason, 0, {}};
        const bool exited = process.exitStatus() == QProcess::NormalExit;
        return {exited ? End::exited : End::signalled, process.exitCode(), {}};
    }

    QString program;
    ProcessLimits limits;
    QDeadlineTimer deadline{QDeadlineTimer::Forever};
    QByteArray output;
    std::optional<End> stopReason;
    bool startFailed = false;
    QProcess process; // last: its end may still report to the members above
};

} // namespace

CapturedRun runCapturingOutput(const QString &program, const QStringList &arguments, ProcessLimits limits)
{
    return Run(program, arguments, limits, QProcess::ForwardedErrorChannel).toTheEnd();
}

ProcessOutcome runToEnd(const QString &program, const QStringList &arguments, ProcessLimits limits)
{
    return Run(program, arguments, limits, QProcess::ForwardedChannels).toTheEnd().outcome;
}

void endAllRuns()
{
    ending = true;
}

bool runsAreEnding()
{
    return ending;
}

void letRunsStart()
{
    ending = false;
}

QString startFailureReason(const QString &program, const QString &systemText)
{
    const QFileInfo file(program);
    if (program.isEmpty() || !file.exists())
        return program.isEmpty() ? u"A program is missing."_s
                                 : u"The program \"%1\" is missing."_s.arg(program);
    if (file.isDir()) return u"\"%1\" is a folder, not a program."_s.arg(program);
    if (!file.isExecutable()) return u"The program \"%1\" is not marked as executable."_s.arg(program);
    const QString detail = systemText.section(": "_L1, -1);
    return u"The program \"%1\" cannot be run on this computer (%2)."_s.arg(program, detail);
}

} // namespace tessaly
