// The steps of a path into a JSON value.
#pragma once

#include "json/number.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace tessaly {

// One step: the index of an element or the key of a member.
class JSONKey
{
public:
    static JSONKey index(std::int64_t index) { return JSONKey(index); }
    static JSONKey key(std::string key) { return JSONKey(std::move(key)); }

    // The index; null when this is a key.
    const std::int64_t *index() const { return std::get_if<std::int64_t>(&m_step); }
    // The key; null when this is an index.
    const std::string *key() const { return std::get_if<std::string>(&m_step); }

    bool operator==(const JSONKey &) const = default;

private:
    explicit JSONKey(std::int64_t index) : m_step(index) {}
    explicit JSONKey(std::string key) : m_step(std::move(key)) {}

    std::variant<std::int64_t, std::string> m_step;
};

// Whatever can be a step of a path: integers give an index, strings give a key.
class JSONSubscriptType
{
public:
    template<PlainInteger T>
    JSONSubscriptType(T index) : m_key(JSONKey::index(static_cast<std::int64_t>(index)))
    {}
    JSONSubscriptType(const char *key) : m_key(JSONKey::key(key)) {}
    JSONSubscriptType(std::string_view key) : m_key(JSONKey::key(std::string(key))) {}
    JSONSubscriptType(std::string key) : m_key(JSONKey::key(std::move(key))) {}
    JSONSubscriptType(JSONKey key) : m_key(std::move(key)) {}

    const JSONKey &jsonKey() const { return m_key; }

private:
    JSONKey m_key;
};

} // namespace tessaly
