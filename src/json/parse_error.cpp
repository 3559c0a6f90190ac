#include "json/parse_error.h"

#include <utility>

namespace tessaly {

ParseError::ParseError(std::string text, std::optional<std::size_t> position)
    : m_text(std::move(text)), m_position(position)
{
    std::string userInfo = "NSDebugDescription=" + m_text;
    if (m_position) userInfo += ", NSJSONSerializationErrorIndex=" + std::to_string(*m_position);
    m_description = "Error Domain=NSCocoaErrorDomain Code=" + std::to_string(code()) + " \"" + m_text +
                    "\" UserInfo={" + userInfo + "}";
}

} // namespace tessaly
