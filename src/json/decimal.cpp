#include "json/decimal.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace tessaly {

namespace {

__extension__ using Mantissa = unsigned __int128;

constexpr Mantissa largestMantissa = ~Mantissa{0};
constexpr int smallestExponent = -128;
constexpr int largestExponent = 127;
// Beyond these powers of ten an integer reading gives 0.
constexpr int largestIntegerExponent = 20;
constexpr int smallestIntegerExponent = -38;

Mantissa join(std::uint64_t high, std::uint64_t low)
{
    return (Mantissa{high} << 64) | low;
}

// The digits of a text, collected into a mantissa and a power of ten.
class Digits
{
public:
    void addInteger(char digit)
    {
        if (!append(digit)) ++m_exponent;
    }
    void addFraction(char digit)
    {
        if (append(digit)) --m_exponent;
    }
    Mantissa mantissa() const { return m_mantissa; }
    std::int64_t exponent() const { return m_exponent; }

private:
    // After the first digit that does not fit, no later one is taken either.
    bool append(char digit)
    {
        const auto value = static_cast<unsigned>(digit - '0');
        m_full = m_full || m_mantissa > (largestMantissa - value) / 10;
        if (!m_full) m_mantissa = m_mantissa * 10 + value;
        return !m_full;
    }

    Mantissa m_mantissa = 0;
    std::int64_t m_exponent = 0;
    bool m_full = false;
};

class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    bool take(std::string_view oneOf)
    {
        if (m_at == m_text.size() || oneOf.find(m_text[m_at]) == std::string_view::npos) return false;
        m_taken = m_text[m_at++];
        return true;
    }
    bool takeDigit() { return take("0123456789"); }
    char taken() const { return m_taken; }
    bool tookAnything() const { return m_at > 0; }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
    char m_taken = '\0';
};

std::int64_t scanExponent(Scanner &scanner)
{
    constexpr std::int64_t farOutside = 1'000'000'000;
    if (!scanner.take("eE")) return 0;
    const bool negative = scanner.take("+-") && scanner.taken() == '-';
    std::int64_t exponent = 0;
    while (scanner.takeDigit())
        exponent = std::min(exponent * 10 + (scanner.taken() - '0'), farOutside);
    return negative ? -exponent : exponent;
}

std::string digitsOf(Mantissa mantissa)
{
    std::string digits;
    do {
        digits += static_cast<char>('0' + static_cast<int>(mantissa % 10));
        mantissa /= 10;
    } while (mantissa != 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// mantissa * 10^by; none when that does not fit.
std::optional<Mantissa> shifted(Mantissa mantissa, int by)
{
    for (; by > 0; --by) {
        if (mantissa > largestMantissa / 10) return std::nullopt;
        mantissa *= 10;
    }
    return mantissa;
}

// Compares left * 10^by with right.
std::weak_ordering compareScaled(Mantissa left, int by, Mantissa right)
{
    if (left == 0 || right == 0) return left <=> right;
    if (by >= 0) {
        const auto leftShifted = shifted(left, by);
        return leftShifted ? *leftShifted <=> right : std::weak_ordering::greater;
    }
    const auto rightShifted = shifted(right, -by);
    return rightShifted ? left <=> *rightShifted : std::weak_ordering::less;
}

} // namespace

Decimal Decimal::fromInteger(bool negative, std::uint64_t magnitude)
{
    Decimal result;
    for (; magnitude != 0 && magnitude % 10 == 0; magnitude /= 10)
        ++result.m_exponent;
    result.m_low = magnitude;
    result.m_negative = negative && magnitude != 0;
    return result;
}

Decimal Decimal::notANumber()
{
    Decimal result;
    result.m_notANumber = true;
    return result;
}

Decimal Decimal::fromString(std::string_view text)
{
    Scanner scanner(text);
    while (scanner.take(" \t\n\v\f\r")) {
    }
    const bool negative = scanner.take("+-") && scanner.taken() == '-';
    Digits digits;
    while (scanner.takeDigit())
        digits.addInteger(scanner.taken());
    if (scanner.take(".")) {
        while (scanner.takeDigit())
            digits.addFraction(scanner.taken());
    }
    std::int64_t exponent = digits.exponent() + scanExponent(scanner);
    if (!scanner.tookAnything() || exponent < smallestExponent || exponent > largestExponent)
        return notANumber();

    Mantissa mantissa = digits.mantissa();
    for (; mantissa != 0 && mantissa % 10 == 0 && exponent < largestExponent; ++exponent)
        mantissa /= 10;
    Decimal result;
    result.m_high = static_cast<std::uint64_t>(mantissa >> 64);
    result.m_low = static_cast<std::uint64_t>(mantissa);
    result.m_exponent = static_cast<std::int16_t>(mantissa == 0 ? 0 : exponent);
    result.m_negative = negative && mantissa != 0;
    return result;
}

std::string Decimal::stringValue() const
{
    if (m_notANumber) return "NaN";
    std::string digits = digitsOf(join(m_high, m_low));
    if (m_exponent > 0) {
        digits.append(static_cast<std::size_t>(m_exponent), '0');
    } else if (m_exponent < 0) {
        const auto fraction = static_cast<std::size_t>(-m_exponent);
        if (digits.size() <= fraction) digits.insert(0, fraction + 1 - digits.size(), '0');
        digits.insert(digits.size() - fraction, 1, '.');
    }
    return m_negative ? "-" + digits : digits;
}

std::uint64_t Decimal::uint64Value() const
{
    if (m_notANumber || m_exponent > largestIntegerExponent || m_exponent < smallestIntegerExponent) return 0;
    Mantissa value = join(m_high, m_low);
    for (int i = m_exponent; i > 0; --i)
        value *= 10;
    for (int i = m_exponent; i < 0; ++i)
        value /= 10;
    const auto low = static_cast<std::uint64_t>(value);
    return m_negative ? 0 - low : low;
}

std::int64_t Decimal::int64Value() const
{
    return static_cast<std::int64_t>(uint64Value());
}

double Decimal::doubleValue() const
{
    if (m_notANumber) return std::numeric_limits<double>::quiet_NaN();
    const std::string text = digitsOf(join(m_high, m_low)) + "e" + std::to_string(m_exponent);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return m_negative ? -value : value;
}

std::weak_ordering operator<=>(const Decimal &left, const Decimal &right)
{
    if (left.m_notANumber || right.m_notANumber) return right.m_notANumber <=> left.m_notANumber;
    if (left.m_negative != right.m_negative) return right.m_negative <=> left.m_negative;
    const Mantissa leftMantissa = join(left.m_high, left.m_low);
    const Mantissa rightMantissa = join(right.m_high, right.m_low);
    const int by = int{left.m_exponent} - int{right.m_exponent};
    if (left.m_negative) return compareScaled(rightMantissa, -by, leftMantissa);
    return compareScaled(leftMantissa, by, rightMantissa);
}

} // namespace tessaly
