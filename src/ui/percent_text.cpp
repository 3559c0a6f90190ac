#include "ui/percent_text.h"

#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

QString percentText(double percent)
{
    constexpr double mostTenths = 1000; // from here on there is no fraction
    const int decimals = std::abs(percent) < mostTenths ? 1 : 0;
    const QString text = QString::number(percent, 'f', decimals);
    return text.endsWith(".0"_L1) ? text.chopped(2) : text;
}

} // namespace tessaly
