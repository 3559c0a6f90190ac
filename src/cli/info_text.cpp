#include "cli/info_text.h"

#include "platform/debug_description.h"
#include "probe/file_facts.h"

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QString shown(const QString &text)
{
    const bool hasControls =
        std::any_of(text.begin(), text.end(), [](QChar c) { return c.category() == QChar::Other_Control; });
    return hasControls ? debugDescription(text) : text;
}

QString shown(const Object &value)
{
    return shown(QString::fromStdString(JSON(value).stringValue()));
}

QString line(const QString &label, const QString &value)
{
    return u"  %1%2\n"_s.arg(label, -14).arg(value);
}

QString judgement(const FileProbe &facts)
{
    if (!facts.isValidMediaFile) return u"not a media file"_s;
    if (facts.isEncrypted) return u"encrypted, or of a kind that cannot be decoded"_s;
    if (!facts.hasVideoTrack) return u"no video"_s;
    return u"video"_s;
}

QString resolution(const FileProbe &facts)
{
    const QString turn =
        facts.tagRotateValue == 0 ? QString() : u" (turned by %1 degrees)"_s.arg(facts.tagRotateValue);
    return u"%1 x %2"_s.arg(*facts.videoWidth).arg(*facts.videoHeight) + turn;
}

QString trackLine(const Dictionary &track)
{
    QStringList words;
    for (const char *key : {"trackType", "trackCodec", "trackSpecialInfo", "trackLanguage"}) {
        const QString word = shown(track.at(key));
        if (!word.isEmpty() && !words.contains(word)) words.append(word);
    }
    return words.join(u' ');
}

} // namespace

QString infoText(const QString &name, const FileProbe &facts)
{
    QString text = shown(name) + u'\n';
    text += line(u"Kind"_s, judgement(facts));
    if (facts.videoWidth && facts.videoHeight) text += line(u"Size"_s, resolution(facts));
    if (facts.isValidMediaFile) text += line(u"Duration"_s, durationHuman(facts.duration));
    if (facts.bitRate > 0) text += line(u"Bit rate"_s, u"%1 kbit/s"_s.arg((facts.bitRate + 500) / 1000));
    if (facts.fileSizeHuman) text += line(u"File size"_s, *facts.fileSizeHuman);
    for (const Dictionary &track : facts.tracksInfo) {
        text += line(u"Track %1"_s.arg(shown(track.at("trackID"))), trackLine(track));
    }
    for (const std::map<QString, QString> &entry : facts.metadata) {
        const QString value = entry.at(u"value"_s);
        if (!value.isEmpty() && value != "No"_L1) text += line(entry.at(u"key"_s), shown(value));
    }
    return text;
}

} // namespace tessaly
