#include "cli/output_size.h"

#include "jobs/even_size.h"

namespace tessaly {

namespace {

qint64 loweredToEven(qint64 side)
{
    return side - (side & 1);
}

} // namespace

std::optional<FrameSize> outputSize(const SizeWish &wish, qint64 inputWidth, qint64 inputHeight)
{
    const auto originalWidth = static_cast<double>(inputWidth);
    const auto originalHeight = static_cast<double>(inputHeight);
    const double ratio = originalWidth / originalHeight;

    std::optional<qint64> width;
    std::optional<qint64> height;
    if (wish.width) width = loweredToEven(*wish.width);
    if (wish.height) height = loweredToEven(*wish.height);
    if (width && !height) height = evenSize(static_cast<double>(*width) / ratio);
    if (height && !width) width = evenSize(static_cast<double>(*height) * ratio);
    if (!wish.width && !wish.height) {
        const double scale = wish.percent / 100.0;
        width = evenSize(originalWidth * scale);
        height = evenSize(scale * originalHeight);
    }
    if (!width || !height || *width < 2 || *height < 2) return std::nullopt;
    return FrameSize{*width, *height};
}

} // namespace tessaly
