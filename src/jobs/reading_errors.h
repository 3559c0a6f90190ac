// Errors in the input's data, counted from what a converter says of them.
#pragma once

#include <QByteArrayView>

#include <array>

namespace tessaly {

// One thread at a time.
//
// A damaged place makes a decoder write many lines. Those are counted that come once for each picture or
// packet: packets that could not be decoded, pictures that were mended or are marked as damaged, places where
// the container makes no sense. What converters also say of good files (time stamps, formats, covers,
// parameters) is not counted.
class ReadingErrors
{
public:
    // One whole line, without its end and without colours.
    void addLine(QByteArrayView line);

    // Errors so far. A picture that is told of in several ways counts once, as far as that can be known.
    qint64 count() const;

private:
    enum Kind { none, lostPacket, mendedPicture, damagedPicture, damagedPacket, damagedPlace, cutOff, kinds };

    static Kind kindOf(QByteArrayView line);

    std::array<qint64, kinds> m_counts{};
    Kind m_last = none; // of the line before
};

} // namespace tessaly
