// The size of the new video, from what was asked for.
#pragma once

#include "cli/command_line.h"

namespace tessaly {

struct FrameSize
{
    qint64 width = 0;  // pixels, even
    qint64 height = 0; // pixels, even
};

// The same arithmetic as the window's: a given side is lowered to even, a computed one rounded to even; two
// given sides are independent. Nothing when a side cannot be computed or comes out below 2. The input's sides
// are in pixels.
std::optional<FrameSize> outputSize(const SizeWish &wish, qint64 inputWidth, qint64 inputHeight);

} // namespace tessaly
