#include "app/job_follower.h"

#include <QCoreApplication>

namespace tessaly {

using namespace Qt::StringLiterals;

JobFollower::JobFollower(ProgressBar &bar, QLabel &detail)
    : m_bar(bar), m_detail(detail), m_sleepInhibitor(u"A video is being resized"_s)
{
    m_launcherProgress.show(0);
    m_time.start();
    QObject::connect(&m_tick, &QTimer::timeout, &m_tick, [this] {
        m_remainingTime.tick(elapsed());
        showText();
    });
    m_tick.start(std::chrono::seconds(1));
}

JobFollower::~JobFollower()
{
    m_detail.clear();
}

void JobFollower::tellCancelling()
{
    m_isCancelled = true;
    m_detail.setText(QCoreApplication::translate("JobFollower", "Cancelling..."));
}

void JobFollower::showProgress(double percent)
{
    m_bar.setDoubleValue(percent);
    m_launcherProgress.show(percent);
    m_remainingTime.addReading(percent, elapsed());
    showText();
}

void JobFollower::showConverted(double seconds)
{
    m_remainingTime.addConverted(seconds, elapsed());
    showText();
}

void JobFollower::showText()
{
    if (!m_isCancelled) m_detail.setText(m_remainingTime.text());
}

} // namespace tessaly
