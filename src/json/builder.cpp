#include "json/builder.h"

#include "json/json_error.h"

namespace tessaly {

namespace {

void require(bool condition)
{
    if (!condition) throw JSONException(JSONError::invalidJSON);
}

} // namespace

void Builder::open(bool isDictionary)
{
    require(!m_result && (m_open.empty() || !m_open.back().isDictionary || m_open.back().hasKey));
    m_open.push_back({isDictionary, false, {}, {}, {}});
}

Builder::Container &Builder::innermost(bool isDictionary)
{
    require(!m_open.empty() && m_open.back().isDictionary == isDictionary && !m_open.back().hasKey);
    return m_open.back();
}

void Builder::key(std::string_view key)
{
    Container &container = innermost(true);
    container.key = key;
    container.hasKey = true;
}

void Builder::endArray()
{
    Array elements = std::move(innermost(false).elements);
    m_open.pop_back();
    add(Object(std::move(elements)));
}

void Builder::endDictionary()
{
    Dictionary members = std::move(innermost(true).members);
    m_open.pop_back();
    add(Object(std::move(members)));
}

void Builder::add(Object value)
{
    if (m_open.empty()) {
        require(!m_result);
        m_result = std::move(value);
        return;
    }
    Container &container = m_open.back();
    if (!container.isDictionary) {
        container.elements.push_back(std::move(value));
        return;
    }
    require(container.hasKey);
    container.members.insert_or_assign(std::move(container.key), std::move(value));
    container.hasKey = false;
}

Object Builder::takeResult()
{
    require(m_result.has_value());
    Object result = std::move(*m_result);
    m_result.reset();
    return result;
}

} // namespace tessaly
