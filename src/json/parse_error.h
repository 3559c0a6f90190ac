// What reading bytes that are not JSON throws.
#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <string>

namespace tessaly {

class ParseError : public std::exception
{
public:
    explicit ParseError(std::string text, std::optional<std::size_t> position = std::nullopt);

    int code() const { return 3840; }
    // A sentence for people; it names the place as a line (from 1) and a column (from 0, in bytes).
    const std::string &text() const { return m_text; }
    // The offset in bytes, as given, of the first byte that cannot stand where it is: of the first one of a
    // number that is too large, and behind the bracket that opens level 513. The size of a text that lacks
    // its end; none for empty input.
    std::optional<std::size_t> position() const { return m_position; }
    // Domain, code, text and position on one line.
    const std::string &description() const { return m_description; }
    const char *what() const noexcept override { return m_description.c_str(); }

private:
    std::string m_text;
    std::optional<std::size_t> m_position;
    std::string m_description;
};

} // namespace tessaly
