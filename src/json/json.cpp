#include "json/json.h"

#include "json/reader.h"
#include "json/utf8.h"

namespace tessaly {

namespace {

bool isUnknown(const Object &object)
{
    return object.kind() == Object::Kind::bytes || object.kind() == Object::Kind::other;
}

// What a lookup finds: an object, or why there is none.
struct Found
{
    const Object *object;
    JSONError error;
};

Found findElement(const Object &in, std::int64_t index, JSONError errorOfWrongKind)
{
    const Array *elements = in.array();
    if (!elements) return {nullptr, errorOfWrongKind};
    if (index < 0 || static_cast<std::uint64_t>(index) >= elements->size())
        return {nullptr, JSONError::indexOutOfBounds};
    return {&(*elements)[static_cast<std::size_t>(index)], {}};
}

Found findMember(const Object &in, std::string_view key, JSONError errorOfWrongKind)
{
    const Dictionary *members = in.dictionary();
    if (!members) return {nullptr, errorOfWrongKind};
    const auto member = members->find(key);
    if (member == members->end()) return {nullptr, JSONError::notExist};
    return {&member->second, {}};
}

Found findStep(const Object &in, const JSONKey &step, JSONError errorOfWrongKind)
{
    if (const std::int64_t *index = step.index()) return findElement(in, *index, errorOfWrongKind);
    return findMember(in, *step.key(), errorOfWrongKind);
}

std::string textOf(char32_t scalar)
{
    std::string text;
    appendScalar(text, scalar);
    return text;
}

} // namespace

const JSON &JSON::null()
{
    static const JSON value;
    return value;
}

JSON JSON::fromBytes(std::string_view bytes, ReadingOptions options)
{
    return fromObject(readJSON(bytes, options));
}

JSON::JSON(const Object &any)
{
    if (!any.bytes()) {
        setObject(any);
        return;
    }
    try {
        setObject(readJSON(*any.bytes(), {}));
    } catch (const ParseError &) {
        setObject(nullptr);
    }
}

JSON::JSON(char character) : JSON(std::string(1, character)) {}

JSON::JSON(char32_t scalar) : JSON(textOf(scalar)) {}

JSON JSON::fromObject(Object object)
{
    return JSON(std::move(object), Literal{});
}

std::optional<JSON> JSON::fromRawValue(Object rawValue)
{
    JSON value = fromObject(std::move(rawValue));
    if (value.type() == Type::unknown) return std::nullopt;
    return value;
}

JSON JSON::arrayLiteral(std::initializer_list<JSON> elements)
{
    Array objects;
    for (const JSON &element : elements)
        objects.push_back(element.object());
    return fromObject(Object(std::move(objects)));
}

JSON JSON::dictionaryLiteral(std::initializer_list<std::pair<std::string, JSON>> members)
{
    Dictionary objects;
    for (const auto &[key, value] : members)
        objects.insert_or_assign(key, value.object());
    return fromObject(Object(std::move(objects)));
}

Type JSON::type() const
{
    switch (m_object.kind()) {
    case Object::Kind::number:
        return m_object.number()->isBool() ? Type::bool_ : Type::number;
    case Object::Kind::string:
        return Type::string;
    case Object::Kind::array:
        return Type::array;
    case Object::Kind::dictionary:
        return Type::dictionary;
    case Object::Kind::bytes:
    case Object::Kind::other:
        return Type::unknown;
    case Object::Kind::null:
    case Object::Kind::absent:
        break;
    }
    return Type::null;
}

Object JSON::object() const
{
    return type() == Type::null || type() == Type::unknown ? Object(nullptr) : m_object;
}

void JSON::setObject(Object object)
{
    m_object = std::move(object);
    m_error.reset();
    if (isUnknown(m_object)) m_error = JSONError::unsupportedType;
}

JSON JSON::element(std::int64_t index) const
{
    const Found found = findElement(m_object, index, m_error.value_or(JSONError::wrongType));
    return found.object ? fromObject(*found.object) : JSON(found.error);
}

JSON JSON::operator[](std::string_view key) const
{
    const Found found = findMember(m_object, key, m_error.value_or(JSONError::wrongType));
    return found.object ? fromObject(*found.object) : JSON(found.error);
}

JSON JSON::operator[](Path path) const
{
    if (path.empty()) return *this;
    const Object *place = &m_object;
    JSONError errorOfWrongKind = m_error.value_or(JSONError::wrongType);
    for (const JSONSubscriptType &step : path) {
        const Found found = findStep(*place, step.jsonKey(), errorOfWrongKind);
        if (!found.object) return JSON(found.error);
        place = found.object;
        errorOfWrongKind = isUnknown(*place) ? JSONError::unsupportedType : JSONError::wrongType;
    }
    return fromObject(*place);
}

} // namespace tessaly
