#include "probe/facts_text.h"

#include "probe/stream_facts.h"

#include <QStringList>

#include <array>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr double longestLength = 1e9; // seconds; more is no length of a video

// "35 s", "1 min 5 s", "2 h 3 min"; the two largest units tell enough.
QString lengthText(double seconds)
{
    if (!std::isfinite(seconds) || seconds <= 0 || seconds > longestLength) return {};
    if (seconds < 9.95) return QString::number(std::round(seconds * 10) / 10) + u" s"_s;
    const qint64 whole = std::llround(seconds);
    const qint64 minutes = whole / 60;
    if (minutes == 0) return u"%1 s"_s.arg(whole);
    if (minutes < 60)
        return whole % 60 == 0 ? u"%1 min"_s.arg(minutes) : u"%1 min %2 s"_s.arg(minutes).arg(whole % 60);
    return minutes % 60 == 0 ? u"%1 h"_s.arg(minutes / 60)
                             : u"%1 h %2 min"_s.arg(minutes / 60).arg(minutes % 60);
}

// What people call a codec; the prober's own name where it has no other.
QString codecText(const JSON &stream)
{
    struct Name
    {
        std::string_view codec;
        QLatin1StringView text;
    };
    constexpr std::array names{
        Name{"h264", "H.264"_L1},        Name{"hevc", "H.265"_L1},        Name{"mpeg1video", "MPEG-1"_L1},
        Name{"mpeg2video", "MPEG-2"_L1}, Name{"mpeg4", "MPEG-4"_L1},      Name{"vp8", "VP8"_L1},
        Name{"vp9", "VP9"_L1},           Name{"av1", "AV1"_L1},           Name{"prores", "ProRes"_L1},
        Name{"theora", "Theora"_L1},     Name{"mjpeg", "Motion JPEG"_L1}, Name{"dvvideo", "DV"_L1},
        Name{"aac", "AAC"_L1},           Name{"mp3", "MP3"_L1},           Name{"ac3", "AC-3"_L1},
        Name{"eac3", "E-AC-3"_L1},       Name{"opus", "Opus"_L1},         Name{"vorbis", "Vorbis"_L1},
        Name{"flac", "FLAC"_L1},         Name{"alac", "ALAC"_L1},         Name{"dts", "DTS"_L1},
    };
    const std::string codec = stream["codec_name"].stringValue();
    for (const Name &name : names)
        if (name.codec == codec) return name.text;
    return codec.starts_with("pcm_") ? u"PCM"_s : QString::fromStdString(codec);
}

// "30000/1001" is 29.97.
QString rateText(const JSON &stream)
{
    const QStringList parts = QString::fromStdString(stream["avg_frame_rate"].stringValue()).split(u'/');
    if (parts.size() != 2) return {};
    const double rate = parts.at(0).toDouble() / parts.at(1).toDouble();
    if (!std::isfinite(rate) || rate <= 0) return {};
    return QString::number(std::round(rate * 100) / 100) + u" frames/s"_s;
}

QString channelsText(const JSON &stream)
{
    const std::int64_t channels = stream["channels"].intValue();
    if (channels <= 0) return {};
    if (channels == 1) return u"mono"_s;
    return channels == 2 ? u"stereo"_s : u"%1 channels"_s.arg(channels);
}

QString joined(QStringList parts, const QString &separator)
{
    parts.removeAll(QString());
    return parts.join(separator);
}

bool isMovingPicture(const JSON &stream)
{
    return stream["codec_type"].stringValue() == "video" && !isStillPicture(stream);
}

bool isSound(const JSON &stream)
{
    return stream["codec_type"].stringValue() == "audio";
}

JSON firstStream(const FileProbe &probe, bool (*isMeant)(const JSON &))
{
    for (const JSON &stream : probe.jsonDictionary["streams"].arrayValue())
        if (isMeant(stream)) return stream;
    return {};
}

} // namespace

QString factsText(const FileProbe &probe)
{
    const JSON video = firstStream(probe, isMovingPicture);
    const JSON sound = firstStream(probe, isSound);
    return joined({lengthText(probe.duration), codecText(video), rateText(video),
                   joined({codecText(sound), channelsText(sound)}, u", "_s),
                   probe.fileSizeHuman.value_or(QString())},
                  u" - "_s);
}

} // namespace tessaly
