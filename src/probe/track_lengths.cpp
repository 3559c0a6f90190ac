#include "probe/track_lengths.h"

#include "probe/stream_facts.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tessaly {

namespace {

std::optional<double> above0(double value)
{
    if (std::isfinite(value) && value > 0) return value;
    return std::nullopt;
}

// Seconds of a text like "00:00:10.010000000"; nothing for another text.
std::optional<double> secondsOfClock(const std::string &text)
{
    const QStringList parts = QString::fromStdString(text).split(u':');
    if (parts.size() != 3) return std::nullopt;
    double seconds = 0;
    for (const QString &part : parts) {
        bool isNumber = false;
        const double value = part.toDouble(&isNumber);
        if (!isNumber || value < 0) return std::nullopt;
        seconds = seconds * 60 + value;
    }
    return seconds;
}

// A Matroska file's tag, which some programs write with a language.
std::optional<double> taggedDuration(const JSON &stream)
{
    for (const char *tag : {"DURATION", "DURATION-eng"}) {
        if (const auto seconds = secondsOfClock(stream["tags"][tag].stringValue())) return seconds;
    }
    return std::nullopt;
}

// The stream's own word. An MP4 that is written as it is recorded may say "unknown": 32 bits of ones.
std::optional<double> saidDuration(const JSON &stream)
{
    if (stream["duration_ts"] == JSON(4294967295)) return std::nullopt;
    return above0(stream["duration"].doubleValue());
}

bool isMP4(const JSON &format)
{
    return format["format_name"].stringValue().starts_with("mov,");
}

// Whether the duration of a stream is rather the time at which it ends: so in an MP4 of fragments, which has
// no table to count its pictures by.
bool countsItsLead(const JSON &stream, const JSON &format)
{
    return isMP4(format) && stream["nb_frames"].error();
}

// A stream whose start is not known shows the container's duration as its own. The tag is the time at which
// the track ends; where a program wrote the length instead, the result is too short by the lead, which can
// only make a warning rarer.
std::optional<double> lengthOf(const JSON &stream, const JSON &format)
{
    if (stream["start_time"].error()) return std::nullopt;
    const double lead = std::max(stream["start_time"].doubleValue(), 0.0);
    const std::optional<double> duration = saidDuration(stream);
    if (duration && !countsItsLead(stream, format)) return duration;
    const std::optional<double> end = duration ? duration : taggedDuration(stream);
    return end ? above0(*end - lead) : std::nullopt;
}

bool isPreferredSound(const JSON &stream, const JSON &other)
{
    const auto rank = [](const JSON &track) {
        return std::tuple(track["disposition"]["default"].intValue() != 0, track["channels"].intValue());
    };
    return rank(stream) > rank(other);
}

const JSON *keptSound(const std::vector<JSON> &streams)
{
    const JSON *kept = nullptr;
    for (const JSON &stream : streams) {
        if (stream["codec_type"] != JSON("audio")) continue;
        if (kept == nullptr || isPreferredSound(stream, *kept)) kept = &stream;
    }
    return kept;
}

// For containers whose tracks say nothing themselves. Those of an MP4 do; what they do not know, it does not
// know either.
std::optional<double> containerLength(const JSON &format, const std::vector<JSON> &streams)
{
    const bool holdsOthers = std::any_of(streams.begin(), streams.end(), [](const JSON &stream) {
        return stream["codec_type"] != JSON("video") && stream["codec_type"] != JSON("audio");
    });
    if (holdsOthers || isMP4(format)) return std::nullopt;
    const double lead = std::max(format["start_time"].doubleValue(), 0.0);
    return above0(format["duration"].doubleValue() - lead);
}

} // namespace

TrackLengths keptTrackLengths(const FileProbe &probe)
{
    const std::vector<JSON> streams = probe.jsonDictionary["streams"].arrayValue();
    const JSON format = probe.jsonDictionary["format"];
    TrackLengths lengths;
    if (const JSON *video = mainVideoStream(streams)) {
        lengths.picture = lengthOf(*video, format);
        const std::int64_t pictures = (*video)["nb_frames"].intValue();
        if (pictures > 0) lengths.pictures = pictures;
    }
    if (const JSON *sound = keptSound(streams)) lengths.sound = lengthOf(*sound, format);
    lengths.whole = std::max(lengths.picture, lengths.sound);
    if (!lengths.whole) lengths.whole = containerLength(format, streams);
    return lengths;
}

} // namespace tessaly
