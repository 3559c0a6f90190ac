// What became of one video, for programs.
#pragma once

#include "cli/resize_file.h"

#include <QByteArray>

namespace tessaly {

// One JSON object without a line break. Sides are pixels, sizes bytes, times seconds; what is not known is
// null. The outcome is done, failed, cancelled (also what was not begun) or skipped.
QByteArray resizeJson(const ResizeFile &file, const FileEnd &end);

} // namespace tessaly
