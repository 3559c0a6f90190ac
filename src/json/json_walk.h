// The collection walk of JSON values: `for (const auto &[key, value] : json)`.
#pragma once

#include "json/json.h"

#include <compare>
#include <cstddef>
#include <iterator>

namespace tessaly {

// A position. Valid as long as the value that gave it is neither written nor destroyed.
class JSON::Index
{
public:
    enum class Kind { array, dictionary, null };

    Kind kind() const { return m_kind; }
    // Positions of one kind compare by their place, positions of different kinds are unordered.
    friend bool operator==(const Index &left, const Index &right) { return std::is_eq(left <=> right); }
    friend std::partial_ordering operator<=>(const Index &left, const Index &right)
    {
        if (left.m_kind != right.m_kind) return std::partial_ordering::unordered;
        return left.m_place <=> right.m_place;
    }

private:
    friend class JSON;
    Index() = default;
    Index(Kind kind, std::int64_t place, Dictionary::const_iterator member = {})
        : m_kind(kind), m_place(place), m_member(member)
    {}

    Kind m_kind = Kind::null;
    std::int64_t m_place = 0;
    Dictionary::const_iterator m_member;
};

struct JSON::Element
{
    std::string key; // of a member; empty for an element of an array
    JSON value;
};

// Keeps what it walks: writing the value meanwhile does not disturb the walk.
class JSON::Iterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Element;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = Element;

    Iterator(const JSON &collection, const Index &index) : m_collection(collection), m_index(index) {}

    Element operator*() const { return m_collection[m_index]; }
    Iterator &operator++()
    {
        m_index = m_collection.indexAfter(m_index);
        return *this;
    }
    Iterator operator++(int)
    {
        Iterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const Iterator &left, const Iterator &right)
    {
        return left.m_index == right.m_index;
    }

private:
    JSON m_collection;
    Index m_index;
};

} // namespace tessaly
