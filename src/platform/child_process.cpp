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
    Run(const QString &program, const QStringList &arguments, ProcessLimits limits,
        QProcess::ProcessChannelMode channels)
        : m_program(program), m_limits(limits)
    {
        m_process.setProgram(m_program.isEmpty() ? m_program : QFileInfo(m_program).absoluteFilePath());
        m_process.setArguments(arguments);
        m_process.setStandardInputFile(QProcess::nullDevice());
        m_process.setProcessChannelMode(channels);
        QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                         [this] { readOutput(); });
        QObject::connect(&m_process, &QProcess::errorOccurred, &m_process,
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart) m_startFailed = true;
                         });
    }

    CapturedRun toTheEnd()
    {
        if (runsAreEnding()) return {{End::stopped, 0, {}}, {}};
        endWithTheApplication();
        if (m_limits.time > 0ms) m_deadline.setRemainingTime(m_limits.time);
        m_process.start();
        if (eventLoopIsRunning()) waitInEventLoop();
        waitPlainly();
        return {outcome(), m_output};
    }

private:
    bool isOver() const { return m_process.state() == QProcess::NotRunning; }

    void waitInEventLoop()
    {
        const BusyInput busy;
        QEventLoop loop;
        QObject::connect(&m_process, &QProcess::stateChanged, &loop, [this, &loop] {
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
        while (!isOver() && !m_process.waitForFinished(static_cast<int>(untilNextCheck().count())))
            stopWhenDue();
    }

    std::chrono::milliseconds untilNextCheck() const
    {
        if (m_stopReason || m_deadline.isForever()) return noticing;
        return std::min(noticing, std::chrono::milliseconds(m_deadline.remainingTime()));
    }

    void stopWhenDue()
    {
        if (runsAreEnding()) stop(End::stopped);
        if (m_deadline.hasExpired()) stop(End::timedOut);
    }

    void stop(End reason)
    {
        if (m_stopReason || isOver()) return;
        m_stopReason = reason;
        m_process.kill();
    }

    void readOutput()
    {
        m_output += m_process.readAllStandardOutput();
        if (m_limits.outputBytes <= 0 || m_output.size() <= m_limits.outputBytes) return;
        m_output.truncate(m_limits.outputBytes);
        stop(End::tooMuchOutput);
    }

    ProcessOutcome outcome() const
    {
        if (m_startFailed)
            return {End::failedToStart, 0, startFailureReason(m_program, m_process.errorString())};
        if (m_stopReason) return {*m_stopReason, 0, {}};
        const bool exited = m_process.exitStatus() == QProcess::NormalExit;
        return {exited ? End::exited : End::signalled, m_process.exitCode(), {}};
    }

    QString m_program;
    ProcessLimits m_limits;
    QDeadlineTimer m_deadline{QDeadlineTimer::Forever};
    QByteArray m_output;
    std::optional<End> m_stopReason;
    bool m_startFailed = false;
    QProcess m_process; // last: its end may still report to the members above
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
