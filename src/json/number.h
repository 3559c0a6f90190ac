// The number object: it remembers what it was made from, and compares by value whatever that was.
#pragma once

#include "json/decimal.h"

#include <compare>
#include <concepts>
#include <cstdint>
#include <string>
#include <variant>

namespace tessaly {

// An integer type that means a number, neither a truth value nor a character.
template<class T>
concept PlainInteger =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

class Number
{
public:
    enum class Origin { int64, uint64, real, boolean, decimal };

    Number() = default; // the integer 0
    template<PlainInteger T>
    Number(T value)
    {
        if constexpr (std::signed_integral<T>)
            m_value = static_cast<std::int64_t>(value);
        else
            m_value = static_cast<std::uint64_t>(value);
    }
    // No other type turns into a truth value by itself.
    template<std::same_as<bool> T>
    Number(T value) : m_value(value)
    {}
    Number(double value) : m_value(value) {}
    Number(const Decimal &value) : m_value(value) {}

    Origin origin() const { return static_cast<Origin>(m_value.index()); }
    bool isBool() const { return origin() == Origin::boolean; }

    // The type encoding: "c" boolean, "q" integer, "Q" integer above the signed range, "d" real or decimal.
    const char *objCType() const;

    // Reals with 16 significant digits ("%.16g"), truth values "1" and "0", decimals in full. The same in
    // every locale.
    std::string stringValue() const;

    // Reals are truncated toward zero and held to the range of the result, nan is 0; integers and decimals
    // that are too large keep their low 64 bits.
    std::int64_t integerValue() const;
    // The low 32 bits of integerValue().
    std::int32_t intValue() const;
    double doubleValue() const;
    // Whether it is not zero.
    bool boolValue() const;
    // The decimal itself; only for a number that was made from one.
    const Decimal &decimal() const { return std::get<Decimal>(m_value); }

    // By value, whatever the origins: exact between integers, integers and reals, integers and decimals; a
    // decimal meets a real as the nearest double. Not-a-number equals itself and lies below every number.
    friend std::weak_ordering operator<=>(const Number &left, const Number &right);
    friend bool operator==(const Number &left, const Number &right) { return std::is_eq(left <=> right); }

private:
    std::variant<std::int64_t, std::uint64_t, double, bool, Decimal> m_value = std::int64_t{0};
};

} // namespace tessaly
