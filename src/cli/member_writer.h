// The members of a JSON object that tessaly-cli prints.
#pragma once

#include "platform/paths.h"
#include "json/events.h"

#include <QString>
#include <QUrl>

#include <cmath>
#include <optional>
#include <string_view>

namespace tessaly {

// Writes members in the order of the calls. What is absent or not finite becomes null.
class MemberWriter
{
public:
    explicit MemberWriter(EventSink &sink) : m_sink(sink) {}

    void member(std::string_view name, bool value)
    {
        m_sink.key(name);
        m_sink.boolean(value);
    }
    void member(std::string_view name, qint64 value) { number(name, Number(std::int64_t{value})); }
    void member(std::string_view name, quint64 value) { number(name, Number(std::uint64_t{value})); }
    void member(std::string_view name, double value)
    {
        if (std::isfinite(value)) {
            number(name, Number(value));
        } else {
            null(name);
        }
    }
    void member(std::string_view name, const QString &value)
    {
        m_sink.key(name);
        m_sink.string(value.toStdString());
    }
    void member(std::string_view name, const QUrl &value) { member(name, absoluteString(value)); }

    template<class Value>
    void member(std::string_view name, const std::optional<Value> &value)
    {
        if (value) {
            member(name, *value);
        } else {
            null(name);
        }
    }

private:
    void number(std::string_view name, const Number &value)
    {
        m_sink.key(name);
        m_sink.number(value);
    }
    void null(std::string_view name)
    {
        m_sink.key(name);
        m_sink.null();
    }

    EventSink &m_sink;
};

} // namespace tessaly
