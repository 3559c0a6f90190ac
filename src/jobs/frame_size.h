// The sizes that a person asks for: even sides, the side that follows the other, percent of the input, the
// most that a box holds. All sides are pixels.
#pragma once

#include <QString>

#include <optional>

namespace tessaly {

struct FrameSize
{
    qint64 width = 0;
    qint64 height = 0;

    bool operator==(const FrameSize &) const = default;
};

// "1280 x 720".
QString frameSizeText(const FrameSize &size);

// The one rounding rule of every computed side: half of x rounded to the nearest integer, halves away from
// zero, and doubled (853 gives 854, 852.9 gives 852, -3 gives -4). Nothing when x is not finite or the result
// does not fit.
std::optional<qint64> evenSize(double x);

// What a typed side becomes: an odd one is lowered by one, also a negative one (7 gives 6, -3 gives -4).
qint64 loweredToEven(qint64 side);

// A side in so many percent of the input's; nothing as with evenSize().
std::optional<qint64> scaledSide(qint64 inputSide, double percent);
// The side that follows the other one in the input's ratio (width over height); nothing as with evenSize().
std::optional<qint64> heightFollowing(double width, double ratio);
std::optional<qint64> widthFollowing(double height, double ratio);
// What a side is in percent of the input's; not finite where that is 0.
double percentOf(double side, qint64 inputSide);

// The largest even size within the box in the input's proportions, as near as even sides come to them; never
// larger than the input. One that is within the box keeps its size, an odd side is lowered. Nothing when the
// input is flat.
std::optional<FrameSize> sizeWithin(const FrameSize &box, const FrameSize &input);

// A wish for a size. A box counts before the sides; with neither, the scale counts.
struct SizeWish
{
    double percent = 100;         // of the input
    std::optional<qint64> width;  // pixels
    std::optional<qint64> height; // pixels
    std::optional<FrameSize> box; // as for sizeWithin()
};

// A given side is lowered to even, one that follows is rounded to even; two given sides are independent.
// Nothing when a side cannot be computed.
std::optional<FrameSize> sizeForWish(const SizeWish &wish, const FrameSize &input);

// Why no encoder can make a video of this size, as a sentence; nothing when it can. A side below 2 is too
// small, one above 16384 or a picture of more than about 267 million pixels too large: the bounds of the
// H.264 encoder x264 and of FFmpeg's pictures, found by trying.
std::optional<QString> sizeRefusal(const FrameSize &size);

} // namespace tessaly
