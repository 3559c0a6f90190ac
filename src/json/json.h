// The value type for JSON documents. Reading never fails: what a document lacks comes as a null value that
// carries an error code, and the plain accessors give a neutral default for it.
#pragma once

#include "json/events.h"
#include "json/json_error.h"
#include "json/json_key.h"
#include "json/json_options.h"
#include "json/number.h"
#include "json/object.h"
#include "json/parse_error.h"

#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <utility>

namespace tessaly {

enum class Type : int { number, string, bool_, array, dictionary, null, unknown };

// A value: copies are independent, and cheap because they share what was parsed until one of them is written.
// Texts are UTF-8. One value may not be written by one thread while another uses it; copies may.
class JSON
{
public:
    class Index;
    class Iterator;
    struct Element;
    using Path = std::span<const JSONSubscriptType>;

    JSON() = default; // null, no error
    static const JSON &null();

    // Parses strictly: RFC 8259, UTF-8, at most 512 levels; of equal keys the last one wins. Throws
    // ParseError.
    static JSON fromBytes(std::string_view bytes, ReadingOptions options = {});

    // The object as it is; but a byte buffer is parsed, and gives null without an error when it is no JSON.
    explicit JSON(const Object &any);

    // The object as it is; bytes and objects of other types give the kind `unknown` and `unsupportedType`.
    static JSON fromObject(Object object);

    // As fromObject(); nothing for an object of an unknown type.
    static std::optional<JSON> fromRawValue(Object rawValue);
    Object rawValue() const { return object(); }

    JSON(const char *text) : JSON(Object(text), Literal{}) {}
    JSON(std::string text) : JSON(Object(std::move(text)), Literal{}) {}
    JSON(std::string_view text) : JSON(Object(text), Literal{}) {}
    JSON(char character); // ASCII
    JSON(char32_t scalar);
    JSON(double value) : JSON(Object(value), Literal{}) {}
    JSON(const Number &value) : JSON(Object(value), Literal{}) {}
    JSON(std::nullptr_t) {}
    template<PlainInteger T>
    JSON(T value) : JSON(Object(value), Literal{})
    {}
    // No other type turns into a truth value by itself.
    template<std::same_as<bool> T>
    JSON(T value) : JSON(Object(value), Literal{})
    {}
    static JSON arrayLiteral(std::initializer_list<JSON> elements);
    // Of equal keys the last one wins.
    static JSON dictionaryLiteral(std::initializer_list<std::pair<std::string, JSON>> members);

    Type type() const;
    // Why this is null: of a failed lookup, or of an object of an unknown type.
    std::optional<JSONError> error() const { return m_error; }

    // The content; the null marker for null and unknown.
    Object object() const;

    // Replaces kind, content and error.
    void setObject(Object object);

    // The elements; none for a value of another kind. So each of the next ones: empty, integer 0, false.
    const Array &rawArray() const &;
    Array rawArray() && { return std::as_const(*this).rawArray(); }
    const Dictionary &rawDictionary() const &;
    Dictionary rawDictionary() && { return std::as_const(*this).rawDictionary(); }
    std::string rawString() const;
    Number rawNumber() const;
    Object rawNull() const { return nullptr; }
    bool rawBool() const;

    // The value at the end of a path, which shares what was parsed; this one for an empty path. The error of
    // a failed lookup is that of its first failing step: `indexOutOfBounds`, `notExist`, or for a value of
    // the wrong kind its own error, else `wrongType`.
    JSON operator[](Path path) const;
    JSON operator[](std::initializer_list<JSONSubscriptType> path) const
    {
        return (*this)[Path(path.begin(), path.size())];
    }
    JSON operator[](std::string_view key) const;
    template<PlainInteger T>
    JSON operator[](T index) const
    {
        return element(static_cast<std::int64_t>(index));
    }

    // Writes at the end of a path, whose steps before the last must exist; a key that a dictionary lacks is
    // added. False, and nothing changed, when there is no such place or when `value` carries an error.
    bool set(Path path, const JSON &value);
    bool set(std::initializer_list<JSONSubscriptType> path, const JSON &value)
    {
        return set(Path(path.begin(), path.size()), value);
    }
    bool set(std::string_view key, const JSON &value);
    template<PlainInteger T>
    bool set(T index, const JSON &value)
    {
        return setElement(static_cast<std::int64_t>(index), value);
    }

    // The plain accessors turn numbers, strings and booleans into each other; of other kinds they give the
    // default. The optional ones give nothing for another kind, but number(), int_() and double_() take
    // booleans, too.
    std::string stringValue() const;
    std::optional<std::string> string() const;
    Number numberValue() const; // a string is read as a decimal; 0 when it is none
    std::optional<Number> number() const;
    std::int64_t intValue() const;
    std::optional<std::int64_t> int_() const;
    double doubleValue() const;
    std::optional<double> double_() const;
    // Of a string: whether it is "true", "y", "t", "yes" or "1" in any letter case.
    bool boolValue() const;
    std::optional<bool> bool_() const;
    std::vector<JSON> arrayValue() const;
    std::optional<std::vector<JSON>> array() const;
    std::map<std::string, JSON, std::less<>> dictionaryValue() const;
    std::optional<std::map<std::string, JSON, std::less<>>> dictionary() const;
    std::optional<Dictionary> dictionaryObject() const;

    // The collection walk: the elements of an array, the members of a dictionary, nothing for other kinds.
    std::size_t count() const;
    bool empty() const { return count() == 0; }
    Index startIndex() const;
    Index endIndex() const;
    Index indexAfter(const Index &index) const;
    std::int64_t distance(const Index &from, const Index &to) const;
    Element operator[](const Index &index) const;
    Iterator begin() const;
    Iterator end() const;

    // Through all levels: members are merged key by key, arrays are joined, anything else takes the other's
    // value. Throws JSONException with wrongType, and changes nothing, when the two differ in kind.
    void merge(const JSON &other);
    JSON merged(const JSON &other) const;

    // By value; an unknown value equals nothing, not even itself.
    friend bool operator==(const JSON &left, const JSON &right);
    // Numbers and strings have an order, strings that of their bytes; for other kinds <= and >= mean equal.
    friend bool operator<(const JSON &left, const JSON &right);
    friend bool operator<=(const JSON &left, const JSON &right);
    friend bool operator>=(const JSON &left, const JSON &right);
    friend bool operator>(const JSON &left, const JSON &right);

    // The value as JSON text in UTF-8, of ASCII characters only when asked for. Throws JSONException with
    // elementTooDeep, or with invalidJSON for what JSON cannot say.
    std::string rawString(const writingOptionsKeys &options) const;
    // The same as bytes in the encoding of the options.
    std::string rawData(const writingOptionsKeys &options = {}) const;
    // One line of JSON text for people; the message of the error where there is none.
    std::string description() const;
    std::string debugDescription() const { return description(); }

    // Sends the value to the sink. Throws JSONException with invalidJSON for content that cannot be coded.
    void encode(EventSink &sink) const;
    // The value whose events `source` sends. Throws JSONException with invalidJSON when they form none.
    static JSON decode(const std::function<void(EventSink &)> &source);

private:
    struct Literal
    {};
    JSON(Object object, Literal) { setObject(std::move(object)); }
    explicit JSON(JSONError error) : m_error(error) {}
    JSON element(std::int64_t index) const;
    bool setElement(std::int64_t index, const JSON &value);
    bool canSet(Path path) const;
    const Object &codedObject() const;

    Object m_object;
    std::optional<JSONError> m_error;
};

} // namespace tessaly

#include "json/json_walk.h"
