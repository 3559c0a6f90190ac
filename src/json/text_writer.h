// Writes a stream of events as JSON text, in the order of the events.
#pragma once

#include "json/events.h"

#include <string>
#include <vector>

namespace tessaly {

struct TextStyle
{
    // Many lines, indented by two blanks a level; otherwise one line without blanks.
    bool pretty = false;
    bool escapesSlashes = false;
    // Other characters are written as \u escapes.
    bool asciiOnly = false;
};

// Takes the events of one value. An event that JSON has no text for (a number that is not finite, a string or
// key that is not UTF-8) throws JSONException with invalidJSON.
class TextWriter final : public EventSink
{
public:
    explicit TextWriter(TextStyle style = {}) : m_style(style) {}

    void null() override;
    void boolean(bool value) override;
    // Reals with the fewest digits that read back as the same real, and always a point or an exponent;
    // decimals in full.
    void number(const Number &value) override;
    void string(std::string_view text) override;
    void beginArray() override { open('['); }
    void endArray() override { close(']'); }
    void beginDictionary() override { open('{'); }
    void key(std::string_view key) override;
    void endDictionary() override { close('}'); }

    const std::string &text() const { return m_text; }

private:
    void separate();
    void open(char bracket);
    void close(char bracket);
    void breakLine();
    void quote(std::string_view text);
    void escapeUnit(char16_t unit);
    void quoteScalar(char32_t scalar, std::string_view itsBytes);

    TextStyle m_style;
    std::string m_text;
    std::vector<bool> m_openHasItems;
    bool m_afterKey = false;
};

} // namespace tessaly
