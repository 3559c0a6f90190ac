#include "jobs/frame_size.h"

#include <algorithm>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 smallestSide = 2;
constexpr qint64 largestSide = 16384;
// FFmpeg lays this margin around a picture before it judges its area.
constexpr qint64 pictureMargin = 128;
constexpr qint64 largestArea = (qint64(1) << 28) - 1;

} // namespace

QString frameSizeText(const FrameSize &size)
{
    return QString::number(size.width) + u" x "_s + QString::number(size.height);
}

std::optional<qint64> evenSize(double x)
{
    constexpr double limit = 0x1p62; // twice this no longer fits 64 bits, twice its negative still does
    const double half = std::round(x * 0.5);
    if (!(half >= -limit && half < limit)) return std::nullopt;
    return 2 * static_cast<qint64>(half);
}

qint64 loweredToEven(qint64 side)
{
    const bool isOdd = (side & 1) != 0;
    return isOdd ? side - 1 : side;
}

std::optional<qint64> scaledSide(qint64 inputSide, double percent)
{
    return evenSize(static_cast<double>(inputSide) * (percent / 100.0));
}

std::optional<qint64> heightFollowing(double width, double ratio)
{
    return evenSize(width / ratio);
}

std::optional<qint64> widthFollowing(double height, double ratio)
{
    return evenSize(height * ratio);
}

double percentOf(double side, qint64 inputSide)
{
    return side / static_cast<double>(inputSide) * 100.0;
}

std::optional<FrameSize> sizeWithin(const FrameSize &box, const FrameSize &input)
{
    if (input.width <= 0 || input.height <= 0) return std::nullopt;
    // Bounds that are even, so that no rounding leaves them.
    const FrameSize most{loweredToEven(std::min(box.width, input.width)),
                         loweredToEven(std::min(box.height, input.height))};
    if (most == FrameSize{loweredToEven(input.width), loweredToEven(input.height)}) return most;
    const auto width = static_cast<double>(input.width);
    const auto height = static_cast<double>(input.height);
    const auto widest = static_cast<double>(most.width);
    const auto highest = static_cast<double>(most.height);
    // Products come before quotients, so that a tie is one.
    const bool widthDecides = widest * height <= highest * width;
    const std::optional<qint64> following =
        widthDecides ? evenSize(height * widest / width) : evenSize(width * highest / height);
    if (!following) return std::nullopt;
    return widthDecides ? FrameSize{most.width, *following} : FrameSize{*following, most.height};
}

std::optional<FrameSize> sizeForWish(const SizeWish &wish, const FrameSize &input)
{
    if (wish.box) return sizeWithin(*wish.box, input);
    const double ratio = static_cast<double>(input.width) / static_cast<double>(input.height);
    std::optional<qint64> width;
    std::optional<qint64> height;
    if (wish.width) width = loweredToEven(*wish.width);
    if (wish.height) height = loweredToEven(*wish.height);
    if (width && !height) height = heightFollowing(static_cast<double>(*width), ratio);
    if (height && !width) width = widthFollowing(static_cast<double>(*height), ratio);
    if (!wish.width && !wish.height) {
        width = scaledSide(input.width, wish.percent);
        height = scaledSide(input.height, wish.percent);
    }
    if (!width || !height) return std::nullopt;
    return FrameSize{*width, *height};
}

std::optional<QString> sizeRefusal(const FrameSize &size)
{
    const auto [width, height] = size;
    if (width < smallestSide || height < smallestSide)
        return u"A video of "_s + frameSizeText(size) +
               u" cannot be made: choose a size of at least 2 x 2."_s;
    const bool sideIsTooLarge = width > largestSide || height > largestSide;
    if (sideIsTooLarge || (width + pictureMargin) * (height + pictureMargin) > largestArea)
        return u"A video of "_s + frameSizeText(size) + u" is too large to be made: choose a smaller size."_s;
    return std::nullopt;
}

} // namespace tessaly
