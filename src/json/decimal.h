// A decimal number: 128-bit mantissa, power of ten from -128 to 127, sign, and a not-a-number.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <compare> // not first: Qt's moc cannot read it before the headers above

namespace tessaly {

class Decimal
{
public:
    Decimal() = default; // zero
    static Decimal fromInteger(bool negative, std::uint64_t magnitude);
    static Decimal notANumber();

    // Reads leading blanks, a sign, digits, a point and digits, an exponent, and ignores the rest; the point
    // is always ".". Digits beyond the mantissa are dropped, not rounded. Not a number when nothing at all
    // could be read or when the value does not fit.
    static Decimal fromString(std::string_view text);

    bool isNaN() const { return m_notANumber; }

    // Plain digits, never an exponent, no zeros at the end of a fraction; "NaN".
    std::string stringValue() const;

    // Truncated toward zero; of what remains the low 64 bits, so a value that is too large wraps. 0 for
    // not-a-number and for values whose power of ten is beyond 20.
    std::int64_t int64Value() const;
    std::uint64_t uint64Value() const;

    // The nearest double; nan for not-a-number.
    double doubleValue() const;

    // Not-a-number equals itself and lies below every number.
    friend std::weak_ordering operator<=>(const Decimal &left, const Decimal &right);
    friend bool operator==(const Decimal &left, const Decimal &right) { return std::is_eq(left <=> right); }

private:
    std::uint64_t m_high = 0;
    std::uint64_t m_low = 0;
    std::int16_t m_exponent = 0;
    bool m_negative = false;
    bool m_notANumber = false;
};

} // namespace tessaly
