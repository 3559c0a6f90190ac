#include "json/json.h"

namespace tessaly {

namespace {

// The order of two numbers or of two strings; values of other kinds, and of different ones, have none.
std::partial_ordering order(const Object &left, const Object &right)
{
    if (left.string() && right.string()) return *left.string() <=> *right.string();
    const Number *leftNumber = left.number();
    const Number *rightNumber = right.number();
    if (leftNumber && rightNumber && !leftNumber->isBool() && !rightNumber->isBool())
        return *leftNumber <=> *rightNumber;
    return std::partial_ordering::unordered;
}

} // namespace

bool operator==(const JSON &left, const JSON &right)
{
    const Type type = left.type();
    if (type == Type::unknown || type != right.type()) return false;
    return type == Type::null || left.m_object == right.m_object;
}

bool operator<(const JSON &left, const JSON &right)
{
    return std::is_lt(order(left.m_object, right.m_object));
}

bool operator>(const JSON &left, const JSON &right)
{
    return std::is_gt(order(left.m_object, right.m_object));
}

bool operator<=(const JSON &left, const JSON &right)
{
    return left < right || left == right;
}

bool operator>=(const JSON &left, const JSON &right)
{
    return left > right || left == right;
}

} // namespace tessaly
