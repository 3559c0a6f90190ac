#include "json/json_error.h"

#include <array>

namespace tessaly {

namespace {

struct Entry
{
    JSONError error;
    std::string_view message;
};

constexpr std::array<Entry, 6> entries{{
    {JSONError::unsupportedType, "It is an unsupported type."},
    {JSONError::indexOutOfBounds, "Array Index is out of bounds."},
    {JSONError::elementTooDeep,
     "Element too deep. Increase maxObjectDepth and make sure there is no reference loop."},
    {JSONError::wrongType, "Couldn't merge, because the JSONs differ in type on top level."},
    {JSONError::notExist, "Dictionary key does not exist."},
    {JSONError::invalidJSON, "JSON is invalid."},
}};

} // namespace

std::optional<JSONError> jsonErrorFromCode(int code)
{
    for (const Entry &entry : entries) {
        if (errorCode(entry.error) == code) return entry.error;
    }
    return std::nullopt;
}

std::string_view errorDomain()
{
    return "org.tessaly.json";
}

int errorCode(JSONError error)
{
    return static_cast<int>(error);
}

std::string errorMessage(JSONError error)
{
    for (const Entry &entry : entries) {
        if (entry.error == error) return std::string(entry.message);
    }
    return {};
}

std::map<std::string, std::string> errorUserInfo(JSONError error)
{
    return {{"NSLocalizedDescription", errorMessage(error)}};
}

} // namespace tessaly
