// Sends an object, event by event.
#pragma once

#include "json/events.h"
#include "json/object.h"

#include <cstddef>
#include <limits>

namespace tessaly {

struct EventOptions
{
    bool absentAsNull = false;
    std::size_t deepestLevel = std::numeric_limits<std::size_t>::max();
};

// Throws JSONException, when the sink has already had a part: elementTooDeep for a container beyond the
// deepest level, invalidJSON for bytes, for objects of an unknown type, and for absent ones unless they are
// sent as null.
void sendEvents(const Object &object, EventSink &sink, EventOptions options = {});

} // namespace tessaly
