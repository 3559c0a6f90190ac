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

    // Parses strictly (RFC 8259, UTF-8, at most 512 levels; of equal keys the last one wins); throws
    // ParseError.
    static JSON fromBytes(std::string_view bytes, ReadingOptions options = {});
    // Anything: a byte buffer is parsed, and gives null without an error when it is no JSON.
    explicit JSON(const Object &any);
    // An object as it is; bytes and objects of other types give kind `unknown` and `unsupportedType`.
    static JSON fromObject(Object object);
    // None for an object of an unknown type.
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
    template<std::same_as<bool> T> // no other type turns into a truth value by itself
    JSON(T value) : JSON(Object(value), Literal{})
    {}
    static JSON arrayLiteral(std::initializer_list<JSON> elements);
    static JSON
    dictionaryLiteral(std::initializer_list<std::pair<std::string, JSON>> members); // the last one wins

    Type type() const;
    // Why this is null: of a failed lookup, or of an object of an unknown type.
    std::optional<JSONError> error() const { return m_error; }

    // The content; the null marker for null and unknown. Writing it replaces kind, content and error.
    Object object() const;
    void setObject(Object object);

    // The content of one kind, and that kind's default for a value of another: empty, integer 0, false.
    const Array &rawArray() const &;
    Array rawArray() && { return std::as_const(*this).rawArray(); }
    const Dictionary &rawDictionary() const &;
    Dictionary rawDictionary() && { return std::as_const(*this).rawDictionary(); }
    std::string rawString() const;
    Number rawNumber() const;
    Object rawNull() const { return nullptr; }
    bool rawBool() const;

    // Lookups. They copy nothing that was parsed. The error of a failed one is that of its first failing
    // step: `indexOutOfBounds`, `notExist`, or for a value of the wrong kind its own error, else `wrongType`.
    template<PlainInteger T>
    JSON operator[](T index) const
    {
        return element(static_cast<std::int64_t>(index));
    }
    JSON operator[](std::string_view key) const;
    JSON operator[](std::initializer_list<JSONSubscriptType> path) const
    {
        return (*this)[Path(path.begin(), path.size())];
    }
    JSON operator[](Path path) const; // an empty one gives this value

    // Writing in place. False, and nothing changed, when there is no such place or when `value` carries an
    // error. A key that a dictionary lacks is added; the steps of a path before its last must exist.
    template<PlainInteger T>
    bool set(T index, const JSON &value)
    {
        return setElement(static_cast<std::int64_t>(index), value);
    }
    bool set(std::string_view key, const JSON &value);
    bool set(std::initializer_list<JSONSubscriptType> path, const JSON &value)
    {
        return set(Path(path.begin(), path.size()), value);
    }
    bool set(Path path, const JSON &value);

    // Plain accessors: numbers, strings and booleans are turned into each other, other kinds give the
    // default. The optional ones give nothing for a string (but `string`), and for any other kind but numbers
    // and booleans.
    std::string stringValue() const;
    std::optional<std::string> string() const;
    Number numberValue() const; // a string is read as a decimal; 0 when it is none
    std::optional<Number> number() const;
    std::int64_t intValue() const;
    std::optional<std::int64_t> int_() const;
    double doubleValue() const;
    std::optional<double> double_() const;
    bool boolValue() const; // a string: whether it is "true", "y", "t", "yes" or "1" in any letter case
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

    // Deep: members are merged key by key, arrays are joined, anything else takes the other's value. Throws
    // JSONException with wrongType, and changes nothing, when the two differ in kind.
    void merge(const JSON &other);
    JSON merged(const JSON &other) const;

    // By value; an unknown value equals nothing, not even itself. Numbers and strings are ordered (strings by
    // their bytes); for other kinds <= and >= mean equal.
    friend bool operator==(const JSON &left, const JSON &right);
    friend bool operator<(const JSON &left, const JSON &right);
    friend bool operator<=(const JSON &left, const JSON &right);
    friend bool operator>=(const JSON &left, const JSON &right);
    friend bool operator>(const JSON &left, const JSON &right);

    // The value as JSON text; throws JSONException with elementTooDeep, or invalidJSON for what JSON cannot
    // say.
    std::string rawString(const writingOptionsKeys &options) const; // UTF-8, or its ASCII part when asked for
    std::string rawData(const writingOptionsKeys &options = {}) const; // bytes in the encoding of the options
    // One line of JSON text for people; the message of the error where there is none.
    std::string description() const;
    std::string debugDescription() const { return description(); }

    // The structured coding. Both throw JSONException with invalidJSON, for content that cannot be coded or
    // for events that do not form one value.
    void encode(EventSink &sink) const;
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
