#include "cli/progress_display.h"

#include "cli/member_writer.h"
#include "cli/streams.h"
#include "json/text_writer.h"

#include <QElapsedTimer>

#include <cmath>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

ProgressDisplay::Clock startedClock()
{
    QElapsedTimer time;
    time.start();
    return [time] { return RemainingTime::Time(time.elapsed()); };
}

// A line that fills the last column may wrap, and could not be written over.
int lineWidth()
{
    winsize size{};
    const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return (isKnown ? size.ws_col : 80) - 1;
}

constexpr int longestBar = 30;
constexpr int shortestBar = 10;

int barBeside(const QString &text, int width)
{
    return qMin(longestBar, width - 3 - static_cast<int>(text.size()));
}

QString barAndText(double percent, int bar, const QString &text)
{
    const int filled = static_cast<int>(percent / 100 * bar);
    return u'[' + QString(filled, u'#') + QString(bar - filled, u'.') + u"] "_s + text;
}

// "[######........] 42 % - about 1 minute left". Where this is too wide the bar goes first, then the time.
QString barLine(double percent, const QString &text, int width)
{
    const int bar = barBeside(text, width);
    if (bar >= shortestBar) return barAndText(percent, bar, text);
    if (text.size() <= width) return text;
    const QString shortText = text.section(u" - "_s, 0, 0);
    const int shortTextsBar = barBeside(shortText, width);
    if (shortTextsBar >= shortestBar) return barAndText(percent, shortTextsBar, shortText);
    return shortText.left(width);
}

} // namespace

ProgressStyle progressStyle(bool wantsObjects, bool quiet)
{
    if (wantsObjects) return ProgressStyle::objects;
    if (quiet) return ProgressStyle::none;
    const QByteArray terminal = qgetenv("TERM");
    const bool canWriteOver = ::isatty(STDERR_FILENO) == 1 && !terminal.isEmpty() && terminal != "dumb";
    return canWriteOver ? ProgressStyle::bar : ProgressStyle::lines;
}

ProgressDisplay::ProgressDisplay(ProgressStyle style, const ProgressSubject &subject)
    : ProgressDisplay(style, subject, startedClock())
{}

ProgressDisplay::ProgressDisplay(ProgressStyle style, const ProgressSubject &subject, Clock clock)
    : m_style(style), m_subject(subject), m_clock(std::move(clock))
{}

void ProgressDisplay::show(double percent)
{
    if (!std::isfinite(percent)) return;
    m_remaining.addReading(percent, m_clock());
    draw();
}

void ProgressDisplay::showConverted(double seconds)
{
    m_remaining.addConverted(seconds, m_clock());
    draw();
}

void ProgressDisplay::tick()
{
    m_remaining.tick(m_clock());
    if (!m_remaining.text().isEmpty()) draw();
}

void ProgressDisplay::draw()
{
    if (m_style == ProgressStyle::bar) drawBar();
    if (m_style == ProgressStyle::lines) writeLines();
    if (m_style == ProgressStyle::objects) writeObject();
}

// The bar stands where its number does, which may be a second old.
void ProgressDisplay::drawBar()
{
    const bool isTold = !m_remaining.text().isEmpty();
    if (!isTold || m_remaining.text() != m_text) m_percent = m_remaining.percent();
    m_text = m_remaining.text();
    const QString text = isTold ? m_text : m_remaining.done();
    const int width = lineWidth();
    const bool hasBar = m_remaining.converted() <= 0;
    const QString place = m_subject.place.left(width);
    const int rest = width - static_cast<int>(place.size());
    const QString line = hasBar ? barLine(m_percent, text, rest) : text.left(rest);
    write(stderr, '\r' + (place + line).toUtf8() + "\033[K");
}

void ProgressDisplay::writeLines()
{
    const int tenth = static_cast<int>(m_remaining.percent() / 10);
    const int minute = static_cast<int>(m_remaining.converted() / 60);
    if (tenth > m_tenth) writeLine(u"%1 %"_s.arg(tenth * 10));
    if (minute > m_minute) writeLine(m_remaining.done());
    if (m_remaining.isStalled() && !m_stalled) writeLine(m_remaining.text());
    m_tenth = tenth;
    m_minute = minute;
    m_stalled = m_remaining.isStalled();
}

void ProgressDisplay::writeLine(const QString &text)
{
    write(stderr, (m_subject.place + text).toUtf8() + '\n');
}

void ProgressDisplay::writeObject()
{
    const int percent = static_cast<int>(m_remaining.percent());
    const int second = static_cast<int>(m_remaining.converted());
    if (percent <= m_wholePercent && second <= m_second) return;
    m_wholePercent = percent;
    m_second = second;
    const bool hasPercent = m_remaining.converted() <= 0;
    TextWriter sink;
    MemberWriter members(sink);
    sink.beginDictionary();
    members.member("input", m_subject.input);
    members.member("percent", hasPercent ? std::optional(qint64{percent}) : std::nullopt);
    members.member("convertedSeconds", hasPercent ? std::nullopt : std::optional(qint64{second}));
    sink.endDictionary();
    write(output(), QByteArray::fromStdString(sink.text()) + '\n');
}

void ProgressDisplay::finish()
{
    if (m_style == ProgressStyle::bar) write(stderr, "\r\033[K");
}

} // namespace tessaly
