// Reads JSON text: RFC 8259 and UTF-8, at most 512 levels, in any locale.
#pragma once

#include "json/json_options.h"
#include "json/object.h"

#include <string_view>

namespace tessaly {

constexpr std::size_t deepestReadLevel = 512;

// Of equal keys the last one wins. Throws ParseError.
Object readJSON(std::string_view bytes, ReadingOptions options);

} // namespace tessaly
