#include "json/builder.h"
#include "json/json.h"
#include "json/object_events.h"
#include "json/text_writer.h"
#include "json/utf8.h"

namespace tessaly {

namespace {

std::string written(const Object &object, TextStyle style, EventOptions options)
{
    TextWriter writer(style);
    sendEvents(object, writer, options);
    return writer.text();
}

} // namespace

// A null value may hold no object at all; one of an unknown type stays what cannot be coded.
const Object &JSON::codedObject() const
{
    static const Object nullMarker(nullptr);
    return type() == Type::null ? nullMarker : m_object;
}

std::string JSON::rawString(const writingOptionsKeys &options) const
{
    const SerializerOptions &serializer = options.jsonSerialization;
    const bool isFragment = type() != Type::array && type() != Type::dictionary;
    if (isFragment && !serializer.fragmentsAllowed) throw JSONException(JSONError::invalidJSON);
    const TextStyle style{serializer.prettyPrinted, serializer.escapesSlashes,
                          options.encoding == TextEncoding::ascii};
    return written(codedObject(), style, {options.castNilToNSNull, options.maxObjextDepth});
}

std::string JSON::rawData(const writingOptionsKeys &options) const
{
    std::string text = rawString(options);
    switch (options.encoding) {
    case TextEncoding::utf16LittleEndian:
        return utf16Bytes(text, true);
    case TextEncoding::utf16BigEndian:
        return utf16Bytes(text, false);
    case TextEncoding::utf8:
    case TextEncoding::ascii:
        break;
    }
    return text;
}

std::string JSON::description() const
{
    try {
        return written(codedObject(), {}, {true});
    } catch (const JSONException &exception) {
        return errorMessage(m_error.value_or(exception.error()));
    }
}

void JSON::encode(EventSink &sink) const
{
    sendEvents(codedObject(), sink);
}

JSON JSON::decode(const std::function<void(EventSink &)> &source)
{
    Builder builder;
    source(builder);
    return fromObject(builder.takeResult());
}

} // namespace tessaly
