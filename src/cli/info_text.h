// The facts about a file for people.
#pragma once

#include "probe/file_probe.h"

namespace tessaly {

// A short block of aligned lines under the file's name, ending in a line break. Control characters of names
// and tags are written as escapes, so that nothing in a file can drive the terminal.
QString infoText(const QString &name, const FileProbe &facts);

} // namespace tessaly
