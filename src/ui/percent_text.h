// Percentages as the window writes them.
#pragma once

#include <QString>

namespace tessaly {

// "33.3", and a whole one without a fraction: "100". Without the sign.
QString percentText(double percent);

} // namespace tessaly
