#include "probe/stream_facts.h"

#include <algorithm>

namespace tessaly {

namespace {

bool isVideo(const JSON &stream)
{
    return stream["codec_type"] == JSON("video");
}

bool isCover(const JSON &stream)
{
    return stream["disposition"]["attached_pic"].intValue() != 0;
}

// Pictures per second, from a text like "30000/1001"; not finite, or not above 0, when there is no rate.
double frameRate(const JSON &stream)
{
    const std::string text = stream["avg_frame_rate"].stringValue();
    const std::size_t bar = std::min(text.find('/'), text.size());
    return JSON(text.substr(0, bar)).doubleValue() /
           JSON(text.substr(std::min(bar + 1, text.size()))).doubleValue();
}

} // namespace

bool isTurnedByAQuarter(const JSON &stream)
{
    const JSON rotate = stream["tags"]["rotate"];
    return rotate == JSON("90") || rotate == JSON("270");
}

bool isStillPicture(const JSON &stream)
{
    return stream["avg_frame_rate"] == JSON("0/0");
}

bool isRealSubtitle(const JSON &stream)
{
    return stream["codec_type"] == JSON("subtitle") && stream["codec_tag_string"] != JSON("text") &&
           stream["codec_name"] != JSON();
}

bool hasUnnamedVideoCodec(const std::vector<JSON> &streams)
{
    return std::any_of(streams.begin(), streams.end(),
                       [](const JSON &stream) { return isVideo(stream) && stream["codec_name"] == JSON(); });
}

const JSON *mainVideoStream(const std::vector<JSON> &streams)
{
    const auto found = std::find_if(streams.begin(), streams.end(), [](const JSON &stream) {
        return isVideo(stream) && !isStillPicture(stream);
    });
    return found == streams.end() ? nullptr : &*found;
}

const JSON *pictureStream(const std::vector<JSON> &streams)
{
    if (const JSON *video = mainVideoStream(streams)) return video;
    const bool isCoverOfSound = hasAudio(streams);
    const auto found = std::find_if(streams.begin(), streams.end(), [isCoverOfSound](const JSON &stream) {
        return isVideo(stream) && !(isCoverOfSound && isCover(stream));
    });
    return found == streams.end() ? nullptr : &*found;
}

bool holdsOnePicture(const JSON &stream)
{
    if (isCover(stream)) return true;
    const std::int64_t counted = stream["nb_frames"].intValue();
    if (counted > 0) return counted == 1;
    const double pictures = stream["duration"].doubleValue() * frameRate(stream);
    return pictures > 0 && pictures < 1.5;
}

bool isVideoWithoutRate(const std::vector<JSON> &streams)
{
    const JSON *pictures = pictureStream(streams);
    return pictures && isStillPicture(*pictures) && !holdsOnePicture(*pictures);
}

std::optional<MainVideo> mainVideo(const std::vector<JSON> &streams)
{
    const JSON *found = mainVideoStream(streams);
    if (found == nullptr) return std::nullopt;

    const JSON &stream = *found;
    MainVideo video{.width = stream["width"].intValue(),
                    .height = stream["height"].intValue(),
                    .rotate = stream["tags"]["rotate"].intValue()};
    if (isTurnedByAQuarter(stream)) std::swap(video.width, video.height);
    return video;
}

bool hasAudio(const std::vector<JSON> &streams)
{
    return std::any_of(streams.begin(), streams.end(),
                       [](const JSON &stream) { return stream["codec_type"] == JSON("audio"); });
}

bool hasMoreThanTwoChannels(const std::vector<JSON> &streams)
{
    return std::any_of(streams.begin(), streams.end(),
                       [](const JSON &stream) { return stream["channels"].int_().value_or(0) > 2; });
}

bool hasSubtitles(const std::vector<JSON> &streams)
{
    return std::any_of(streams.begin(), streams.end(), isRealSubtitle);
}

} // namespace tessaly
