#include "cli/info_json.h"

#include "cli/member_writer.h"
#include "probe/refusal.h"
#include "json/text_writer.h"

#include <array>

namespace tessaly {

namespace {

void writeTrack(EventSink &sink, const Dictionary &track)
{
    constexpr std::array keys{"trackType",          "trackCodec",         "trackID",
                              "trackSpecialInfo",   "trackPresentInfile", "trackDuration",
                              "trackDurationHuman", "trackLanguage"};
    MemberWriter members(sink);
    sink.beginDictionary();
    for (const char *key : keys) {
        const JSON value(track.at(key));
        if (value.type() == Type::number) {
            members.member(key, value.doubleValue());
        } else {
            members.member(key, QString::fromStdString(value.stringValue()));
        }
    }
    sink.endDictionary();
}

} // namespace

QByteArray infoJson(const FileProbe &facts)
{
    TextWriter sink;
    MemberWriter members(sink);
    sink.beginDictionary();
    members.member("hasErrors", facts.hasErrors);
    members.member("isValidMediaFile", facts.isValidMediaFile);
    members.member("isEncrypted", facts.isEncrypted);
    members.member("numberOfStreams", facts.numberOfStreams);
    members.member("hasVideoTrack", facts.hasVideoTrack);
    members.member("hasAudioTrack", facts.hasAudioTrack);
    members.member("hasSubtitleTrack", facts.hasSubtitleTrack);
    members.member("hasAudioTrackWhichHasMoreThanTwoChannels",
                   facts.hasAudioTrackWhichHasMoreThanTwoChannels);
    members.member("duration", facts.duration);
    members.member("bitRate", facts.bitRate);
    members.member("videoWidth", facts.videoWidth);
    members.member("videoHeight", facts.videoHeight);
    members.member("videoRatio", facts.videoRatio);
    members.member("tagRotateValue", facts.tagRotateValue);

    sink.key("tracksInfo");
    sink.beginArray();
    for (const Dictionary &track : facts.tracksInfo)
        writeTrack(sink, track);
    sink.endArray();

    sink.key("metadata");
    sink.beginArray();
    for (const std::map<QString, QString> &entry : facts.metadata) {
        sink.beginDictionary();
        for (const auto &[key, value] : entry)
            members.member(key.toStdString(), value);
        sink.endDictionary();
    }
    sink.endArray();

    members.member("fileSize", facts.fileSize);
    members.member("fileSizeHuman", facts.fileSizeHuman);
    members.member("fileFullPath", facts.fileFullPath);
    members.member("fileFullURL", facts.fileFullURL);
    members.member("proberFailure", facts.proberFailure);
    const QString reason = refusalDetails(facts);
    members.member("failure", reason.isEmpty() ? std::nullopt : std::optional(reason));
    sink.endDictionary();
    return QByteArray::fromStdString(sink.text());
}

} // namespace tessaly
