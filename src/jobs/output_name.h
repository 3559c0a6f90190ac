// The name of the new file.
#pragma once

#include <QString>

namespace tessaly {

// The path as it is when it ends in ".mp4" in any letter case, else with that ending behind it: a.mov gives
// a.mov.mp4, and a dot at the end is not doubled (noext. gives noext.mp4). A path that can only name a folder
// (empty, a slash at the end, "." and "..") stays as it is.
QString withMp4Extension(const QString &path);

} // namespace tessaly
