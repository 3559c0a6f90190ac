#include "json/reader.h"

#include "json/builder.h"
#include "json/offending_byte.h"
#include "json/parse_error.h"

#include <algorithm>
#include <limits>
#include <locale.h>
#include <optional>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif
#include <nlohmann/json.hpp>

namespace tessaly {

namespace {

// Beyond this many characters before its exponent a number keeps its digits as a decimal.
constexpr std::size_t longestRealLiteral = 17;

// The parser turns reals into numbers by the thread's locale, whose decimal separator may be a comma.
class PlainNumericLocale
{
public:
    PlainNumericLocale() : m_before(uselocale(plain())) {}
    PlainNumericLocale(const PlainNumericLocale &) = delete;
    PlainNumericLocale &operator=(const PlainNumericLocale &) = delete;
    ~PlainNumericLocale() { uselocale(m_before); }

private:
    static locale_t plain()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t m_before;
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::size_t startOfValue(std::string_view text)
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::size_t at = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    while (at < text.size() && isBlank(text[at]))
        ++at;
    return at;
}

std::string place(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, offset);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    const std::size_t lineBreak = before.rfind('\n');
    const std::size_t column = lineBreak == std::string_view::npos ? offset : offset - lineBreak - 1;
    return " around line " + std::to_string(line) + ", column " + std::to_string(column) + ".";
}

ParseError errorAt(std::string_view text, std::size_t offset, const std::string &what)
{
    return ParseError(what + place(text, offset), offset);
}

// Whether the exponent of a literal, "" or "e…", is one that a decimal can have.
bool isDecimalExponent(std::string_view exponent)
{
    return !Decimal::fromString(std::string("1").append(exponent)).isNaN();
}

Number numberOfLiteral(double nearest, std::string_view literal)
{
    const std::size_t exponentAt = std::min(literal.find_first_of("eE"), literal.size());
    const bool isInteger = literal.find_first_of(".eE") == std::string_view::npos;
    if (!isInteger && (exponentAt <= longestRealLiteral || !isDecimalExponent(literal.substr(exponentAt))))
        return nearest;
    const Decimal decimal = Decimal::fromString(literal);
    return decimal.isNaN() ? Number(nearest) : Number(decimal);
}

// What the parser calls; each function answers whether it shall go on.
class Handler
{
public:
    bool null() { return m_builder.null(), true; }
    bool boolean(bool value) { return m_builder.boolean(value), true; }
    bool number_integer(std::int64_t value) { return m_builder.number(value), true; }
    bool number_unsigned(std::uint64_t value)
    {
        const bool fitsSigned = value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return m_builder.number(fitsSigned ? Number(static_cast<std::int64_t>(value)) : Number(value)), true;
    }
    bool number_float(double nearest, const std::string &literal)
    {
        return m_builder.number(numberOfLiteral(nearest, literal)), true;
    }
    bool string(const std::string &text) { return m_builder.string(text), true; }
    bool binary(const std::vector<std::uint8_t> &) { return false; } // no text holds any
    bool start_object(std::size_t) { return mayOpen() && (m_builder.beginDictionary(), true); }
    bool key(const std::string &key) { return m_builder.key(key), true; }
    bool end_object() { return m_builder.endDictionary(), true; }
    bool start_array(std::size_t) { return mayOpen() && (m_builder.beginArray(), true); }
    bool end_array() { return m_builder.endArray(), true; }
    bool parse_error(std::size_t bytesRead, const std::string &token, const std::exception &error)
    {
        // The parser has just read the whole number then.
        if (dynamic_cast<const nlohmann::json::out_of_range *>(&error))
            m_hugeNumber = bytesRead - token.size();
        return false;
    }

    bool isTooDeep() const { return m_tooDeep; }
    // Where a number begins that no type can hold.
    std::optional<std::size_t> hugeNumber() const { return m_hugeNumber; }
    bool isComplete() const { return m_builder.isComplete(); }
    Object takeResult() { return m_builder.takeResult(); }

private:
    bool mayOpen()
    {
        m_tooDeep = m_builder.depth() == deepestReadLevel;
        return !m_tooDeep;
    }

    Builder m_builder;
    std::optional<std::size_t> m_hugeNumber;
    bool m_tooDeep = false;
};

// The bytes up to and with the bracket that opens the level; the text is sound up to there.
std::size_t bytesToLevel(std::string_view text, std::size_t level)
{
    std::size_t depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            inString = !inString;
        } else if (inString) {
            if (c == '\\') ++i;
        } else if (c == '[' || c == '{') {
            if (++depth == level) return i + 1;
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return text.size();
}

// What went wrong. `text` is what the parser saw of `bytes`, all of it or what stands before a NUL byte; the
// value begins at `start`.
ParseError failure(std::string_view bytes, std::string_view text, std::size_t start, const Handler &handler)
{
    if (handler.isTooDeep()) {
        const std::size_t offset = bytesToLevel(text, deepestReadLevel + 1);
        return errorAt(bytes, offset, "Too many nested arrays or dictionaries");
    }
    if (handler.hugeNumber()) return errorAt(bytes, *handler.hugeNumber(), "Invalid value");
    const std::size_t offset = offendingByte(text, start);
    if (handler.isComplete()) return errorAt(bytes, offset, "Garbage at end");
    if (offset == bytes.size()) return errorAt(bytes, offset, "Unexpected end of file");
    return errorAt(bytes, offset, "Invalid value");
}

} // namespace

Object readJSON(std::string_view bytes, ReadingOptions options)
{
    const std::size_t start = startOfValue(bytes);
    if (start == bytes.size()) throw ParseError("Unable to parse empty data.");
    if (!options.fragmentsAllowed && bytes[start] != '[' && bytes[start] != '{') {
        throw errorAt(bytes, start,
                      "JSON text did not start with array or object and option to allow fragments not set.");
    }

    // To the parser a NUL byte ends the text, to JSON it may stand nowhere.
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    const PlainNumericLocale plainNumbers;
    Handler handler;
    const bool textIsSound = nlohmann::json::sax_parse(text.begin(), text.end(), &handler);
    if (!textIsSound || text.size() != bytes.size()) throw failure(bytes, text, start, handler);
    return handler.takeResult();
}

} // namespace tessaly
