// How long the tracks are that a resize keeps. The container's duration is no measure of that: it also counts
// subtitles and an empty lead.
#pragma once

#include "probe/file_probe.h"

#include <optional>

namespace tessaly {

// Each length is that of the track itself, without an empty lead, and above 0; absent when it is not known.
struct TrackLengths
{
    // Seconds, of the main video: the one whose size is shown.
    std::optional<double> picture;
    // Seconds, of the audio track that ffmpeg takes: a default one before others, then the one with the most
    // channels, then the first.
    std::optional<double> sound;
    // Seconds: the longer one of both. When neither is known, the container's duration without its lead, if
    // it is no MP4 and holds nothing but video and sound.
    std::optional<double> whole;
    // How many pictures the main video holds, with those that an edit list hides: a result may have fewer.
    std::optional<qint64> pictures;
};

TrackLengths keptTrackLengths(const FileProbe &probe);

} // namespace tessaly
