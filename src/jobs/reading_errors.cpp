#include "jobs/reading_errors.h"

#include <algorithm>
#include <optional>

namespace tessaly {

namespace {

// "[h264 @ 0x55d0c3c0] no frame!", also with two speakers, gives "no frame!".
QByteArrayView withoutSpeakers(QByteArrayView line)
{
    while (line.startsWith('[')) {
        const qsizetype end = line.indexOf("] ");
        if (end < 0 || !line.first(end).contains(" @ 0x")) break;
        line = line.sliced(end + 2);
    }
    return line;
}

// "    Last message repeated 5 times"
std::optional<qint64> repeats(QByteArrayView line)
{
    constexpr QByteArrayView before = "    Last message repeated ";
    constexpr QByteArrayView after = " times";
    if (!line.startsWith(before) || !line.endsWith(after)) return std::nullopt;
    bool isNumber = false;
    const unsigned count = line.sliced(before.size()).chopped(after.size()).toUInt(&isNumber);
    return isNumber ? std::optional<qint64>(count) : std::nullopt;
}

bool beginsWithOneOf(QByteArrayView line, std::initializer_list<QByteArrayView> beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [line](QByteArrayView beginning) { return line.startsWith(beginning); });
}

// Older converters write "FILE: words in stream 0", newer ones "[speaker] words".
bool isSaidOfStream(QByteArrayView line, QByteArrayView said, QByteArrayView words)
{
    if (said.size() < line.size()) return said.startsWith(words);
    const qsizetype colon = line.lastIndexOf(": ");
    return colon >= 0 && line.sliced(colon + 2).startsWith(words);
}

} // namespace

ReadingErrors::Kind ReadingErrors::kindOf(QByteArrayView line)
{
    if (line.startsWith(' ')) return none; // names and titles
    const QByteArrayView said = withoutSpeakers(line);
    if (beginsWithOneOf(said, {"Error while decoding stream #",
                               "Error submitting packet to decoder: ", "Decoding error: "}))
        return lostPacket;
    if (isSaidOfStream(line, said, "corrupt decoded frame")) return damagedPicture;
    if (isSaidOfStream(line, said, "corrupt input packet")) return damagedPacket;
    if (said.size() == line.size()) return none; // the rest is said by decoders and demuxers
    if (said.startsWith("concealing ") && said.contains(" errors in ")) return mendedPicture;
    if (said.endsWith(": partial file") || said.startsWith("File ended prematurely")) return cutOff;
    // Decoders and demuxers that lead to none of the above.
    if (beginsWithOneOf(said, {"error y=", "LZW decode failed", "error decoding the audio block",
                               "CRC mismatch!", "packet_obj_size ", "packet_frag_size is invalid"}) ||
        said.contains(" exceeds containing master element ") ||
        said.contains(" invalid as first byte of an EBML number"))
        return damagedPlace;
    return none;
}

void ReadingErrors::addLine(QByteArrayView line)
{
    if (const auto more = repeats(line)) {
        m_counts[m_last] += *more;
        return;
    }
    m_last = kindOf(line);
    ++m_counts[m_last];
}

qint64 ReadingErrors::count() const
{
    const qint64 decoded = m_counts[lostPacket] + std::max(m_counts[mendedPicture], m_counts[damagedPicture]);
    const qint64 read = m_counts[damagedPacket]; // they come to the decoder all the same
    return std::max(decoded, read) + m_counts[damagedPlace] + std::min<qint64>(m_counts[cutOff], 1);
}

} // namespace tessaly
