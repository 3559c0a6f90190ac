#include "json/number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace tessaly {

namespace {

constexpr double twoTo63 = 9223372036854775808.0;
constexpr double twoTo64 = 18446744073709551616.0;

// Any integer of 64 bits, signed or not.
struct Integer
{
    bool negative = false;
    std::uint64_t magnitude = 0;
};

Integer integerOf(std::int64_t value)
{
    const auto bits = static_cast<std::uint64_t>(value);
    return {value < 0, value < 0 ? 0 - bits : bits};
}

std::weak_ordering compare(const Integer &left, const Integer &right)
{
    if (left.negative != right.negative) return right.negative <=> left.negative;
    return left.negative ? right.magnitude <=> left.magnitude : left.magnitude <=> right.magnitude;
}

std::weak_ordering compare(double left, double right)
{
    if (std::isnan(left) || std::isnan(right)) return std::isnan(right) <=> std::isnan(left);
    if (left == right) return std::weak_ordering::equivalent;
    return left < right ? std::weak_ordering::less : std::weak_ordering::greater;
}

// Exact: the real is cut into an integer and the fraction behind it.
std::weak_ordering compare(const Integer &left, double right)
{
    if (std::isnan(right)) return std::weak_ordering::greater;
    if (right >= twoTo64) return std::weak_ordering::less;
    if (right <= -twoTo64) return std::weak_ordering::greater;
    const double whole = std::trunc(right);
    const Integer wholeInteger{whole < 0, static_cast<std::uint64_t>(std::fabs(whole))};
    const std::weak_ordering order = compare(left, wholeInteger);
    return std::is_neq(order) ? order : compare(0.0, right - whole);
}

std::weak_ordering reversed(std::weak_ordering order)
{
    if (std::is_eq(order)) return order;
    return std::is_lt(order) ? std::weak_ordering::greater : std::weak_ordering::less;
}

std::int64_t heldToRange(double value)
{
    if (std::isnan(value)) return 0;
    if (value >= twoTo63) return std::numeric_limits<std::int64_t>::max();
    if (value <= -twoTo63) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(value);
}

std::string realText(double value)
{
    if (std::isnan(value)) return "nan";
    constexpr int significantDigits = 16;
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general,
                                   significantDigits);
    return {text.data(), end.ptr};
}

template<class... Functions>
struct Overloaded : Functions...
{
    using Functions::operator()...;
};
template<class... Functions> // clang before 17 does not find it by itself
Overloaded(Functions...)->Overloaded<Functions...>;

using Value = std::variant<std::int64_t, std::uint64_t, double, bool, Decimal>;

std::optional<Integer> exactInteger(const Value &value)
{
    return std::visit(Overloaded{[](std::int64_t v) { return std::optional(integerOf(v)); },
                                 [](std::uint64_t v) {
                                     return std::optional(Integer{false, v});
                                 },
                                 [](bool v) {
                                     return std::optional(Integer{false, v ? 1U : 0U});
                                 },
                                 [](const auto &) { return std::optional<Integer>(); }},
                      value);
}

} // namespace

const char *Number::objCType() const
{
    switch (origin()) {
    case Origin::boolean:
        return "c";
    case Origin::int64:
        return "q";
    case Origin::uint64:
        return std::get<std::uint64_t>(m_value) > std::numeric_limits<std::int64_t>::max() ? "Q" : "q";
    case Origin::real:
    case Origin::decimal:
        break;
    }
    return "d";
}

std::string Number::stringValue() const
{
    return std::visit(Overloaded{[](double v) { return realText(v); },
                                 [](bool v) { return std::string(v ? "1" : "0"); },
                                 [](const Decimal &v) { return v.stringValue(); },
                                 [](auto v) { return std::to_string(v); }},
                      m_value);
}

std::int64_t Number::integerValue() const
{
    return std::visit(Overloaded{[](double v) { return heldToRange(v); },
                                 [](const Decimal &v) { return v.int64Value(); },
                                 [](auto v) { return static_cast<std::int64_t>(v); }},
                      m_value);
}

std::int32_t Number::intValue() const
{
    return static_cast<std::int32_t>(integerValue());
}

double Number::doubleValue() const
{
    return std::visit(Overloaded{[](const Decimal &v) { return v.doubleValue(); },
                                 [](auto v) { return static_cast<double>(v); }},
                      m_value);
}

bool Number::boolValue() const
{
    return *this != Number();
}

std::weak_ordering operator<=>(const Number &left, const Number &right)
{
    const auto leftInteger = exactInteger(left.m_value);
    const auto rightInteger = exactInteger(right.m_value);
    if (leftInteger && rightInteger) return compare(*leftInteger, *rightInteger);

    const double *leftReal = std::get_if<double>(&left.m_value);
    const double *rightReal = std::get_if<double>(&right.m_value);
    if (leftInteger && rightReal) return compare(*leftInteger, *rightReal);
    if (leftReal && rightInteger) return reversed(compare(*rightInteger, *leftReal));
    if (leftReal || rightReal) return compare(left.doubleValue(), right.doubleValue());

    const auto asDecimal = [](const Number &number, const std::optional<Integer> &integer) {
        return integer ? Decimal::fromInteger(integer->negative, integer->magnitude)
                       : std::get<Decimal>(number.m_value);
    };
    return asDecimal(left, leftInteger) <=> asDecimal(right, rightInteger);
}

} // namespace tessaly
