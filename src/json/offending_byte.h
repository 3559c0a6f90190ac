// Where a text stops being JSON.
#pragma once

#include <cstddef>
#include <string_view>

namespace tessaly {

// The offset of the first byte with which no JSON text can go on (RFC 8259, UTF-8), or the size of a text
// that only lacks its end. Reading begins at `start`; levels and the range of numbers are not looked at.
std::size_t offendingByte(std::string_view text, std::size_t start);

} // namespace tessaly
