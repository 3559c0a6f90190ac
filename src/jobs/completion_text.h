// What is told at the end of a job that went well.
#pragma once

#include "probe/file_probe.h"

namespace tessaly {

// Two lines: resolution and size on disk, of the input and of the output. The output's resolution is that of
// its second probe, its size text that of the first. A side that is not known reads 0, a size text "Unknown
// File Size".
QString completionText(const FileProbe &input, const FileProbe &output, const FileProbe &outputAgain);

} // namespace tessaly
