#include "jobs/even_size.h"

#include <cmath>

namespace tessaly {

std::optional<qint64> evenSize(double x)
{
    constexpr double limit = 0x1p62; // twice this no longer fits 64 bits, twice its negative still does
    const double half = std::round(x * 0.5);
    if (!(half >= -limit && half < limit)) return std::nullopt;
    return 2 * static_cast<qint64>(half);
}

} // namespace tessaly
