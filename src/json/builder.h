// Makes an object of a stream of events.
#pragma once

#include "json/events.h"
#include "json/object.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tessaly {

// An event that cannot stand where it comes throws JSONException with invalidJSON. Of equal keys the last one
// wins.
class Builder final : public EventSink
{
public:
    void null() override { add(Object(nullptr)); }
    void boolean(bool value) override { add(Object(value)); }
    void number(const Number &value) override { add(Object(value)); }
    void string(std::string_view text) override { add(Object(text)); }
    void beginArray() override { open(false); }
    void endArray() override;
    void beginDictionary() override { open(true); }
    void key(std::string_view key) override;
    void endDictionary() override;

    // How many containers are open.
    std::size_t depth() const { return m_open.size(); }
    bool isComplete() const { return m_result.has_value(); }

    // Hands the value out and is empty again. Throws JSONException with invalidJSON when none is complete.
    Object takeResult();

private:
    struct Container
    {
        bool isDictionary;
        bool hasKey = false;
        std::string key;
        Array elements;
        Dictionary members;
    };

    void open(bool isDictionary);
    Container &innermost(bool isDictionary);
    void add(Object value);

    std::vector<Container> m_open;
    std::optional<Object> m_result;
};

} // namespace tessaly
