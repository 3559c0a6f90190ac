// Whatever the bytes are: reading gives a value or an error; what was read, written and read again is the
// same value, with a text that stays; and every accessor answers on every kind of value.
#include "require.h"
#include "json/json.h"

#include <algorithm>

using namespace tessaly;

namespace {

JSON read(std::string_view text)
{
    return JSON::fromBytes(text, {.fragmentsAllowed = true});
}

// A real of more than 17 characters is read back as a decimal, whose text has no exponent and no ".0".
bool holdsLongReal(std::string_view text)
{
    while (!text.empty()) {
        const std::string_view number = text.substr(0, text.find_first_not_of("0123456789+-.e"));
        const bool losesItsEnd = number.find('e') != std::string_view::npos || number.ends_with(".0");
        if (number.size() > 17 && losesItsEnd) return true;
        text.remove_prefix(number.size() + (number.size() < text.size() ? 1 : 0));
    }
    return false;
}

void checkText(const JSON &json)
{
    for (const bool pretty : {false, true}) {
        for (const TextEncoding encoding : {TextEncoding::utf8, TextEncoding::ascii}) {
            writingOptionsKeys options;
            options.jsonSerialization.prettyPrinted = pretty;
            options.jsonSerialization.escapesSlashes = pretty;
            options.encoding = encoding;
            const std::string text = json.rawString(options);
            const JSON again = read(text);
            REQUIRE(again == json);
            const std::string settled = again.rawString(options);
            REQUIRE(settled == text || holdsLongReal(text));
            REQUIRE(read(settled).rawString(options) == settled);
        }
    }
}

void checkCoding(const JSON &json)
{
    const JSON decoded = JSON::decode([&json](EventSink &sink) { json.encode(sink); });
    REQUIRE(decoded == json);
    REQUIRE(decoded.description() == json.description());
}

void checkAccessors(const JSON &json)
{
    const Type type = json.type();
    const bool isNumeric = type == Type::number || type == Type::bool_;
    REQUIRE(json.string().has_value() == (type == Type::string));
    REQUIRE(json.number().has_value() == isNumeric);
    REQUIRE(json.int_().has_value() == isNumeric);
    REQUIRE(json.double_().has_value() == isNumeric);
    REQUIRE(json.bool_().has_value() == (type == Type::bool_));
    REQUIRE(json.array().has_value() == (type == Type::array));
    REQUIRE(json.dictionary().has_value() == (type == Type::dictionary));
    REQUIRE(json.dictionaryObject().has_value() == (type == Type::dictionary));
    if (isNumeric) {
        REQUIRE(*json.int_() == json.intValue());
        REQUIRE(Number(*json.double_()) == Number(json.doubleValue()));
        REQUIRE(*json.number() == json.numberValue());
    }
    REQUIRE(json.arrayValue().size() == json.rawArray().size());
    REQUIRE(json.dictionaryValue().size() == json.rawDictionary().size());
    REQUIRE(json.count() == json.rawArray().size() + json.rawDictionary().size());
    REQUIRE(json.rawNumber() == json.rawNumber());
    REQUIRE(json.rawBool() == (type == Type::bool_ && json.boolValue()));
    REQUIRE(json.stringValue().empty() || type == Type::string || isNumeric);
    REQUIRE(json.numberValue().stringValue() != "NaN");
    REQUIRE(json == json && json <= json && json >= json && !(json < json) && !(json > json));
    REQUIRE(JSON::fromObject(json.object()) == json);
    REQUIRE(json.merged(json).type() == type);
    REQUIRE(json["\xFF"].error().has_value());
    REQUIRE(json[-1].error().has_value());
}

void checkWriting(const JSON &json)
{
    JSON written = json;
    REQUIRE(written.set("new", 1) == (json.type() == Type::dictionary));
    REQUIRE(written.set(0, 2) == !json.rawArray().empty());
    if (json.count() == 0) return;
    written = json;
    const JSON::Element first = *json.begin();
    const JSONSubscriptType step =
        json.type() == Type::array ? JSONSubscriptType(0) : JSONSubscriptType(first.key);
    REQUIRE(json[{step}] == first.value);
    REQUIRE(written.set({step}, "changed"));
    REQUIRE(written[{step}] == "changed");
    REQUIRE(written.set({step}, first.value));
    REQUIRE(written == json);
}

void checkEveryPart(const JSON &root)
{
    constexpr std::size_t enough = 200;
    std::vector<JSON> parts{root};
    for (std::size_t i = 0; i < std::min(parts.size(), enough); ++i) {
        const JSON part = parts[i];
        checkAccessors(part);
        checkWriting(part);
        for (const auto &[key, value] : part) {
            if (parts.size() < enough) parts.push_back(value);
        }
    }
}

// What stands before the offending byte is sound, or lacks its end.
void checkPosition(std::string_view text, const ParseError &error)
{
    if (!error.position()) return;
    REQUIRE(*error.position() <= text.size());
    try {
        read(text.substr(0, *error.position()));
    } catch (const ParseError &before) {
        REQUIRE(!before.position() || *before.position() == *error.position());
    }
}

void checkDecimal(std::string_view text)
{
    const Decimal decimal = Decimal::fromString(text);
    if (decimal.isNaN()) return;
    REQUIRE(Decimal::fromString(decimal.stringValue()).stringValue() == decimal.stringValue());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    checkDecimal(text);
    checkAccessors(JSON(text));
    try {
        const JSON json = read(text);
        checkText(json);
        checkCoding(json);
        checkEveryPart(json);
    } catch (const ParseError &error) {
        checkPosition(text, error);
        REQUIRE(error.description().find('\n') == std::string::npos);
    }
    return 0;
}
