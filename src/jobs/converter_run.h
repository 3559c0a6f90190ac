// One run of the converter, the resource tool "creator".
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>

class QProcess;

namespace tessaly {

// How a run came to its end; told once.
struct RunOutcome
{
    enum class End {
        failedToStart, // no such tool, or it cannot be run; see reason
        ended,         // by itself, with this exit code
        crashed,       // by this signal, which was not ours
        stopped        // requestStop() came before its end, whatever the exit code says
    };

    End end = End::failedToStart;
    int code = 0;        // exit code or signal number
    QString reason;      // a sentence to show, when it failed to start
    QByteArray lastText; // the last 64 KiB of standard error
};

// The child has the null device for standard input, this program's standard output, and a process group of
// its own, so that a key typed in a terminal reaches only this program. It does not outlive this program:
// where the end of the application finds it running it is stopped, and the system kills it when the program
// dies in another way.
class ConverterRun
{
public:
    // How long a child that was asked to end may take before it is killed: after a person's cancel, and when
    // the program itself ends.
    static constexpr std::chrono::milliseconds cancelPatience = std::chrono::seconds(15);
    static constexpr std::chrono::milliseconds endPatience = std::chrono::seconds(3);

    static constexpr qsizetype keptText = 65536; // bytes

    // One piece of standard error as it was read; called by run() on its thread, in order.
    using ChunkHandler = std::function<void(const QByteArray &)>;

    // Runs the converter and waits for its end on the calling thread, without dispatching events. To be
    // called once.
    RunOutcome run(const QStringList &arguments, const ChunkHandler &onChunk = {});

    // Asks the child to end (SIGTERM) within a tenth of a second, and kills it when the patience is over; no
    // child is started any more. Of several requests the one whose patience ends first counts. Any thread,
    // also from a signal handler, at any time of this object's life.
    void requestStop(std::chrono::milliseconds patience = cancelPatience);

private:
    bool stopIsRequested() const;
    void read(QProcess &process, const ChunkHandler &onChunk);
    void stopWhenDue(QProcess &process);

    using Time = std::chrono::steady_clock::rep;
    static constexpr Time never = std::numeric_limits<Time>::max();

    std::atomic<Time> m_killAt = never; // of the steady clock; another thread writes nothing but this
    static_assert(std::atomic<Time>::is_always_lock_free);
    bool m_terminated = false;
    QByteArray m_lastText;
};

} // namespace tessaly
