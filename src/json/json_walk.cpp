#include "json/json_walk.h"

namespace tessaly {

std::size_t JSON::count() const
{
    if (const Array *elements = m_object.array()) return elements->size();
    if (const Dictionary *members = m_object.dictionary()) return members->size();
    return 0;
}

JSON::Index JSON::startIndex() const
{
    if (m_object.array()) return Index(Index::Kind::array, 0);
    if (const Dictionary *members = m_object.dictionary())
        return Index(Index::Kind::dictionary, 0, members->begin());
    return {};
}

JSON::Index JSON::endIndex() const
{
    const auto end = static_cast<std::int64_t>(count());
    if (m_object.array()) return Index(Index::Kind::array, end);
    if (const Dictionary *members = m_object.dictionary())
        return Index(Index::Kind::dictionary, end, members->end());
    return {};
}

JSON::Index JSON::indexAfter(const Index &index) const
{
    if (index.m_kind == Index::Kind::null || index == endIndex()) return index;
    Index after = index;
    ++after.m_place;
    if (after.m_kind == Index::Kind::dictionary) ++after.m_member;
    return after;
}

std::int64_t JSON::distance(const Index &from, const Index &to) const
{
    return to.m_place - from.m_place;
}

JSON::Element JSON::operator[](const Index &index) const
{
    if (index.m_kind == Index::Kind::dictionary && index < endIndex())
        return {index.m_member->first, fromObject(index.m_member->second)};
    return {{}, element(index.m_place)};
}

JSON::Iterator JSON::begin() const
{
    return {*this, startIndex()};
}

JSON::Iterator JSON::end() const
{
    return {*this, endIndex()};
}

} // namespace tessaly
