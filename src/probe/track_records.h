// One record per stream, for people who want to know what a file holds.
#pragma once

#include "probe/file_probe.h"

#include <string>

namespace tessaly {

// "Video", "Audio", "Subtitle", "Poster" (an attached picture) or "Other".
std::string trackType(const JSON &stream);

// Fills probe.tracksInfo from probe.jsonDictionary. A stream of one of the codecs h264, theora and wmv3 sets
// the probe's videoWidth, videoHeight and videoRatio again; the last such stream wins, and one without a size
// leaves them absent.
void recordTracks(FileProbe &probe, const QString &path);

} // namespace tessaly
