// What a running job does to the sheet and to the desktop.
#pragma once

#include "jobs/progress.h"
#include "ui/launcher_progress.h"
#include "ui/progress_bar.h"
#include "ui/sleep_inhibitor.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>

#include <chrono>

namespace tessaly {

// Lives as long as the sheet is up: keeps the computer awake, moves the bars of the sheet and of the
// launcher, and tells the remaining time in the sheet's small line. Main thread only; outlived by both
// controls.
class JobFollower
{
public:
    JobFollower(ProgressBar &bar, QLabel &detail);
    ~JobFollower();
    JobFollower(const JobFollower &) = delete;
    JobFollower &operator=(const JobFollower &) = delete;

    void showProgress(double percent);
    void showConverted(double seconds); // of an input whose duration is not known
    // The small line says so from now on.
    void tellCancelling();

private:
    std::chrono::milliseconds elapsed() const { return std::chrono::milliseconds(m_time.elapsed()); }
    void showText();

    ProgressBar &m_bar;
    QLabel &m_detail;
    SleepInhibitor m_sleepInhibitor;
    LauncherProgress m_launcherProgress;
    RemainingTime m_remainingTime;
    QElapsedTimer m_time;
    QTimer m_tick;
    bool m_isCancelled = false;
};

} // namespace tessaly
