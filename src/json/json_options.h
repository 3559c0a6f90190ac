// The choices of reading and of text output.
#pragma once

#include <cstddef>

namespace tessaly {

struct ReadingOptions
{
    // Whether a number, string, boolean or null may stand alone.
    bool fragmentsAllowed = false;
};

// The serializer's own choices. The members of a dictionary always come in the order of their keys.
struct SerializerOptions
{
    bool prettyPrinted = true;
    bool fragmentsAllowed = true;
    bool escapesSlashes = false;
};

enum class TextEncoding {
    utf8,
    ascii, // other characters as \u escapes
    utf16LittleEndian,
    utf16BigEndian,
};

struct writingOptionsKeys
{
    SerializerOptions jsonSerialization;
    // Absent values are written as null; otherwise they cannot be written.
    bool castNilToNSNull = false;
    // How many levels of containers may stand inside each other.
    std::size_t maxObjextDepth = 512;
    TextEncoding encoding = TextEncoding::utf8;
};

} // namespace tessaly
