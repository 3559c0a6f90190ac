// The facts about an open video in one line of words.
#pragma once

#include "probe/file_probe.h"

namespace tessaly {

// "35 s - H.264 - 30 frames/s - AAC, mono - 19.5 MB": length, codec and rate of the first moving pictures,
// codec and channels of the first sound, size of the file. What is not known is left out. Plain text; pure.
QString factsText(const FileProbe &probe);

} // namespace tessaly
