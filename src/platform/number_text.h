// Numbers to text and back. Nothing here depends on the locale: the decimal separator is always a point, and
// digits are never grouped.
#pragma once

#include <QString>
#include <QStringView>

namespace tessaly {

// The shortest digits that read back to the same value, at least one of them behind the point and never an
// exponent: 1.0, 29.97, 0.0000001. Also nan, inf, -inf, -0.0. For arguments of tools.
QString plainDecimal(double value);

// Up to 16 significant digits in the manner of "%.16g": 2, 29.97, 1e+16. The sign of a nan is not shown.
QString generalText(double value);

// The number at the start of a text that a person typed: blanks, one sign, ASCII digits; the rest is ignored.
// A text without a number gives 0, a number that does not fit the nearest one that does.
qint64 integerFromText(QStringView text);

// The same with fraction and exponent, rounded correctly; too large gives an infinity. "nan", "inf" and
// hexadecimal forms are no numbers.
double doubleFromText(QStringView text);

} // namespace tessaly
