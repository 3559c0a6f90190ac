#include "ui/progress_bar.h"

#include <QStyleOptionProgressBar>

#include <algorithm>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int positionsPerPercent = 100; // finer than the pixels of any bar

double withinBar(double percent)
{
    return std::clamp(percent, 0.0, 100.0);
}

int wholePercent(double percent)
{
    return qRound(withinBar(percent));
}

} // namespace

ProgressBar::ProgressBar(QWidget *parent) : QProgressBar(parent)
{
    setTextVisible(false);
    m_announcement.setSingleShot(true);
    setAnnouncementPace(std::chrono::seconds(5));
    connect(&m_announcement, &QTimer::timeout, this, &ProgressBar::announce);
}

void ProgressBar::setDoubleValue(double percent)
{
    m_value = percent;
    update();
    if (isVisible() && !m_announcement.isActive()) m_announcement.start();
}

bool ProgressBar::isBusy() const
{
    return !std::isfinite(m_value);
}

QString ProgressBar::text() const
{
    return isBusy() ? QString() : QString::number(wholePercent(m_value)) + u'%';
}

void ProgressBar::initStyleOption(QStyleOptionProgressBar *option) const
{
    QProgressBar::initStyleOption(option);
    option->minimum = 0;
    option->maximum = isBusy() ? 0 : 100 * positionsPerPercent;
    option->progress = isBusy() ? 0 : qRound(withinBar(m_value) * positionsPerPercent);
}

void ProgressBar::hideEvent(QHideEvent *event)
{
    QProgressBar::hideEvent(event);
    m_announcement.stop();
    m_announced.reset();
}

void ProgressBar::announce()
{
    if (isBusy()) return;
    const int percent = wholePercent(m_value);
    if (m_announced == percent) return;
    m_announced = percent;
    QAccessibleValueChangeEvent event(this, percent);
    QAccessible::updateAccessibility(&event);
    Q_EMIT announced(percent);
}

AccessibleValue ProgressBar::accessibleValue() const
{
    if (isBusy()) return {0, 0, 0, 0, QString()};
    return {withinBar(m_value), 0, 100, 0, QString::number(wholePercent(m_value)) + " %"_L1};
}

} // namespace tessaly
