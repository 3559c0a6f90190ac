// UTF-8 and its two neighbours.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tessaly {

// Reads the scalar value at `at`, which must be inside the text, and moves `at` behind it; nothing, and `at`
// stays, when the bytes there are no UTF-8.
std::optional<char32_t> takeScalar(std::string_view text, std::size_t &at);

// A value that is no scalar value becomes U+FFFD.
void appendScalar(std::string &text, char32_t scalar);

// The two UTF-16 code units of a scalar value above U+FFFF.
struct SurrogatePair
{
    char16_t high;
    char16_t low;
};
SurrogatePair surrogatesOf(char32_t scalar);

// The bytes of a text in UTF-16, without a byte order mark. The text must be UTF-8.
std::string utf16Bytes(std::string_view text, bool littleEndian);

} // namespace tessaly
