// The converter's arguments for the one job: a resized copy as MP4.
#pragma once

#include "probe/file_probe.h"

namespace tessaly {

// The list in the converter's order, for the open file's probe. Width and height are pixels and are passed on
// as they are, odd or negative or 0. Also prints the list as one diagnostic line.
QStringList buildResizeArguments(const FileProbe &probe, const QString &inputPath, const QString &outputPath,
                                 qint64 width, qint64 height);

} // namespace tessaly
