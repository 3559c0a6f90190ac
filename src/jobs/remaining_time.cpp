#include "jobs/progress.h"

#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr double jumpPoints = 10;
constexpr double highestReading = 110;
constexpr double longestToTell = 100 * 3600.0; // seconds

// The distance between two neighbouring times that the text can show, around this one.
double stepOf(double seconds)
{
    if (seconds < 57.5) return 5;
    if (seconds < 59.5 * 60) return 60;
    return 3600;
}

double coarse(double seconds)
{
    const double step = stepOf(seconds);
    return qMax(step, std::round(seconds / step) * step);
}

QString timeText(double seconds)
{
    const double step = stepOf(seconds);
    const auto unit = step < 60 ? "second"_L1 : step < 3600 ? "minute"_L1 : "hour"_L1;
    const auto count = static_cast<qint64>(step < 60 ? seconds : seconds / step);
    return QString::number(count) + u' ' + unit + (count == 1 ? u""_s : u"s"_s);
}

} // namespace

bool RemainingTime::believe(double percent)
{
    if (!std::isfinite(percent) || percent > highestReading) return false;
    const double reading = qMin(percent, 100.0);
    if (m_jump && reading >= *m_jump) riseTo(*m_jump);
    m_jump.reset();
    if (reading < m_percent) return false;
    if (reading > m_percent + qMax(jumpPoints, 2 * m_lastRise)) {
        m_jump = reading;
        return false;
    }
    riseTo(reading);
    return true;
}

void RemainingTime::riseTo(double percent)
{
    m_lastRise = percent - m_percent;
    m_percent = percent;
}

std::optional<double> RemainingTime::remainingSeconds(std::chrono::milliseconds elapsed) const
{
    if (m_percent >= 100 || m_percent <= 0) return std::nullopt;
    const double spent = std::chrono::duration<double>(elapsed).count();
    const double seconds = spent * (100 - m_percent) / m_percent;
    return seconds < longestToTell ? std::optional(seconds) : std::nullopt;
}

// A time near the border of two coarse ones must not swing between them.
void RemainingTime::settleOn(double seconds)
{
    const bool clearlyMore = m_shownSeconds && seconds >= *m_shownSeconds + 0.75 * stepOf(*m_shownSeconds);
    if (!m_shownSeconds || clearlyMore || coarse(seconds) < *m_shownSeconds) m_shownSeconds = coarse(seconds);
}

void RemainingTime::addReading(double percent, std::chrono::milliseconds elapsed)
{
    if (!believe(percent)) return;
    const bool canBeTold = (elapsed >= 2s && m_percent >= 2) || (elapsed >= 20s && m_percent > 0);
    if (!canBeTold || (!m_text.isEmpty() && elapsed < m_changed + 1s)) return;
    m_text = QString::number(static_cast<int>(m_percent)) + u" %"_s;
    if (const auto seconds = remainingSeconds(elapsed)) {
        settleOn(*seconds);
        m_text += u" - about "_s + timeText(*m_shownSeconds) + u" left"_s;
    }
    m_changed = elapsed;
}

} // namespace tessaly
