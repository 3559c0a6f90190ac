// Whatever the prober wrote: the facts made of it agree with each other, and everything that is printed or
// computed from them has its form.
#include "cli/info_json.h"
#include "cli/info_text.h"
#include "jobs/completion_text.h"
#include "jobs/frame_size.h"
#include "jobs/job_end.h"
#include "jobs/poster_frames.h"
#include "jobs/resize_arguments.h"
#include "platform/byte_count.h"
#include "platform/printing.h"
#include "probe/file_facts.h"
#include "probe/refusal.h"
#include "probe/rotation_tags.h"
#include "probe/track_lengths.h"
#include "require.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

bool hasTrack(const FileProbe &facts, const char *type)
{
    return std::any_of(facts.tracksInfo.begin(), facts.tracksInfo.end(),
                       [type](const Dictionary &track) { return track.at("trackType") == Object(type); });
}

bool hasMotionPictures(const FileProbe &facts) // moving pictures that are no "Video" track
{
    return std::any_of(facts.tracksInfo.begin(), facts.tracksInfo.end(), [](const Dictionary &track) {
        return track.at("trackType") == Object("Other") && track.at("trackCodec") == Object("mjpeg");
    });
}

void checkValidity(const FileProbe &facts)
{
    const std::size_t streams = facts.jsonDictionary["streams"].rawArray().size();
    REQUIRE(facts.numberOfStreams == static_cast<qint64>(streams));
    REQUIRE(facts.isValidMediaFile == (streams > 0));
    REQUIRE(facts.tracksInfo.size() == streams);
    REQUIRE(facts.metadata.size() == (streams > 0 ? 12 : 0));
    REQUIRE(facts.hasErrors == (facts.jsonDictionary.dictionaryValue().count("error") == 1));
    if (facts.isValidMediaFile) return;
    REQUIRE(!facts.isEncrypted && !facts.hasVideoTrack && !facts.hasAudioTrack && !facts.hasSubtitleTrack);
    REQUIRE(facts.duration == 0 && facts.bitRate == 0 && !facts.videoWidth && !facts.videoHeight);
}

void checkFlags(const FileProbe &facts)
{
    REQUIRE(facts.hasAudioTrack == hasTrack(facts, "Audio"));
    REQUIRE(facts.hasSubtitleTrack == hasTrack(facts, "Subtitle"));
    REQUIRE(!facts.hasVideoTrack || hasTrack(facts, "Video") || hasMotionPictures(facts));
    REQUIRE(facts.hasVideoTrack || facts.tagRotateValue == 0);
}

void checkNumbers(const FileProbe &facts)
{
    REQUIRE(std::isfinite(facts.duration));
    REQUIRE(!facts.videoRatio || (facts.videoWidth && facts.videoHeight));
    REQUIRE(!facts.videoRatio || *facts.videoHeight == 0 || std::isfinite(*facts.videoRatio));
    for (const Dictionary &track : facts.tracksInfo)
        REQUIRE(std::isfinite(JSON(track.at("trackDuration")).doubleValue()));
}

void checkLengths(const FileProbe &facts)
{
    const TrackLengths lengths = keptTrackLengths(facts);
    for (const std::optional<double> length : {lengths.picture, lengths.sound, lengths.whole})
        REQUIRE(!length || (std::isfinite(*length) && *length > 0));
    REQUIRE(!lengths.pictures || *lengths.pictures > 0);
}

void checkRotation(const FileProbe &facts)
{
    JSON again = facts.jsonDictionary;
    restoreRotateTags(again);
    REQUIRE(again == facts.jsonDictionary);
}

void checkText(const FileProbe &facts)
{
    static const QRegularExpression form(
        u"\\A\\S[^\\n]*\\n(  (Kind|Size|Duration|Bit rate|File size|Track .*|"
        u"Title|Tagline|Synopsis|Release Date|Genre|HD|Media Kind|Composer|"
        u"Rating|Encoder|Copyright|Comment) +\\S[^\\n]*\\n)+\\z"_s);
    static const QRegularExpression controls(u"[\\x00-\\x09\\x0B-\\x1F\\x7F-\\x9F\\x{2028}-\\x{202E}]"_s);
    const QString text = infoText(*facts.fileFullPath, facts);
    REQUIRE(text.isValidUtf16());
    REQUIRE(!text.contains(controls));
    REQUIRE(form.match(text).hasMatch());
}

