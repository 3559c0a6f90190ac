#include "json/offending_byte.h"

#include <vector>

namespace tessaly {

namespace {

constexpr std::string_view digits = "0123456789";
constexpr std::string_view digitsOfEscape = "0123456789abcdefABCDEF";

// Walks over a text byte by byte. Every function that takes something answers whether it was there; if not,
// the walk has stopped at the byte that cannot stand there, or at the end.
class Walk
{
public:
    Walk(std::string_view text, std::size_t start) : m_text(text), m_at(start) {}

    std::size_t toOffendingByte()
    {
        do {
            skip(" \t\n\r");
        } while (m_at < m_text.size() && takeNext());
        return m_at;
    }

private:
    enum class Next { value, valueOrEnd, key, keyOrEnd, colon, commaOrEnd, nothing };

    bool nextIsOneOf(std::string_view bytes) const
    {
        return m_at < m_text.size() && bytes.find(m_text[m_at]) != std::string_view::npos;
    }
    bool takeOneOf(std::string_view bytes)
    {
        if (!nextIsOneOf(bytes)) return false;
        ++m_at;
        return true;
    }
    void skip(std::string_view bytes)
    {
        while (takeOneOf(bytes)) {
        }
    }
    bool takeByteIn(unsigned char first, unsigned char last)
    {
        if (m_at == m_text.size()) return false;
        const auto byte = static_cast<unsigned char>(m_text[m_at]);
        if (byte < first || byte > last) return false;
        ++m_at;
        return true;
    }

    bool takeNext()
    {
        switch (m_next) {
        case Next::valueOrEnd:
            return nextIsOneOf("]") ? takeEnd() : takeValue();
        case Next::value:
            return takeValue();
        case Next::keyOrEnd:
            return nextIsOneOf("}") ? takeEnd() : takeKey();
        case Next::key:
            return takeKey();
        case Next::colon:
            m_next = Next::value;
            return takeOneOf(":");
        case Next::commaOrEnd:
            m_next = m_ends.back() == ']' ? Next::value : Next::key;
            return takeOneOf(",") || takeEnd();
        case Next::nothing:
            break;
        }
        return false;
    }

    bool takeKey()
    {
        m_next = Next::colon;
        return takeString();
    }

    bool takeValue()
    {
        if (takeOneOf("[")) return open(']', Next::valueOrEnd);
        if (takeOneOf("{")) return open('}', Next::keyOrEnd);
        const bool taken = nextIsOneOf("\"")  ? takeString()
                           : nextIsOneOf("t") ? takeWord("true")
                           : nextIsOneOf("f") ? takeWord("false")
                           : nextIsOneOf("n") ? takeWord("null")
                                              : takeNumber();
        return taken && finishValue();
    }

    bool open(char end, Next next)
    {
        m_ends.push_back(end);
        m_next = next;
        return true;
    }
    bool takeEnd()
    {
        if (!takeOneOf({&m_ends.back(), 1})) return false;
        m_ends.pop_back();
        return finishValue();
    }
    bool finishValue()
    {
        m_next = m_ends.empty() ? Next::nothing : Next::commaOrEnd;
        return true;
    }

    bool takeWord(std::string_view word)
    {
        for (const char letter : word) {
            if (!takeOneOf({&letter, 1})) return false;
        }
        return true;
    }

    bool takeNumber()
    {
        takeOneOf("-");
        if (!takeOneOf("0") && !takeDigits()) return false;
        if (takeOneOf(".") && !takeDigits()) return false;
        if (!takeOneOf("eE")) return true;
        takeOneOf("+-");
        return takeDigits();
    }
    bool takeDigits()
    {
        if (!takeOneOf(digits)) return false;
        skip(digits);
        return true;
    }

    bool takeString()
    {
        if (!takeOneOf("\"")) return false;
        while (!takeOneOf("\"")) {
            if (!(takeOneOf("\\") ? takeEscape() : takeCharacter())) return false;
        }
        return true;
    }
    bool takeEscape()
    {
        if (takeOneOf("\"\\/bfnrt")) return true;
        if (!takeOneOf("u")) return false;
        if (!takeOneOf("dD")) return takeHexDigits(4);
        if (takeOneOf("01234567")) return takeHexDigits(2);
        // Half a surrogate pair; the other half has to follow.
        return takeOneOf("89abAB") && takeHexDigits(2) && takeOneOf("\\") && takeOneOf("u") &&
               takeOneOf("dD") && takeOneOf("cdefCDEF") && takeHexDigits(2);
    }
    bool takeHexDigits(int count)
    {
        for (int i = 0; i < count; ++i) {
            if (!takeOneOf(digitsOfEscape)) return false;
        }
        return true;
    }
    // One character of UTF-8, no control character; the shortest form, and no half of a surrogate pair.
    bool takeCharacter()
    {
        const auto takeRest = [this](int count) {
            for (int i = 0; i < count; ++i) {
                if (!takeByteIn(0x80, 0xBF)) return false;
            }
            return true;
        };
        if (takeByteIn(0x20, 0x7F)) return true;
        if (takeByteIn(0xC2, 0xDF)) return takeRest(1);
        if (takeByteIn(0xE0, 0xE0)) return takeByteIn(0xA0, 0xBF) && takeRest(1);
        if (takeByteIn(0xED, 0xED)) return takeByteIn(0x80, 0x9F) && takeRest(1);
        if (takeByteIn(0xE1, 0xEF)) return takeRest(2);
        if (takeByteIn(0xF0, 0xF0)) return takeByteIn(0x90, 0xBF) && takeRest(2);
        if (takeByteIn(0xF1, 0xF3)) return takeRest(3);
        return takeByteIn(0xF4, 0xF4) && takeByteIn(0x80, 0x8F) && takeRest(2);
    }

    std::string_view m_text;
    std::size_t m_at;
    Next m_next = Next::value;
    std::vector<char> m_ends; // of the open containers
};

} // namespace

std::size_t offendingByte(std::string_view text, std::size_t start)
{
    return Walk(text, start).toOffendingByte();
}

} // namespace tessaly
