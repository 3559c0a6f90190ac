// Prober generations differ in how they report a turned picture: up to FFmpeg 4.4 a stream tag "rotate"
// (degrees clockwise, as text), since then only a display matrix among the side data (degrees
// counter-clockwise, a number).
#pragma once

#include "json/json.h"

namespace tessaly {

// Puts the "rotate" tag back into every stream of the report that lacks it and whose display matrix says a
// quarter or a half turn. Streams that have the tag, and matrices that say anything else, are left alone.
void restoreRotateTags(JSON &report);

} // namespace tessaly
