#include "json/object_events.h"

#include "json/json_error.h"

namespace tessaly {

namespace {

// An open container and how far it has been sent; one of the two is set.
struct Place
{
    const Array *array = nullptr;
    const Dictionary *dictionary = nullptr;
    Array::const_iterator element;
    Dictionary::const_iterator member;
};

class Sender
{
public:
    Sender(EventSink &sink, EventOptions options) : m_sink(sink), m_options(options) {}

    void send(const Object &root)
    {
        begin(root);
        while (!m_open.empty()) {
            if (m_open.back().array)
                continueArray();
            else
                continueDictionary();
        }
    }

private:
    void begin(const Object &object)
    {
        switch (object.kind()) {
        case Object::Kind::null:
            return m_sink.null();
        case Object::Kind::string:
            return m_sink.string(*object.string());
        case Object::Kind::number:
            return sendNumber(*object.number());
        case Object::Kind::array:
            return beginArray(*object.array());
        case Object::Kind::dictionary:
            return beginDictionary(*object.dictionary());
        case Object::Kind::absent:
            if (m_options.absentAsNull) return m_sink.null();
            break;
        case Object::Kind::bytes:
        case Object::Kind::other:
            break;
        }
        throw JSONException(JSONError::invalidJSON);
    }

    void sendNumber(const Number &number)
    {
        if (number.isBool())
            m_sink.boolean(number.boolValue());
        else
            m_sink.number(number);
    }

    void beginArray(const Array &array)
    {
        checkDepth();
        m_sink.beginArray();
        m_open.push_back({&array, nullptr, array.begin(), {}});
    }

    void beginDictionary(const Dictionary &dictionary)
    {
        checkDepth();
        m_sink.beginDictionary();
        m_open.push_back({nullptr, &dictionary, {}, dictionary.begin()});
    }

    void checkDepth() const
    {
        if (m_open.size() >= m_options.deepestLevel) throw JSONException(JSONError::elementTooDeep);
    }

    void continueArray()
    {
        Place &place = m_open.back();
        if (place.element == place.array->end()) {
            m_sink.endArray();
            m_open.pop_back();
            return;
        }
        begin(*place.element++);
    }

    void continueDictionary()
    {
        Place &place = m_open.back();
        if (place.member == place.dictionary->end()) {
            m_sink.endDictionary();
            m_open.pop_back();
            return;
        }
        const auto &[key, value] = *place.member++;
        m_sink.key(key);
        begin(value);
    }

    EventSink &m_sink;
    EventOptions m_options;
    std::vector<Place> m_open;
};

} // namespace

void sendEvents(const Object &object, EventSink &sink, EventOptions options)
{
    Sender(sink, options).send(object);
}

} // namespace tessaly
