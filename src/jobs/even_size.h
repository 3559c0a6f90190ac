// The one rounding rule of every computed side of the new picture.
#pragma once

#include <QtGlobal>

#include <optional>

namespace tessaly {

// Pixels in, pixels out: half of x rounded to the nearest integer, halves away from zero, and doubled (853
// gives 854, 852.9 gives 852, -3 gives -4). Nothing when x is not finite or the result does not fit.
std::optional<qint64> evenSize(double x);

} // namespace tessaly
