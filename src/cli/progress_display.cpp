#include "cli/progress_display.h"

#include "cli/streams.h"

#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace tessaly {

using namespace Qt::StringLiterals;

ProgressStyle progressStyle(bool quiet)
{
    if (quiet) return ProgressStyle::none;
    return ::isatty(STDERR_FILENO) == 1 ? ProgressStyle::bar : ProgressStyle::lines;
}

ProgressDisplay::ProgressDisplay(ProgressStyle style) : m_style(style)
{
    m_time.start();
}

void ProgressDisplay::show(double percent)
{
    if (m_style == ProgressStyle::none || !std::isfinite(percent)) return;
    m_remaining.addReading(percent, std::chrono::milliseconds(m_time.elapsed()));
    const double shown = std::clamp(percent, 0.0, 100.0);
    if (m_style == ProgressStyle::bar) {
        drawBar(shown);
    } else {
        writeLine(shown);
    }
}

void ProgressDisplay::drawBar(double percent)
{
    constexpr int width = 30;
    const int filled = static_cast<int>(percent / 100 * width);
    const QString text =
        m_remaining.text().isEmpty() ? u"%1 %"_s.arg(static_cast<int>(percent)) : m_remaining.text();
    const QString line = u"\r["_s + QString(filled, u'#') + QString(width - filled, u'.') + u"] "_s + text;
    write(stderr, line.toUtf8() + "\033[K");
}

void ProgressDisplay::writeLine(double percent)
{
    const int tenth = static_cast<int>(percent / 10);
    if (tenth <= m_tenth) return;
    m_tenth = tenth;
    write(stderr, u"%1 %\n"_s.arg(tenth * 10).toUtf8());
}

void ProgressDisplay::finish()
{
    if (m_style == ProgressStyle::bar) write(stderr, "\r\033[K");
}

} // namespace tessaly
