#include "platform/child_process.h"

#include "platform/busy_input.h"
#include "platform/confinement.h"
#include "platform/pipe.h"
#include "platform/small_stack.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <csignal>
#include <mutex>
#include <optional>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tessaly {

namespace {

using End = ProcessOutcome::End;

// How long a wait may take to see that a stop was requested or a limit is over.
constexpr std::chrono::milliseconds checkInterval = 50ms;

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

// FFmpeg takes its frames and contexts in blocks for which malloc asks the kernel each time anew, page by
// page: a tenth of the time of a still. With these the blocks come out of a few huge pages that it keeps. The
// thresholds are those at which malloc itself arrives when it has given back such blocks (mallopt(3)); in
// bytes.
constexpr auto mallocVariable = "GLIBC_TUNABLES"_L1;
constexpr auto mallocSettings = "glibc.malloc.hugetlb=1:glibc.malloc.mmap_threshold=33554432:"
                                "glibc.malloc.trim_threshold=67108864:glibc.malloc.top_pad=4194304"_L1;

QProcessEnvironment childEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!environment.contains(mallocVariable)) environment.insert(mallocVariable, mallocSettings);
    return environment;
}

// In the child, between fork and exec: only what is safe in a signal handler.
TESSALY_ON_A_SMALL_STACK void prepareChild(pid_t parent, int channel, int pipeEnd,
                                           const Confinement &confinement)
{
    ::setpgid(0, 0);
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (::getppid() != parent) ::_exit(1); // it died before it could be watched
    if (pipeEnd >= 0) ::dup2(pipeEnd, channel);
    std::signal(SIGPIPE, SIG_DFL);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    confinement.enter();
}

QString startFailure(const QString &program, const QString &systemText)
{
    const QFileInfo file(program);
    if (program.isEmpty()) return u"A program is missing."_s;
    if (!file.exists()) return u"The program \"%1\" is missing."_s.arg(program);
    if (file.isDir()) return u"\"%1\" is a folder, not a program."_s.arg(program);
    if (!file.isExecutable()) return u"The program \"%1\" is not marked as executable."_s.arg(program);
    const QString detail = systemText.section(": "_L1, -1);
    return u"The program \"%1\" cannot be run on this computer (%2)."_s.arg(program, detail);
}

} // namespace

