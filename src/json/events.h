// The structured coding of JSON values: a value is a stream of events, a reader of the stream is a sink.
#pragma once

#include "json/number.h"

#include <string_view>

namespace tessaly {

// Takes one value, event by event. Inside a dictionary each value comes behind its key. Texts are UTF-8 and
// valid during the call only.
class EventSink
{
public:
    EventSink() = default;
    EventSink(const EventSink &) = delete;
    EventSink &operator=(const EventSink &) = delete;
    virtual ~EventSink() = default;

    virtual void null() = 0;
    virtual void boolean(bool value) = 0;
    virtual void number(const Number &value) = 0;
    virtual void string(std::string_view text) = 0;
    virtual void beginArray() = 0;
    virtual void endArray() = 0;
    virtual void beginDictionary() = 0;
    virtual void key(std::string_view key) = 0;
    virtual void endDictionary() = 0;
};

} // namespace tessaly
