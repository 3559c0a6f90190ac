// Running another program to its end. Nothing goes through a shell or a search path, and a child never has
// the terminal: its standard input is the null device.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <chrono>

namespace tessaly {

struct ProcessOutcome
{
    enum class End {
        exited,
        signalled,
        failedToStart, // missing, a folder, not executable, not a program for this machine
        timedOut,      // killed by us at the time limit
        tooMuchOutput, // killed by us at the output limit
        stopped        // killed by us, or not even started, because the program is ending
    };

    End end = End::failedToStart;
    int code = 0;   // exit status when exited, signal number when signalled
    QString reason; // when failedToStart: a sentence to show

    bool succeeded() const { return end == End::exited && code == 0; }
};

struct ProcessLimits
{
    std::chrono::milliseconds time{0}; // 0: none
    qint64 outputBytes = 0;            // of captured output; 0: none
};

struct CapturedRun
{
    ProcessOutcome outcome;
    QByteArray output; // all that came until the end, at most outputBytes
};

// Both wait on the calling thread, which may be any. Where the application object's thread has a running
// event loop, the wait runs a local one under a BusyInput: windows repaint, timers fire, user input is thrown
// away. When the application is told to quit meanwhile, the run ends at once as by endAllRuns(). Elsewhere no
// event is dispatched.

// Standard output is captured as it comes, standard error is inherited.
CapturedRun runCapturingOutput(const QString &program, const QStringList &arguments,
                               ProcessLimits limits = {});

// Standard output and standard error are inherited.
ProcessOutcome runToEnd(const QString &program, const QStringList &arguments, ProcessLimits limits = {});

// For the end of the program: every run on any thread kills its child and ends as stopped within a tenth of a
// second, and new runs end as stopped without starting. Happens by itself when the application object goes.
// Any thread.
void endAllRuns();
bool runsAreEnding();
// Takes endAllRuns() back.
void letRunsStart();

// Why a program could not be started, as a sentence. systemText is QProcess::errorString().
QString startFailureReason(const QString &program, const QString &systemText);

} // namespace tessaly
