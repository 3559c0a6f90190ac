#include "ui/progress_bar.h"

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

} // namespace

ProgressBar::ProgressBar(QWidget *parent) : QProgressBar(parent)
{
    setTextVisible(false);
    setDoubleValue(0);
}

void ProgressBar::setDoubleValue(double percent)
{
    m_value = percent;
    if (std::isfinite(percent)) {
        setRange(0, 100 * positionsPerPercent);
        setValue(qRound(withinBar(percent) * positionsPerPercent));
    } else {
        setRange(0, 0); // busy
    }
}

AccessibleValue ProgressBar::accessibleValue() const
{
    if (!std::isfinite(m_value)) return {0, 0, 0, 0, QString()};
    const double shown = withinBar(m_value);
    return {shown, 0, 100, 0, QString::number(qRound(shown)) + " %"_L1};
}

} // namespace tessaly
