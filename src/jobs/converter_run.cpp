#include "jobs/converter_run.h"

#include "platform/bundle.h"
#include "platform/child_process.h"

#include <QCoreApplication>
#include <QProcess>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif
#include <unistd.h>

namespace tessaly {

using namespace Qt::StringLiterals;
using End = RunOutcome::End;

namespace {

constexpr int noticing = 50; // milliseconds until a request to stop is seen

// Runs in the child, between fork and exec.
void separate(pid_t parent)
{
    ::setpgid(0, 0);
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (::getppid() != parent) ::_exit(1); // it died before it could be watched
}

} // namespace

void ConverterRun::requestStop(std::chrono::milliseconds patience)
{
    const Time killAt = (std::chrono::steady_clock::now() + patience).time_since_epoch().count();
    Time earlier = m_killAt;
    while (killAt < earlier && !m_killAt.compare_exchange_weak(earlier, killAt)) {
    }
}

bool ConverterRun::stopIsRequested() const
{
    return m_killAt != never;
}

RunOutcome ConverterRun::run(const QStringList &arguments, const ChunkHandler &onChunk)
{
    const std::optional<QString> program = pathForResource(u"creator"_s);
    if (runsAreEnding()) requestStop(endPatience);
    if (stopIsRequested()) return {End::stopped, 0, {}, {}};
    if (!program) return {End::failedToStart, 0, u"The converter \"creator\" is missing."_s, {}};

    QProcess process;
    process.setProgram(*program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedOutputChannel);
    process.setReadChannel(QProcess::StandardError);
    process.setChildProcessModifier([parent = ::getpid()] { separate(parent); });
    bool started = true;
    QObject::connect(&process, &QProcess::errorOccurred, &process, [&started](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) started = false;
    });

    process.start();
    while (process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(noticing);
        read(process, onChunk);
        stopWhenDue(process);
    }

    RunOutcome outcome{End::ended, process.exitCode(), {}, m_lastText.right(keptText)};
    if (!started)
        outcome = {End::failedToStart, 0, startFailureReason(*program, process.errorString()), {}};
    else if (stopIsRequested())
        outcome.end = End::stopped;
    else if (process.exitStatus() == QProcess::CrashExit)
        outcome.end = End::crashed;
    return outcome;
}

void ConverterRun::read(QProcess &process, const ChunkHandler &onChunk)
{
    const QByteArray chunk = process.readAllStandardError();
    if (chunk.isEmpty()) return;
    m_lastText += chunk;
    if (m_lastText.size() > 4 * keptText) m_lastText = m_lastText.right(keptText);
    if (onChunk) onChunk(chunk);
}

void ConverterRun::stopWhenDue(QProcess &process)
{
    if (runsAreEnding() || QCoreApplication::closingDown()) requestStop(endPatience);
    if (!stopIsRequested()) return;
    if (!m_terminated) process.terminate();
    m_terminated = true;
    if (std::chrono::steady_clock::now().time_since_epoch().count() >= m_killAt) process.kill();
}

} // namespace tessaly
