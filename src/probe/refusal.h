// Which files are not opened.
#pragma once

#include "probe/file_probe.h"

namespace tessaly {

enum class Refusal {
    dvdFile,     // called .vob, in any letter case
    unsupported, // no unencrypted video with moving pictures and a known size
};

// Nothing for a file that can be opened. The path is the one that was probed. A height of 0 is let through.
std::optional<Refusal> refusalOf(const FileProbe &probe, const QString &path);

// Why a file was refused, as far as is known: what kept the prober from its work, or its own word for what is
// wrong with the file ("No such file or directory"). Empty when nothing is.
QString refusalDetails(const FileProbe &probe);

} // namespace tessaly
