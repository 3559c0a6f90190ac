// Size of a file and length of a video, as numbers and as text.
#pragma once

#include <QString>

#include <optional>

namespace tessaly {

// The file's size in bytes, of the target for a symbolic link. Absent, with a printed line that says why,
// when the file system does not answer, or for something that has no size (a pipe, a device).
std::optional<quint64> fileSize(const QString &path);

// The size in decimal units ("12.5 MB"); "Unknown File Size", with the same printed lines, where there is
// none.
QString fileSizeHuman(const QString &path);

// "01:02:05.50" for 3725.5 seconds; hours are not wrapped at 24. The whole seconds are truncated while the
// fraction is that of the rounded value: 59.999 gives "00:00:59.00". A value that is not finite or has no
// 64-bit whole part gives "00:00:00.00".
QString durationHuman(double seconds);

} // namespace tessaly
