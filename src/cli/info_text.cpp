#include "cli/info_text.h"

#include "cli/terminal_text.h"
#include "probe/file_facts.h"
#include "probe/refusal.h"
#include "probe/stream_facts.h"

#include <algorithm>
#include <array>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr int labelWidth = 14;
constexpr qsizetype longestTagText = 100;

QString line(const QString &label, const QString &value)
{
    return u"  "_s + label.leftJustified(labelWidth) + value + u'\n';
}

QString textOf(const JSON &value)
{
    return terminalText(QString::fromStdString(value.stringValue()));
}

QString textOf(const Dictionary &track, const char *key)
{
    return textOf(JSON(track.at(key)));
}

QString kind(const FileProbe &facts)
{
    if (facts.proberFailure) return u"unknown"_s;
    if (!facts.isValidMediaFile) return u"not a media file"_s;
    if (facts.isEncrypted) return u"encrypted, or of a kind that cannot be decoded"_s;
    const std::vector<JSON> streams = facts.jsonDictionary["streams"].arrayValue();
    const JSON *pictures = pictureStream(streams);
    if (pictures && holdsOnePicture(*pictures)) return u"a still"_s;
    if (facts.hasVideoTrack) return u"video"_s;
    if (isVideoWithoutRate(streams)) return u"video without a frame rate"_s;
    return facts.hasAudioTrack ? u"sound only"_s : u"neither video nor sound"_s;
}

QString kindWithReason(const FileProbe &facts)
{
    QString reason = terminalText(refusalDetails(facts));
    if (reason.endsWith(u'.')) reason.chop(1);
    return reason.isEmpty() ? kind(facts) : kind(facts) + u" ("_s + reason + u')';
}

QString frameSize(const FileProbe &facts)
{
    if (facts.videoWidth.value_or(0) <= 0 || facts.videoHeight.value_or(0) <= 0) return u"unknown"_s;
    const QString size = u"%1 x %2"_s.arg(*facts.videoWidth).arg(*facts.videoHeight);
    return facts.tagRotateValue == 0 ? size : size + u" (turned by %1 degrees)"_s.arg(facts.tagRotateValue);
}

qint64 roundedThousands(qint64 positive) // adding 500 to the largest number would not do
{
    return (positive / 500 + 1) / 2;
}

// What people want to know of a track: type, codec, special fact, language. "und" means that no language is
// known; the special fact of a track of no known type may be a tag of unprintable bytes.
QStringList trackCells(const Dictionary &track)
{
    QString codec = textOf(track, "trackCodec");
    QString special = textOf(track, "trackSpecialInfo");
    QString language = textOf(track, "trackLanguage");
    if (codec.isEmpty()) codec = u"unknown"_s;
    if (special.startsWith(u'[')) special.clear();
    if (special == language) special.clear();
    if (language == "und"_L1) language.clear();
    return {textOf(track, "trackType"), codec, special, language};
}

QString trackLines(const std::vector<Dictionary> &tracks)
{
    std::vector<QStringList> rows;
    std::array<qsizetype, 4> widths{};
    for (const Dictionary &track : tracks) {
        rows.push_back(trackCells(track));
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], rows.back()[static_cast<qsizetype>(column)].size());
    }

    QString text;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        QString value;
        for (std::size_t column = 0; column < widths.size(); ++column)
            value += rows[i][static_cast<qsizetype>(column)].leftJustified(widths[column] + 2);
        text += line(u"Track "_s + textOf(tracks[i], "trackID"), value.trimmed());
    }
    return text;
}

// Descriptions may have many paragraphs.
QString shortened(const QString &tag)
{
    QString text = terminalText(tag.simplified());
    if (text.size() <= longestTagText) return text;
    text.truncate(longestTagText - 1);
    if (text.back().isHighSurrogate()) text.chop(1);
    return text + u'…';
}

QString tagLines(const FileProbe &facts)
{
    QString text;
    for (const std::map<QString, QString> &entry : facts.metadata) {
        const QString value = shortened(entry.at(u"value"_s));
        if (!value.isEmpty() && value != "No"_L1) text += line(entry.at(u"key"_s), value);
    }
    return text;
}

} // namespace

QString infoText(const QString &name, const FileProbe &facts)
{
    QString text = terminalText(name) + u'\n' + line(u"Kind"_s, kindWithReason(facts));
    if (facts.hasVideoTrack) text += line(u"Size"_s, frameSize(facts));
    if (facts.isValidMediaFile)
        text += line(u"Duration"_s, facts.duration > 0 ? durationHuman(facts.duration) : u"unknown"_s);
    if (facts.bitRate > 0) text += line(u"Bit rate"_s, u"%1 kbit/s"_s.arg(roundedThousands(facts.bitRate)));
    if (facts.fileSize) text += line(u"File size"_s, *facts.fileSizeHuman);
    return text + trackLines(facts.tracksInfo) + tagLines(facts);
}

} // namespace tessaly