// One child from its start to its end.
class ChildProcess::Run
{
public:
    Run(ChildProcess &owner, Reading reading, const ChunkHandler &onChunk, ProcessLimits limits,
        const TickHandler &onTick)
        : m_owner(owner), m_reading(reading), m_onChunk(onChunk), m_onTick(onTick), m_limits(limits)
    {
        if (reading != Reading::nothing) m_pipe.emplace();
    }
    ~Run() { m_owner.m_processId = 0; }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    ProcessOutcome toTheEnd(const QString &program, const QStringList &arguments,
                            const WritablePlaces &writable)
    {
        start(program.isEmpty() ? program : QFileInfo(program).absoluteFilePath(), arguments,
              Confinement(writable));
        if (eventLoopIsRunning()) waitInEventLoop();
        waitPlainly();
        readWhatTheChildLeft();
        endItsHelpers();
        return outcome();
    }

private:
    void start(const QString &program, const QStringList &arguments, const Confinement &confinement)
    {
        const int channel = m_reading == Reading::standardError ? STDERR_FILENO : STDOUT_FILENO;
        const int pipeEnd = m_pipe ? m_pipe->writingEnd() : -1;
        QObject::connect(&m_process, &QProcess::errorOccurred, &m_process,
                         [this](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart) m_startFailed = true;
                         });
        m_process.setProgram(program);
        m_process.setArguments(arguments);
        m_process.setProcessEnvironment(childEnvironment());
        m_process.setStandardInputFile(QProcess::nullDevice());
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.setChildProcessModifier(
            [parent = ::getpid(), channel, pipeEnd, &confinement]()
                TESSALY_ON_A_SMALL_STACK { prepareChild(parent, channel, pipeEnd, confinement); });
        if (m_limits.time > 0ms) m_deadline.setRemainingTime(m_limits.time);
        m_process.start();
        m_owner.m_processId = m_process.processId();
        m_group = static_cast<pid_t>(m_process.processId());
        if (m_pipe) m_pipe->closeWritingEnd();
    }

    bool hasExited() const { return m_process.state() == QProcess::NotRunning; }

    bool isOver() const
    {
        const bool outputIsWhole =
            m_reading != Reading::standardOutput || m_pipe->isAtEnd() || m_readingIsCut;
        return hasExited() && (outputIsWhole || m_startFailed);
    }

    void waitInEventLoop()
    {
        const BusyInput busy;
        QEventLoop loop;
        const auto quitWhenOver = [this, &loop] {
            if (isOver()) loop.quit();
        };
        QObject::connect(&m_process, &QProcess::stateChanged, &loop, quitWhenOver);
        std::optional<QSocketNotifier> arrival;
        if (m_pipe && !m_pipe->isAtEnd()) {
            arrival.emplace(m_pipe->readingEnd(), QSocketNotifier::Read);
            QObject::connect(&*arrival, &QSocketNotifier::activated, &loop, [&] {
                read();
                arrival->setEnabled(!m_pipe->isAtEnd());
                quitWhenOver();
            });
        }
        QTimer nextCheck;
        QObject::connect(&nextCheck, &QTimer::timeout, &loop, [&] {
            check();
            quitWhenOver();
            nextCheck.start(untilNextCheck());
        });
        nextCheck.start(untilNextCheck());
        if (!isOver()) loop.exec();
        if (!isOver()) endAllRuns(); // somebody else ended the loop: the application is quitting
    }

    void waitPlainly()
    {
        while (!isOver()) {
            check();
            const int interval = static_cast<int>(untilNextCheck().count());
            if (!m_pipe || m_pipe->isAtEnd()) {
                m_process.waitForFinished(interval);
                continue;
            }
            if (m_pipe->waitForArrival(interval)) read();
            if (!hasExited()) m_process.waitForFinished(0);
        }
    }

    std::chrono::milliseconds untilNextCheck() const
    {
        if (m_end || m_deadline.isForever()) return checkInterval;
        return std::min(checkInterval, std::chrono::milliseconds(m_deadline.remainingTime()));
    }

    void check()
    {
        if (m_onTick) m_onTick();
        if (runsAreEnding() || QCoreApplication::closingDown()) m_owner.requestStop(m_limits.whenProgramEnds);
        if (m_owner.stopIsRequested()) stopAsRequested();
        if (m_deadline.hasExpired()) killFor(End::timedOut);
    }

    void stopAsRequested()
    {
        const bool isDue = std::chrono::steady_clock::now().time_since_epoch().count() >= m_owner.m_killAt;
        if (isDue) {
            killFor(End::stopped);
        } else if (!m_end && m_process.state() == QProcess::Running) {
            // Not earlier: until the program runs, the child still has this program's handlers.
            m_end = End::stopped;
            signalGroup(SIGTERM);
        }
    }

    void killFor(End end)
    {
        m_readingIsCut = true;
        if (hasExited()) return;
        if (!m_end) m_end = end;
        signalGroup(SIGKILL);
    }

    void signalGroup(int signal) const
    {
        const auto child = static_cast<pid_t>(m_process.processId());
        if (child > 0 && ::kill(-child, signal) != 0) ::kill(child, signal); // not a group yet
    }

    void read()
    {
        QByteArray chunk = m_pipe->readChunk();
        m_received += chunk.size();
        const qint64 excess = m_limits.outputBytes > 0 ? m_received - m_limits.outputBytes : 0;
        if (excess > 0) {
            chunk.chop(std::min(excess, qint64(chunk.size())));
            killFor(End::tooMuchOutput);
        }
        if (!chunk.isEmpty() && m_onChunk) m_onChunk(chunk);
    }

    // Others may go on writing: what is there now is all that can be the child's.
    void readWhatTheChildLeft()
    {
        if (m_reading != Reading::standardError) return;
        for (qint64 left = m_pipe->available(); left > 0 && !m_pipe->isAtEnd();) {
            const qint64 before = m_received;
            read();
            left -= m_received - before;
        }
    }

    // What it started and left behind would go on without a limit, and nobody would see it. A number is not
    // given to another process while a group goes by it.
    void endItsHelpers() const
    {
        if (m_group > 0) ::kill(-m_group, SIGKILL);
    }

    ProcessOutcome outcome() const
    {
        if (m_startFailed)
            return {End::failedToStart, 0, startFailure(m_process.program(), m_process.errorString())};
        const bool exited = m_process.exitStatus() == QProcess::NormalExit;
        const End byItself = exited ? End::exited : End::signalled;
        const End end = m_owner.stopIsRequested() ? End::stopped : byItself;
        return {m_end.value_or(end), m_process.exitCode(), {}};
    }

    ChildProcess &m_owner;
    Reading m_reading;
    const ChunkHandler &m_onChunk;
    const TickHandler &m_onTick;
    ProcessLimits m_limits;
    std::optional<Pipe> m_pipe;
    QDeadlineTimer m_deadline{QDeadlineTimer::Forever};
    qint64 m_received = 0;
    pid_t m_group = 0;
    std::optional<End> m_end; // when it was our doing
    bool m_readingIsCut = false;
    bool m_startFailed = false;
    QProcess m_process; // last: its end may still report to the members above
};

ProcessOutcome ChildProcess::run(const QString &program, const QStringList &arguments, Reading reading,
                                 const ChunkHandler &onChunk, ProcessLimits limits, const TickHandler &onTick,
                                 const WritablePlaces &writable)
{
    if (runsAreEnding()) requestStop(limits.whenProgramEnds);
    if (stopIsRequested()) return {End::stopped, 0, {}};
    endWithTheApplication();
    return Run(*this, reading, onChunk, limits, onTick).toTheEnd(program, arguments, writable);
}

void ChildProcess::requestStop(std::chrono::milliseconds limit)
{
    const Time killAt = (std::chrono::steady_clock::now() + limit).time_since_epoch().count();
    Time earlier = m_killAt;
    while (killAt < earlier && !m_killAt.compare_exchange_weak(earlier, killAt)) {
    }
}

CapturedRun runCapturingOutput(const QString &program, const QStringList &arguments, ProcessLimits limits)
{
    CapturedRun captured;
    captured.outcome = ChildProcess().run(
        program, arguments, Reading::standardOutput,
        [&captured](const QByteArray &chunk) { captured.output += chunk; }, limits);
    return captured;
}

ProcessOutcome runToEnd(const QString &program, const QStringList &arguments, ProcessLimits limits,
                        const WritablePlaces &writable)
{
    return ChildProcess().run(program, arguments, Reading::nothing, {}, limits, {}, writable);
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

} // namespace tessaly