void checkJson(const FileProbe &facts)
{
    const QByteArray line = infoJson(facts);
    REQUIRE(line.isValidUtf8() && !line.contains('\n'));
    const JSON read = JSON::fromBytes({line.constData(), static_cast<std::size_t>(line.size())});
    REQUIRE(read.count() == 22);
    REQUIRE(read["bitRate"] == JSON(std::int64_t{facts.bitRate}));
    REQUIRE(read["duration"].doubleValue() == facts.duration);
    REQUIRE(read["videoWidth"].int_().has_value() == facts.videoWidth.has_value());
    REQUIRE(read["videoWidth"].intValue() == facts.videoWidth.value_or(0));
    REQUIRE(read["tracksInfo"].count() == facts.tracksInfo.size());
    REQUIRE(read["metadata"].count() == facts.metadata.size());
    for (std::size_t i = 0; i < facts.tracksInfo.size(); ++i) {
        const JSON track = read["tracksInfo"][i];
        REQUIRE(track.count() == 8);
        for (const auto &[key, value] : track)
            REQUIRE(value == JSON(facts.tracksInfo[i].at(key)));
    }
}

void checkTimes(const FileProbe &facts)
{
    static const QRegularExpression clock(u"\\A0?-?\\d+(:0?-?\\d+){2}\\.\\d\\d\\z"_s);
    static const QRegularExpression decimal(u"\\A-?\\d+\\.\\d+\\z"_s);
    REQUIRE(clock.match(durationHuman(facts.duration)).hasMatch());
    for (int n = 1; n <= posterFrameCount; ++n)
        REQUIRE(decimal.match(posterPosition(n, facts.duration)).hasMatch());
    REQUIRE(remarksOn({}, facts, facts).empty()); // no file is shorter than itself
}

void checkSize(const FileProbe &facts)
{
    static const QRegularExpression form(u"\\A(Zero|-?[\\d.]+) (bytes?|KB|MB|GB|TB|PB|EB)\\z"_s);
    REQUIRE(form.match(byteCountText(facts.jsonDictionary["format"]["size"].intValue())).hasMatch());
}

void checkJob(const FileProbe &facts)
{
    REQUIRE(completionText(facts, facts, facts).count(u'\n') == 1);
    if (refusalOf(facts, *facts.fileFullPath)) return;
    REQUIRE(facts.hasVideoTrack && facts.videoWidth && facts.videoHeight);
    SizeWish half{.percent = 50};
    SizeWish wide{.width = *facts.videoWidth};
    SizeWish high{.height = *facts.videoHeight};
    for (const SizeWish &wish : {SizeWish(), half, wide, high}) {
        const auto size = sizeForWish(wish, {*facts.videoWidth, *facts.videoHeight});
        REQUIRE(!size || (size->width % 2 == 0 && size->height % 2 == 0));
        REQUIRE(!size || sizeRefusal(*size) || (size->width >= 2 && size->height >= 2));
    }
    const QString title = facts.metadata.front().at(u"value"_s);
    const QStringList arguments = buildResizeArguments(facts, *facts.fileFullPath, title, 2, 2);
    REQUIRE(arguments.last() == title);
    REQUIRE(arguments.contains(u"-ac"_s) ==
            (facts.hasAudioTrack && facts.hasAudioTrackWhichHasMoreThanTwoChannels));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    setPrintTarget(PrintTarget::nowhere);
    const QByteArray report(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const FileProbe facts = FileProbe::fromReport(u"/videos/film.mp4"_s, report);
    checkValidity(facts);
    checkFlags(facts);
    checkNumbers(facts);
    checkLengths(facts);
    checkRotation(facts);
    checkText(facts);
    checkJson(facts);
    checkTimes(facts);
    checkSize(facts);
    checkJob(facts);
    return 0;
}
