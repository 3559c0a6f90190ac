// What walks two trees at once, with a list of what is left to do instead of recursion.
#include "json/object.h"

namespace tessaly {

namespace {

using Pair = std::pair<const Object *, const Object *>;

// Compares the arrays themselves; what their elements are is left to `pending`.
bool compareArrays(const Array &left, const Array &right, std::vector<Pair> &pending)
{
    if (left.size() != right.size()) return false;
    for (std::size_t i = 0; i < left.size(); ++i)
        pending.emplace_back(&left[i], &right[i]);
    return true;
}

bool compareDictionaries(const Dictionary &left, const Dictionary &right, std::vector<Pair> &pending)
{
    if (left.size() != right.size()) return false;
    auto other = right.begin();
    for (const auto &[key, value] : left) {
        if (key != other->first) return false;
        pending.emplace_back(&value, &other->second);
        ++other;
    }
    return true;
}

bool compareOneLevel(const Object &left, const Object &right, std::vector<Pair> &pending)
{
    if (left.kind() != right.kind()) return false;
    switch (left.kind()) {
    case Object::Kind::absent:
    case Object::Kind::null:
        return true;
    case Object::Kind::number:
        return *left.number() == *right.number();
    case Object::Kind::string:
        return *left.string() == *right.string();
    case Object::Kind::bytes:
        return *left.bytes() == *right.bytes();
    case Object::Kind::other:
        return left.other() == right.other();
    case Object::Kind::array:
        return left.array() == right.array() || compareArrays(*left.array(), *right.array(), pending);
    case Object::Kind::dictionary:
        return left.dictionary() == right.dictionary() ||
               compareDictionaries(*left.dictionary(), *right.dictionary(), pending);
    }
    return false;
}

} // namespace

bool operator==(const Object &left, const Object &right)
{
    std::vector<Pair> pending;
    if (!compareOneLevel(left, right, pending)) return false;
    while (!pending.empty()) {
        const Pair next = pending.back();
        pending.pop_back();
        if (!compareOneLevel(*next.first, *next.second, pending)) return false;
    }
    return true;
}

void mergeInto(Object &target, const Object &other)
{
    const Object source = other; // keeps what is read alive and apart when both share their parts
    std::vector<std::pair<Object *, const Object *>> pending{{&target, &source}};
    while (!pending.empty()) {
        const auto [into, from] = pending.back();
        pending.pop_back();
        if (into->dictionary() && from->dictionary()) {
            Dictionary &members = into->writableDictionary();
            for (const auto &[key, value] : *from->dictionary()) {
                const auto [member, isNew] = members.try_emplace(key, value);
                if (!isNew) pending.emplace_back(&member->second, &value);
            }
        } else if (into->array() && from->array()) {
            Array &elements = into->writableArray();
            elements.insert(elements.end(), from->array()->begin(), from->array()->end());
        } else {
            *into = *from;
        }
    }
}

} // namespace tessaly
