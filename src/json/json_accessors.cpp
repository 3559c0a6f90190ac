#include "json/json.h"

#include <algorithm>
#include <array>

namespace tessaly {

namespace {

// Only ASCII letters have a case here: the words that are compared have no others.
bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

bool meansTrue(std::string_view text)
{
    constexpr std::array<std::string_view, 5> words{"true", "y", "t", "yes", "1"};
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return equalsIgnoringCase(text, word); });
}

Number decimalOrZero(std::string_view text)
{
    const Decimal decimal = Decimal::fromString(text);
    return decimal.isNaN() ? Decimal() : decimal;
}

} // namespace

const Array &JSON::rawArray() const &
{
    static const Array none;
    return m_object.array() ? *m_object.array() : none;
}

const Dictionary &JSON::rawDictionary() const &
{
    static const Dictionary none;
    return m_object.dictionary() ? *m_object.dictionary() : none;
}

std::string JSON::rawString() const
{
    return string().value_or(std::string());
}

Number JSON::rawNumber() const
{
    return type() == Type::number ? *m_object.number() : Number();
}

bool JSON::rawBool() const
{
    return type() == Type::bool_ && m_object.number()->boolValue();
}

std::string JSON::stringValue() const
{
    switch (type()) {
    case Type::number:
        return m_object.number()->stringValue();
    case Type::string:
        return *m_object.string();
    case Type::bool_:
        return rawBool() ? "true" : "false";
    default:
        return {};
    }
}

std::optional<std::string> JSON::string() const
{
    if (const std::string *text = m_object.string()) return *text;
    return std::nullopt;
}

Number JSON::numberValue() const
{
    if (const std::string *text = m_object.string()) return decimalOrZero(*text);
    return number().value_or(Number(0.0));
}

std::optional<Number> JSON::number() const
{
    switch (type()) {
    case Type::number:
        return *m_object.number();
    case Type::bool_:
        return Number(rawBool() ? 1 : 0);
    default:
        return std::nullopt;
    }
}

std::int64_t JSON::intValue() const
{
    return numberValue().integerValue();
}

std::optional<std::int64_t> JSON::int_() const
{
    if (const auto value = number()) return value->integerValue();
    return std::nullopt;
}

double JSON::doubleValue() const
{
    return numberValue().doubleValue();
}

std::optional<double> JSON::double_() const
{
    if (const auto value = number()) return value->doubleValue();
    return std::nullopt;
}

bool JSON::boolValue() const
{
    if (const std::string *text = m_object.string()) return meansTrue(*text);
    return m_object.number() && m_object.number()->boolValue();
}

std::optional<bool> JSON::bool_() const
{
    if (type() != Type::bool_) return std::nullopt;
    return rawBool();
}

std::vector<JSON> JSON::arrayValue() const
{
    std::vector<JSON> values;
    values.reserve(rawArray().size());
    for (const Object &element : rawArray())
        values.push_back(fromObject(element));
    return values;
}

std::optional<std::vector<JSON>> JSON::array() const
{
    if (type() != Type::array) return std::nullopt;
    return arrayValue();
}

std::map<std::string, JSON, std::less<>> JSON::dictionaryValue() const
{
    std::map<std::string, JSON, std::less<>> values;
    for (const auto &[key, value] : rawDictionary())
        values.emplace_hint(values.end(), key, fromObject(value));
    return values;
}

std::optional<std::map<std::string, JSON, std::less<>>> JSON::dictionary() const
{
    if (type() != Type::dictionary) return std::nullopt;
    return dictionaryValue();
}

std::optional<Dictionary> JSON::dictionaryObject() const
{
    if (type() != Type::dictionary) return std::nullopt;
    return rawDictionary();
}

} // namespace tessaly
