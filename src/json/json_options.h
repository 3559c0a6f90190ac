// The choices of reading and of text output.
#pragma once

#include <cstddef>

namespace tessaly {

struct ReadingOptions
{
    bool fragmentsAllowed = false; // whether a number, string, boolean or null may stand alone
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
    bool castNilToNSNull = false;     // absent values are written as null; otherwise they cannot be written
    std::size_t maxObjextDepth = 512; // how many levels of containers may stand inside each other
    TextEncoding encoding = TextEncoding::utf8;
};

} // namespace tessaly
