// Why a JSON value is null, and what merging, coding and text output throw.
#pragma once

#include <exception>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tessaly {

enum class JSONError : int {
    unsupportedType = 999,
    indexOutOfBounds = 900,
    elementTooDeep = 902,
    wrongType = 901, // also what a lookup on a value of the wrong kind records
    notExist = 500,
    invalidJSON = 490,
};

// None for an integer that is no code.
std::optional<JSONError> jsonErrorFromCode(int code);

std::string_view errorDomain();
int errorCode(JSONError error);
// A sentence for people.
std::string errorMessage(JSONError error);
// One entry: the message, under "NSLocalizedDescription".
std::map<std::string, std::string> errorUserInfo(JSONError error);

class JSONException : public std::exception
{
public:
    explicit JSONException(JSONError error) : m_error(error), m_message(errorMessage(error)) {}

    JSONError error() const { return m_error; }
    const char *what() const noexcept override { return m_message.c_str(); }

private:
    JSONError m_error;
    std::string m_message;
};

} // namespace tessaly
