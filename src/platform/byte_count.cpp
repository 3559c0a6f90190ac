#include "platform/byte_count.h"

#include <array>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

struct Unit
{
    quint64 bytes;
    int fractionDigits;
    QLatin1StringView name;
};

constexpr std::array<Unit, 6> units{{
    {1'000, 0, "KB"_L1},
    {1'000'000, 1, "MB"_L1},
    {1'000'000'000, 2, "GB"_L1},
    {1'000'000'000'000, 2, "TB"_L1},
    {1'000'000'000'000'000, 2, "PB"_L1},
    {1'000'000'000'000'000'000, 2, "EB"_L1},
}};

quint64 powerOfTen(int exponent)
{
    quint64 power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

// The magnitude counted in the last digit that the unit shows. Every such step is even, so adding half of it
// rounds exact halves up without leaving the integers.
quint64 roundedSteps(quint64 magnitude, const Unit &unit)
{
    const quint64 step = unit.bytes / powerOfTen(unit.fractionDigits);
    return (magnitude + step / 2) / step;
}

std::size_t unitIndexFor(quint64 magnitude)
{
    std::size_t index = 0;
    while (index + 1 < units.size() && magnitude >= units[index + 1].bytes)
        ++index;
    const bool roundsToThousand =
        roundedSteps(magnitude, units[index]) == 1000 * powerOfTen(units[index].fractionDigits);
    return roundsToThousand && index + 1 < units.size() ? index + 1 : index;
}

QString fractionText(quint64 fraction, int digits, const QLocale &locale)
{
    if (fraction == 0) return {};
    QString text = QString::number(fraction).rightJustified(digits, u'0');
    while (text.endsWith(u'0'))
        text.chop(1);
    return locale.decimalPoint() + text;
}

} // namespace

QString byteCountText(qint64 bytes, const QLocale &locale)
{
    if (bytes == 0) return u"Zero KB"_s;
    const QString sign = bytes < 0 ? u"-"_s : QString();
    const quint64 magnitude =
        bytes < 0 ? quint64{0} - static_cast<quint64>(bytes) : static_cast<quint64>(bytes);
    if (magnitude == 1) return sign + u"1 byte"_s;
    if (magnitude < 1000) return sign + QString::number(magnitude) + u" bytes"_s;

    const Unit &unit = units[unitIndexFor(magnitude)];
    const quint64 scale = powerOfTen(unit.fractionDigits);
    const quint64 steps = roundedSteps(magnitude, unit);
    return sign + QString::number(steps / scale) + fractionText(steps % scale, unit.fractionDigits, locale) +
           u' ' + unit.name;
}

} // namespace tessaly
