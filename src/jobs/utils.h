// Text operations for reading what the converter says.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tessaly {

class Utils
{
public:
    // The substrings that whole matches of the pattern cover, in order; matches do not overlap. As on the
    // platform whose patterns these are, "." matches no line terminator (carriage return, form feed and
    // U+2028 are some of them) and "$" also matches before a last one. A pattern that is not valid is printed
    // as "invalid regex: …" and matches nothing.
    static QStringList matchesForRegex(const QString &pattern, const QString &text);

    // Seconds of a time stamp hours:minutes:seconds.centiseconds; nothing when a piece is missing or is not
    // wholly a decimal number.
    static std::optional<double> secondsFromTimestamp(const QString &text);
};

} // namespace tessaly
