#include "json/object.h"

#include <atomic>

namespace tessaly {

namespace {

Object &objectOf(Object &element)
{
    return element;
}

Object &objectOf(Dictionary::value_type &member)
{
    return member.second;
}

// The containers that lost their last owner on this thread and have not ended yet.
thread_local std::vector<Object> *waiting = nullptr;

} // namespace

// A container that ends would end its children from inside, and they theirs, as deep as the value is nested.
// So only the outermost call ends anything; the calls inside it hand their children over.
template<class Children>
void Object::dismantle(Children &children)
{
    std::vector<Object> own;
    const bool outermost = waiting == nullptr;
    if (outermost) waiting = &own;
    for (auto &child : children) {
        if (objectOf(child).isContainer()) waiting->push_back(std::move(objectOf(child)));
    }
    if (!outermost) return;
    while (!own.empty()) {
        const Object ends = std::move(own.back());
        own.pop_back();
    }
    waiting = nullptr;
}

struct Object::ArrayNode
{
    explicit ArrayNode(Array values) : elements(std::move(values)) {}
    ArrayNode(const ArrayNode &) = delete;
    ArrayNode &operator=(const ArrayNode &) = delete;
    ~ArrayNode() { dismantle(elements); }

    Array elements;
};

struct Object::DictionaryNode
{
    explicit DictionaryNode(Dictionary values) : members(std::move(values)) {}
    DictionaryNode(const DictionaryNode &) = delete;
    DictionaryNode &operator=(const DictionaryNode &) = delete;
    ~DictionaryNode() { dismantle(members); }

    Dictionary members;
};

Object::Object(std::string text) : m_value(std::make_shared<const std::string>(std::move(text))) {}

Object::Object(std::string_view text) : m_value(std::make_shared<const std::string>(text)) {}

Object::Object(const char *text) : Object(std::string_view(text)) {}

Object::Object(Array elements) : m_value(std::make_shared<ArrayNode>(std::move(elements))) {}

Object::Object(Dictionary members) : m_value(std::make_shared<DictionaryNode>(std::move(members))) {}

Object Object::bytes(std::string buffer)
{
    Object result;
    result.m_value = std::make_shared<const Bytes>(Bytes{std::move(buffer)});
    return result;
}

Object Object::other(std::any value)
{
    Object result;
    result.m_value = std::make_shared<const std::any>(std::move(value));
    return result;
}

Object &Object::operator=(Object &&other) noexcept
{
    m_value = std::exchange(other.m_value, Value{});
    return *this;
}

const std::string *Object::string() const
{
    const auto *text = std::get_if<std::shared_ptr<const std::string>>(&m_value);
    return text ? text->get() : nullptr;
}

const Array *Object::array() const
{
    const auto *node = std::get_if<std::shared_ptr<ArrayNode>>(&m_value);
    return node ? &(*node)->elements : nullptr;
}

const Dictionary *Object::dictionary() const
{
    const auto *node = std::get_if<std::shared_ptr<DictionaryNode>>(&m_value);
    return node ? &(*node)->members : nullptr;
}

const std::string *Object::bytes() const
{
    const auto *node = std::get_if<std::shared_ptr<const Bytes>>(&m_value);
    return node ? &(*node)->buffer : nullptr;
}

const std::any *Object::other() const
{
    const auto *value = std::get_if<std::shared_ptr<const std::any>>(&m_value);
    return value ? value->get() : nullptr;
}

Array &Object::writableArray()
{
    auto &node = std::get<std::shared_ptr<ArrayNode>>(m_value);
    if (node.use_count() != 1) node = std::make_shared<ArrayNode>(node->elements);
    // The count is read without order; what a former owner on another thread read must come before our
    // writing.
    std::atomic_thread_fence(std::memory_order_acquire);
    return node->elements;
}

Dictionary &Object::writableDictionary()
{
    auto &node = std::get<std::shared_ptr<DictionaryNode>>(m_value);
    if (node.use_count() != 1) node = std::make_shared<DictionaryNode>(node->members);
    std::atomic_thread_fence(std::memory_order_acquire); // as above
    return node->members;
}

} // namespace tessaly
