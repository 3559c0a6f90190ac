#include "json/utf8.h"

namespace tessaly {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t largestScalar = 0x10FFFF;

bool isScalar(char32_t value)
{
    return value <= largestScalar && (value < 0xD800 || value > 0xDFFF);
}

// The length in bytes that a first byte announces, 0 when it is none; `bits` are its own bits of the value.
std::size_t sequenceLength(unsigned char first, char32_t &bits)
{
    if (first < 0x80) return bits = first, 1;
    if ((first & 0xE0) == 0xC0) return bits = first & 0x1F, 2;
    if ((first & 0xF0) == 0xE0) return bits = first & 0x0F, 3;
    if ((first & 0xF8) == 0xF0) return bits = first & 0x07, 4;
    return 0;
}

constexpr char32_t smallestOfLength[] = {0, 0, 0x80, 0x800, 0x10000};

} // namespace

std::optional<char32_t> takeScalar(std::string_view text, std::size_t &at)
{
    char32_t value = 0;
    const std::size_t length = sequenceLength(static_cast<unsigned char>(text[at]), value);
    if (length == 0 || text.size() - at < length) return std::nullopt;
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0) != 0x80) return std::nullopt;
        value = (value << 6) | (byte & 0x3F);
    }
    if (value < smallestOfLength[length] || !isScalar(value)) return std::nullopt;
    at += length;
    return value;
}

void appendScalar(std::string &text, char32_t scalar)
{
    const char32_t value = isScalar(scalar) ? scalar : replacementCharacter;
    const auto append = [&text](char32_t byte) {
        text += static_cast<char>(static_cast<unsigned char>(byte));
    };
    const auto continuation = [&](int shift) { append(0x80 | ((value >> shift) & 0x3F)); };
    if (value < 0x80) {
        append(value);
    } else if (value < 0x800) {
        append(0xC0 | (value >> 6));
        continuation(0);
    } else if (value < 0x10000) {
        append(0xE0 | (value >> 12));
        continuation(6);
        continuation(0);
    } else {
        append(0xF0 | (value >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

SurrogatePair surrogatesOf(char32_t scalar)
{
    const char32_t offset = scalar - 0x10000;
    return {static_cast<char16_t>(0xD800 + (offset >> 10)), static_cast<char16_t>(0xDC00 + (offset & 0x3FF))};
}

std::string utf16Bytes(std::string_view text, bool littleEndian)
{
    std::string bytes;
    bytes.reserve(text.size() * 2);
    const auto append = [&](char32_t unit) {
        const char high = static_cast<char>(static_cast<unsigned char>(unit >> 8));
        const char low = static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        bytes += littleEndian ? low : high;
        bytes += littleEndian ? high : low;
    };
    for (std::size_t at = 0; at < text.size();) {
        const char32_t scalar = takeScalar(text, at).value();
        if (scalar < 0x10000) {
            append(scalar);
        } else {
            append(surrogatesOf(scalar).high);
            append(surrogatesOf(scalar).low);
        }
    }
    return bytes;
}

} // namespace tessaly
