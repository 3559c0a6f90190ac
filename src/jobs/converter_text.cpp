#include "jobs/converter_text.h"

#include <QRegularExpression>

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype linesToShow = 30;
constexpr qsizetype longestLine = 400; // characters

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
        "Error opening (in|out)put files?\\b|Task finished with error|Terminating thread|"
        "Could not open encoder before EOF|Nothing was written into output file|Guessed Channel Layout|"
        "Consider increasing the value|No filtered frames for output stream)"_s);
    return pattern;
}

bool says(const QString &line, const QRegularExpression &what)
{
    return what.match(withoutSpeaker(line)).hasMatch();
}

} // namespace

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

QString lastConverterLines(const QStringList &lines)
{
    QStringList shown = lines;
    shown.removeIf([](const QString &line) { return says(line, progressOrStatistics()); });
    shown = shown.last(qMin(linesToShow, shown.size()));
    for (QString &line : shown) {
        if (line.size() > longestLine) line = line.first(longestLine) + u'…';
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
