#include "probe/track_records.h"

#include "probe/file_facts.h"
#include "probe/stream_facts.h"

namespace tessaly {

namespace {

bool setsTheSizeAgain(const JSON &stream)
{
    const JSON codec = stream["codec_name"];
    return stream["codec_type"] == JSON("video") && (codec == JSON("h264") || codec == JSON("theora") ||
                                                     codec == JSON("wmv3") || codec == JSON("WMV3"));
}

void takeSizeFrom(const JSON &stream, FileProbe &probe)
{
    probe.videoWidth = stream["width"].int_();
    probe.videoHeight = stream["height"].int_();
    if (isTurnedByAQuarter(stream)) std::swap(probe.videoWidth, probe.videoHeight);
    probe.videoRatio.reset();
    if (probe.videoWidth && probe.videoHeight) {
        probe.videoRatio = static_cast<double>(*probe.videoWidth) / static_cast<double>(*probe.videoHeight);
    }
}

// "1920x1080"; a side that is not known shows as "?", and nothing known is an empty text.
std::string sizeText(std::optional<qint64> width, std::optional<qint64> height)
{
    if (!width && !height) return {};
    const auto side = [](std::optional<qint64> pixels) { return pixels ? std::to_string(*pixels) : "?"; };
    return side(width) + "x" + side(height);
}

std::string specialInfo(const std::string &type, const JSON &stream, const FileProbe &probe)
{
    if (type == "Video") return sizeText(probe.videoWidth, probe.videoHeight);
    if (type == "Audio") return stream["channel_layout"].stringValue();
    if (type == "Subtitle") return stream["tags"]["language"].stringValue();
    if (type == "Poster") return stream["width"].stringValue() + "x" + stream["height"].stringValue();
    return stream["codec_tag_string"].stringValue();
}

} // namespace

std::string trackType(const JSON &stream)
{
    const JSON type = stream["codec_type"];
    const JSON codec = stream["codec_name"];
    const JSON tag = stream["codec_tag_string"];
    const bool isVideo = type == JSON("video");
    if (isVideo && codec == JSON("mjpeg") && tag == JSON("jpeg")) return "Other";
    if (setsTheSizeAgain(stream)) return "Video";
    if (isVideo && !isStillPicture(stream)) return "Video";
    if (type == JSON("audio")) return "Audio";
    if (isRealSubtitle(stream)) return "Subtitle";
    if (isVideo && tag == JSON("[0][0][0][0]") && (codec == JSON("mjpeg") || codec == JSON("png")))
        return "Poster";
    return "Other";
}

void recordTracks(FileProbe &probe, const QString &path)
{
    for (const JSON &stream : probe.jsonDictionary["streams"].arrayValue()) {
        if (setsTheSizeAgain(stream)) takeSizeFrom(stream, probe);
        const std::string type = trackType(stream);
        const double duration = stream["duration"].doubleValue();
        probe.tracksInfo.push_back({
            {"trackType", type},
            {"trackCodec", stream["codec_name"].stringValue()},
            {"trackID", stream["index"].stringValue()},
            {"trackSpecialInfo", specialInfo(type, stream, probe)},
            {"trackPresentInfile", path.toStdString()},
            {"trackDuration", duration},
            {"trackDurationHuman", durationHuman(duration).toStdString()},
            {"trackLanguage", stream["tags"]["language"].stringValue()},
            {"trackDictionary", stream.type() == Type::dictionary ? stream.object() : Object(nullptr)},
        });
    }
}

} // namespace tessaly
