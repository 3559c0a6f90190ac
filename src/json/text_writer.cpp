#include "json/text_writer.h"

#include "json/json_error.h"
#include "json/utf8.h"

#include <array>
#include <charconv>
#include <cmath>

namespace tessaly {

namespace {

[[noreturn]] void refuse()
{
    throw JSONException(JSONError::invalidJSON);
}

std::string realLiteral(double value)
{
    if (!std::isfinite(value)) refuse();
    const double magnitude = std::fabs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e16);
    std::array<char, 40> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    std::string text(buffer.data(), end.ptr);
    // Without a point it would be read back as an integer.
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

// A fraction that is short enough to be read as a real, but which no real shows with the same digits, gets
// zeros until it is long enough to be read as a decimal.
std::string decimalText(const Decimal &value)
{
    if (value.isNaN()) refuse();
    constexpr std::size_t decimalLiteral = 18;
    std::string text = value.stringValue();
    const bool isShortFraction = text.size() < decimalLiteral && text.find('.') != std::string::npos;
    if (isShortFraction && realLiteral(value.doubleValue()) != text) text.resize(decimalLiteral, '0');
    return text;
}

std::string numberText(const Number &value)
{
    switch (value.origin()) {
    case Number::Origin::real:
        return realLiteral(value.doubleValue());
    case Number::Origin::decimal:
        return decimalText(value.decimal());
    case Number::Origin::boolean:
        return value.boolValue() ? "true" : "false";
    case Number::Origin::int64:
    case Number::Origin::uint64:
        break;
    }
    return value.stringValue();
}

// The letter of a two-character escape, or 0.
char escapeLetter(char32_t scalar)
{
    switch (scalar) {
    case '"':
        return '"';
    case '\\':
        return '\\';
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}

} // namespace

void TextWriter::null()
{
    separate();
    m_text += "null";
}

void TextWriter::boolean(bool value)
{
    separate();
    m_text += value ? "true" : "false";
}

void TextWriter::number(const Number &value)
{
    separate();
    m_text += numberText(value);
}

void TextWriter::string(std::string_view text)
{
    separate();
    quote(text);
}

void TextWriter::key(std::string_view key)
{
    separate();
    quote(key);
    m_text += m_style.pretty ? ": " : ":";
    m_afterKey = true;
}

void TextWriter::open(char bracket)
{
    separate();
    m_text += bracket;
    m_openHasItems.push_back(false);
}

void TextWriter::close(char bracket)
{
    const bool hadItems = m_openHasItems.back();
    m_openHasItems.pop_back();
    if (hadItems) breakLine();
    m_text += bracket;
}

// What stands between an item and the one before it.
void TextWriter::separate()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_openHasItems.empty()) return;
    if (m_openHasItems.back()) m_text += ',';
    m_openHasItems.back() = true;
    breakLine();
}

void TextWriter::breakLine()
{
    if (!m_style.pretty) return;
    m_text += '\n';
    m_text.append(2 * m_openHasItems.size(), ' ');
}

void TextWriter::quote(std::string_view text)
{
    m_text += '"';
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const std::optional<char32_t> scalar = takeScalar(text, at);
        if (!scalar) refuse();
        quoteScalar(*scalar, text.substr(start, at - start));
    }
    m_text += '"';
}

void TextWriter::quoteScalar(char32_t scalar, std::string_view itsBytes)
{
    if (const char letter = escapeLetter(scalar)) {
        m_text += '\\';
        m_text += letter;
    } else if (scalar == '/' && m_style.escapesSlashes) {
        m_text += "\\/";
    } else if (scalar < 0x20 || (scalar >= 0x7F && scalar <= 0xFFFF && m_style.asciiOnly)) {
        escapeUnit(static_cast<char16_t>(scalar));
    } else if (scalar > 0xFFFF && m_style.asciiOnly) {
        escapeUnit(surrogatesOf(scalar).high);
        escapeUnit(surrogatesOf(scalar).low);
    } else {
        m_text += itsBytes;
    }
}

void TextWriter::escapeUnit(char16_t unit)
{
    constexpr std::string_view hexDigits = "0123456789abcdef";
    m_text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        m_text += hexDigits[(unit >> shift) & 0xF];
}

} // namespace tessaly
