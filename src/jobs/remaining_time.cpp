#include "jobs/progress.h"

#include <algorithm>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr double highestReading = 110;         // percent
constexpr double longestToTell = 100 * 3600.0; // seconds
constexpr double shortestMemory = 20;          // seconds
constexpr double lastPercent = 99;
constexpr double shortestToTell = 5; // seconds
constexpr auto stallAfter = 10s;

double secondsOf(RemainingTime::Time time)
{
    return std::chrono::duration<double>(time).count();
}

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

QString stallText(RemainingTime::Time time)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time).count();
    return seconds < 120 ? u"no progress for %1 s"_s.arg(seconds)
                         : u"no progress for %1 minutes"_s.arg(seconds / 60);
}

// As the converter writes it, without the part of a second.
QString clockText(double seconds)
{
    const auto whole = static_cast<qint64>(seconds);
    return u"%1:%2:%3"_s.arg(whole / 3600, 2, 10, QChar(u'0'))
        .arg(whole / 60 % 60, 2, 10, QChar(u'0'))
        .arg(whole % 60, 2, 10, QChar(u'0'));
}

// How much of a smoothed figure is new after this time.
double newShare(double seconds, double memory)
{
    return 1 - std::exp(-seconds / memory);
}

} // namespace

void BelievedReading::add(double reading)
{
    if (m_jump && reading >= *m_jump) riseTo(*m_jump);
    m_jump.reset();
    if (reading > m_value + qMax(m_largestStep, 2 * m_lastRise)) {
        m_jump = reading;
    } else if (reading >= m_value) {
        riseTo(reading);
    }
}

void BelievedReading::riseTo(double value)
{
    m_lastRise = value - m_value;
    m_value = value;
}

void RemainingTime::addReading(double percent, Time elapsed)
{
    const double before = m_percent.value();
    if (std::isfinite(percent) && percent <= highestReading) m_percent.add(qMin(percent, 100.0));
    follow(m_percent.value() - before, elapsed);
}

void RemainingTime::addConverted(double seconds, Time elapsed)
{
    const double before = m_converted.value();
    if (std::isfinite(seconds) && seconds < longestToTell) m_converted.add(seconds);
    follow(m_converted.value() - before, elapsed);
}

void RemainingTime::tick(Time elapsed)
{
    m_stalled = elapsed - m_rose >= stallAfter;
    if (m_stalled) tell(elapsed);
}

void RemainingTime::follow(double rise, Time elapsed)
{
    if (rise <= 0) {
        tick(elapsed);
        return;
    }
    const double sinceRise = secondsOf(elapsed - m_rose);
    m_rose = elapsed;
    m_stalled = false;
    const double memory = qMax(shortestMemory, secondsOf(elapsed) / 3);
    if (sinceRise < secondsOf(stallAfter)) { // after a stall it goes on as before
        m_recentRise += rise - m_recentRise * newShare(sinceRise, memory);
        m_recentTime += sinceRise - m_recentTime * newShare(sinceRise, memory);
    }
    // The first estimates are the worst.
    const double steadiness = qMin(memory / 4, secondsOf(elapsed) / 6);
    if (const auto end = expectedEnd(secondsOf(elapsed)))
        m_end = m_end ? *m_end + (*end - *m_end) * newShare(sinceRise, steadiness) : *end;
    tell(elapsed);
}

// In seconds since the job began.
std::optional<double> RemainingTime::expectedEnd(double elapsed) const
{
    const double percent = m_percent.value();
    if (percent <= 0) return std::nullopt;
    const double perPercent = m_recentRise > 0 ? m_recentTime / m_recentRise : elapsed / percent;
    return elapsed + (100 - percent) * perPercent;
}

bool RemainingTime::canBeTold(Time elapsed) const
{
    if (m_stalled) return true;
    if (m_converted.value() > 0) return elapsed >= 2s;
    return (elapsed >= 2s && m_percent.value() >= 2) || (elapsed >= 20s && m_percent.value() > 0);
}

void RemainingTime::tell(Time elapsed)
{
    if (!canBeTold(elapsed) || (!m_text.isEmpty() && elapsed < m_changed + 1s)) return;
    m_text = textAt(elapsed);
    m_changed = elapsed;
}

QString RemainingTime::done() const
{
    if (m_converted.value() > 0) return clockText(m_converted.value()) + u" converted"_s;
    return QString::number(static_cast<int>(m_percent.value())) + u" %"_s;
}

QString RemainingTime::textAt(Time elapsed)
{
    const double percent = m_percent.value();
    const double left = m_end ? *m_end - secondsOf(m_rose) : longestToTell;
    QStringList parts;
    if (percent > 0 || m_converted.value() > 0) parts += done();
    if (percent >= 100 || (percent >= lastPercent && left <= shortestToTell)) {
        parts += u"finishing"_s;
    } else if (m_stalled) {
        parts += stallText(elapsed - m_rose);
    } else if (left < longestToTell) {
        settleOn(left);
        parts += u"about "_s + timeText(*m_shownSeconds) + u" left"_s;
    }
    return parts.join(u" - "_s);
}

// A time near the border of two coarse ones must not swing between them, and noise must not make it grow.
void RemainingTime::settleOn(double seconds)
{
    if (m_shownSeconds) {
        const double shown = *m_shownSeconds;
        const bool clearlyLess = seconds <= shown - 0.6 * stepOf(seconds);
        const bool clearlyMore = seconds >= shown + std::max({0.6 * stepOf(shown), 7.5, 0.35 * shown});
        if (!clearlyLess && !clearlyMore) return;
    }
    m_shownSeconds = coarse(seconds);
}

} // namespace tessaly
