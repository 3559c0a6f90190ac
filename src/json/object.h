// The untyped parsed value: what a JSON document is made of before anyone asks for its kind.
#pragma once

#include "json/number.h"

#include <any>
#include <concepts>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace tessaly {

class Object;
using Array = std::vector<Object>;
using Dictionary = std::map<std::string, Object, std::less<>>;

// Cheap to copy: copies share what they hold, and a part is copied only when one of them is written (and only
// along the way to the written place). Objects that share may be read from several threads, each thread with
// its own copy. Nesting may have any depth: nothing here follows it by recursion.
class Object
{
public:
    enum class Kind { absent, null, number, string, array, dictionary, bytes, other };

    Object() = default; // absent: no object at all, which is not the null marker
    Object(std::nullptr_t) : m_value(Null{}) {}
    // No other type turns into a truth value by itself.
    template<std::same_as<bool> T>
    Object(T value) : m_value(Number(value))
    {}
    template<PlainInteger T>
    Object(T value) : m_value(Number(value))
    {}
    Object(double value) : m_value(Number(value)) {}
    Object(Number value) : m_value(value) {}
    Object(std::string text); // UTF-8
    Object(std::string_view text);
    Object(const char *text);
    Object(Array elements);
    Object(Dictionary members);
    static Object bytes(std::string buffer);
    static Object other(std::any value);

    Object(const Object &) = default;
    Object &operator=(const Object &other) { return *this = Object(other); }
    // What was moved from is absent.
    Object(Object &&other) noexcept : m_value(std::exchange(other.m_value, Value{})) {}
    Object &operator=(Object &&other) noexcept;
    ~Object() = default;

    Kind kind() const { return static_cast<Kind>(m_value.index()); }

    // The number, or null when it is of another kind; so each of the next ones. Valid as long as this object,
    // or a copy, is unchanged.
    const Number *number() const { return std::get_if<Number>(&m_value); }
    const std::string *string() const;
    const Array *array() const;
    const Dictionary *dictionary() const;
    const std::string *bytes() const;
    const std::any *other() const;

    // The elements of an array, for writing: first made this object's own when they are shared.
    Array &writableArray();
    // The same of a dictionary.
    Dictionary &writableDictionary();

    // By kind and value, through all levels. Objects of an unknown type are equal when they share one value.
    friend bool operator==(const Object &left, const Object &right);

private:
    struct Null
    {};
    struct Bytes
    {
        std::string buffer;
    };
    struct ArrayNode;
    struct DictionaryNode;
    using Value = std::variant<std::monostate, Null, Number, std::shared_ptr<const std::string>,
                               std::shared_ptr<ArrayNode>, std::shared_ptr<DictionaryNode>,
                               std::shared_ptr<const Bytes>, std::shared_ptr<const std::any>>;

    bool isContainer() const { return kind() == Kind::array || kind() == Kind::dictionary; }
    template<class Children>
    static void dismantle(Children &children);

    Value m_value;
};

// `target` with `other` merged into it, through all levels: members of dictionaries are merged key by key,
// the elements of arrays are joined, anything else takes the value of `other`.
void mergeInto(Object &target, const Object &other);

} // namespace tessaly
