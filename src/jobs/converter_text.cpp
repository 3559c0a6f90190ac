#include "jobs/converter_text.h"

#include <QRegularExpression>

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype linesToShow = 30;
constexpr qsizetype longestShown = 400;  // characters of a line
constexpr qsizetype longestRead = 16384; // bytes of a line; paths have up to 4096

// Matched against the line without its speaker.
const QRegularExpression &progressOrStatistics()
{
    static const QRegularExpression pattern(
        u"^(frame=|size=|video:\\d|frame [IPB]:|consecutive B-frames|mb [IPB] |8x8 transform|coded y|"
        "i\\d+c? |Weighted |ref [IPB] |kb/s:|Qavg:|\\d+ frames left in the queue|using (SAR|cpu)|profile |264 - core)"_s);
    return pattern;
}

// What comes before any error, or after every one.
const QRegularExpression &sayingNothing()
{
    static const QRegularExpression pattern(
        u"^( |ffmpeg version|Input #|Output #|Stream mapping:|Press \\[q\\]|Conversion failed!|"
        "Exiting normally|Error marking filters as finished|Error initializing output stream \\S+ -- $|"
        "Error opening (in|out)put files?\\b|Error sending frames to consumers|Task finished with "
        "error|Terminating thread|"
        "Could not open encoder before EOF|Nothing was written into output file|Guessed Channel Layout|"
        "Consider increasing the value|No filtered frames for output stream)"_s);
    return pattern;
}

// What it says of itself before all else: its version, how it was built, its libraries.
const QRegularExpression &banner()
{
    static const QRegularExpression pattern(
        u"^(ffmpeg version |  built with |  configuration: |  WARNING: library configuration mismatch|"
        "  \\w+ +configuration: |  lib\\w+ +\\d+\\. *\\d+\\.\\d+ / )"_s);
    return pattern;
}

bool says(const QString &line, const QRegularExpression &what)
{
    return what.match(withoutSpeaker(line)).hasMatch();
}

bool isBreak(char c)
{
    return c == '\n' || c == '\r';
}

// Without a first or last line that was cut; all of it when there is but one line.
QByteArrayView upToLastBreak(QByteArrayView text)
{
    const auto found = std::find_if(text.rbegin(), text.rend(), isBreak);
    return found == text.rend() ? text : text.first(text.rend() - found);
}

QByteArrayView fromFirstBreak(QByteArrayView text)
{
    const auto found = std::find_if(text.begin(), text.end(), isBreak);
    return found == text.end() ? text : text.sliced(found - text.begin());
}

} // namespace

void ConverterText::add(const QByteArray &chunk)
{
    keep(chunk);
    readLines(chunk);
}

void ConverterText::keep(const QByteArray &chunk)
{
    const qsizetype forHead = qMin(keptText - m_head.size(), chunk.size());
    m_head += chunk.first(forHead);
    const QByteArrayView rest = QByteArrayView(chunk).sliced(forHead);
    m_tail += rest.last(qMin(rest.size(), keptText));
    m_hasGap = m_hasGap || rest.size() > keptText || m_tail.size() > keptText;
    if (m_tail.size() > 4 * keptText) m_tail = m_tail.last(keptText);
}

QByteArray ConverterText::text() const
{
    if (!m_hasGap) return m_head + m_tail;
    const QByteArrayView tail = QByteArrayView(m_tail).last(qMin(m_tail.size(), keptText));
    QByteArray text = upToLastBreak(m_head).toByteArray();
    return text.append('\n').append(fromFirstBreak(tail));
}

void ConverterText::readLines(QByteArrayView chunk)
{
    while (!chunk.isEmpty()) {
        const auto end = std::find_if(chunk.begin(), chunk.end(), isBreak);
        const qsizetype length = end - chunk.begin();
        m_line += chunk.first(qMin(length, longestRead - m_line.size()));
        if (end == chunk.end()) return;
        endLine();
        chunk = chunk.sliced(length + 1);
    }
}

void ConverterText::endLine()
{
    const bool isPlain = !m_line.contains('\x1B');
    if (!m_line.isEmpty()) m_errors.addLine(isPlain ? m_line : converterLines(m_line).join(u' ').toUtf8());
    m_line.clear();
}

QStringList converterLines(const QByteArray &text)
{
    static const QRegularExpression colours(u"\\x1B\\[[0-9;]*m"_s);
    static const QRegularExpression breaks(u"[\\r\\n]+"_s);
    static const QRegularExpression controls(u"[\\x00-\\x08\\x0B-\\x1F\\x7F]"_s);
    QStringList lines = QString::fromUtf8(text).remove(colours).split(breaks);
    for (QString &line : lines)
        line.remove(controls);
    lines.removeIf([](const QString &line) { return QStringView(line).trimmed().isEmpty(); });
    return lines;
}

QString withoutSpeaker(const QString &line)
{
    static const QRegularExpression speakers(u"^(\\[[^\\]]* @ 0x[0-9a-f]+\\] )+"_s);
    return QString(line).remove(speakers);
}

QStringList withoutBanner(const QStringList &lines)
{
    const auto first = std::find_if_not(lines.cbegin(), lines.cend(),
                                        [](const QString &line) { return banner().match(line).hasMatch(); });
    return {first, lines.cend()};
}

QString lastConverterLines(const QStringList &lines)
{
    QStringList shown = withoutBanner(lines);
    shown.removeIf([](const QString &line) { return says(line, progressOrStatistics()); });
    shown = shown.last(qMin(linesToShow, shown.size()));
    for (QString &line : shown) {
        if (line.size() > longestShown) line = line.first(longestShown) + u'…';
    }
    return shown.join(u'\n');
}

QString lastMeaningfulLine(const QStringList &lines)
{
    const auto found = std::find_if(lines.crbegin(), lines.crend(), [](const QString &line) {
        return !says(line, progressOrStatistics()) && !says(line, sayingNothing());
    });
    return found == lines.crend() ? QString() : withoutSpeaker(*found).trimmed();
}

} // namespace tessaly
