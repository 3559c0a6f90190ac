#include "json/json.h"

namespace tessaly {

namespace {

// Where a step leads, for writing; the place must exist.
Object &writablePlace(Object &in, const JSONKey &step)
{
    if (const std::int64_t *index = step.index()) return in.writableArray()[static_cast<std::size_t>(*index)];
    return in.writableDictionary().find(*step.key())->second;
}

} // namespace

bool JSON::setElement(std::int64_t index, const JSON &value)
{
    const JSONSubscriptType step(index);
    return set(Path(&step, 1), value);
}

bool JSON::set(std::string_view key, const JSON &value)
{
    const JSONSubscriptType step(key);
    return set(Path(&step, 1), value);
}

bool JSON::set(Path path, const JSON &value)
{
    if (value.m_error) return false;
    Object content =
        value.object(); // shares with this value when it is a part of it, so that writing leaves it
    if (path.empty()) {
        setObject(std::move(content));
        return true;
    }
    if (!canSet(path)) return false;

    Object *place = &m_object;
    for (const JSONSubscriptType &step : path.first(path.size() - 1))
        place = &writablePlace(*place, step.jsonKey());
    const JSONKey &last = path.back().jsonKey();
    if (last.key())
        place->writableDictionary().insert_or_assign(*last.key(), std::move(content));
    else
        writablePlace(*place, last) = std::move(content);
    return true;
}

bool JSON::canSet(Path path) const
{
    const JSON container = (*this)[path.first(path.size() - 1)];
    const JSONKey &last = path.back().jsonKey();
    if (last.key()) return container.type() == Type::dictionary;
    return *last.index() >= 0 && static_cast<std::uint64_t>(*last.index()) < container.rawArray().size();
}

void JSON::merge(const JSON &other)
{
    if (type() != other.type()) throw JSONException(JSONError::wrongType);
    mergeInto(m_object, other.m_object);
    m_error = other.m_error;
}

JSON JSON::merged(const JSON &other) const
{
    JSON result = *this;
    result.merge(other);
    return result;
}

} // namespace tessaly
