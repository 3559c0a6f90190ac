// Running another program to its end: the one way in which children are started, read, and stopped. Nothing
// goes through a shell or a search path, and a child never has the terminal: its standard input is the null
// device. It has a process group of its own, so that a key typed in a terminal reaches only this program, and
// what is left of that group ends with the run; it has the usual treatment of signals, this program's
// environment and in it, unless the person has set them, settings of glibc's malloc that suit large frames,
// and on Linux it is killed by the system when this program dies, however that comes about, and shut in as
// confinement.h tells.
#pragma once

#include "platform/writable_places.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>

namespace tessaly {

struct ProcessOutcome
{
    enum class End {
        exited,        // by itself
        signalled,     // by a signal that was not ours
        failedToStart, // missing, a folder, not executable, not a program for this machine
        timedOut,      // killed by us at the time limit
        tooMuchOutput, // killed by us at the output limit
        stopped        // requestStop() or endAllRuns() came before its end, or even before its start
    };

    End end = End::failedToStart;
    int code = 0;    // exit status, or signal number when a signal ended it
    QString failure; // when failedToStart: a sentence to show

    bool succeeded() const { return end == End::exited && code == 0; }
};

struct ProcessLimits
{
    std::chrono::milliseconds time{0}; // 0: none
    qint64 outputBytes = 0;            // of what is read; 0: none
    // How long a child that the end of the program finds running may take after SIGTERM until it is killed.
    // 0: it is killed at once.
    std::chrono::milliseconds whenProgramEnds{0};
};

// What is read of a child; its other channels are inherited.
enum class Reading {
    nothing,
    // To the end of the pipe, also when the child has exited before and another process goes on writing;
    // within the time limit.
    standardOutput,
    // Until the child's exit, whoever else still holds the pipe.
    standardError
};

class ChildProcess
{
public:
    // One piece as it was read, in order; called by run() on its thread.
    using ChunkHandler = std::function<void(const QByteArray &)>;
    // Called by run() on its thread several times a second, also when nothing is read.
    using TickHandler = std::function<void()>;

    // Runs the program and waits for its end on the calling thread, which may be any. Where the application
    // object's thread has a running event loop, the wait runs a local one under a BusyInput: windows repaint,
    // timers fire, user input is thrown away; when the application is told to quit meanwhile, all runs end as
    // by endAllRuns(). Elsewhere no event is dispatched. To be called once. The child can write nowhere but
    // at the places that are given, and to what it inherits.
    [[nodiscard]] ProcessOutcome run(const QString &program, const QStringList &arguments,
                                     Reading reading = Reading::nothing, const ChunkHandler &onChunk = {},
                                     ProcessLimits limits = {}, const TickHandler &onTick = {},
                                     const WritablePlaces &writable = {});

    // Asks the child to end (SIGTERM) within a tenth of a second, and kills it when the limit is over; with a
    // limit of 0 it is killed without being asked. A child that has not started is not started any more. Of
    // several requests the one whose limit is over first counts. Any thread, also from a signal handler, at
    // any time of this object's life.
    void requestStop(std::chrono::milliseconds limit);
    bool stopIsRequested() const { return m_killAt != never; }

    // Of the running child, for a chunk handler; 0 when none runs.
    qint64 processId() const { return m_processId; }

private:
    class Run;

    using Time = std::chrono::steady_clock::rep;
    static constexpr Time never = std::numeric_limits<Time>::max();

    std::atomic<Time> m_killAt = never; // of the steady clock; another thread writes nothing but this
    static_assert(std::atomic<Time>::is_always_lock_free);
    std::atomic<qint64> m_processId = 0;
};

struct CapturedRun
{
    ProcessOutcome outcome;
    QByteArray output; // all that came until the end of the pipe, at most outputBytes
};

// A whole run whose standard output is captured, and which writes no files.
[[nodiscard]] CapturedRun runCapturingOutput(const QString &program, const QStringList &arguments,
                                             ProcessLimits limits = {});

// A whole run of which nothing is read.
[[nodiscard]] ProcessOutcome runToEnd(const QString &program, const QStringList &arguments,
                                      ProcessLimits limits = {}, const WritablePlaces &writable = {});

// For the end of the program: every run on any thread stops its child within a tenth of a second, as its
// limits say, and new runs end as stopped without starting. Happens by itself when the application object
// goes. Any thread.
void endAllRuns();
bool runsAreEnding();
// Takes endAllRuns() back.
void letRunsStart();

} // namespace tessaly
