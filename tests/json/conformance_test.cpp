// The cases on which JSON parsers are known to differ: what must be read, and what must be refused.
#include "json_test_case.h"
#include "json/json.h"

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class ConformanceTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void accepts_data();
    void accepts();
    void rejects_data();
    void rejects();
    void refusesEveryPrefix();
    void refusesEveryForeignByteOutsideStrings();
    void refusesEveryControlCharacterInStrings();
    void takesOnlyTheNamedEscapes();
    void decidesOnUtf8_data();
    void decidesOnUtf8();
};

void ConformanceTest::accepts_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const QByteArray &text) {
        QTest::newRow(text.left(60).replace('\0', ' ').constData()) << text;
    };
    // structure
    for (const char *text : {"[]",
                             "{}",
                             "[[]]",
                             "[{}]",
                             "{\"a\":[]}",
                             "{\"a\":{}}",
                             "[[],[[]]]",
                             "[null]",
                             "[true]",
                             "[false]",
                             "[1,null,\"a\"]",
                             "[null,1,\"1\",{}]",
                             "{\"\":0}",
                             "{\"a\":null}",
                             "{\"a\":1,\"b\":2}",
                             "{\"a\":1,\"a\":2}",
                             "{\"a\":1,\"a\":1}",
                             "{\"a\\u0000b\":1}",
                             "{\"\\u006d\\u0069\\u006e\":-1}",
                             "[\"a\",\"b\"]",
                             "{\"long\":\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\"}"})
        row(text);
    // blanks
    for (const char *text : {" []", "[] ", "[ ]", "\t[\t]\t", "\r\n[\r\n]\r\n", "[1\n,\n2]", "{ \"a\" : 1 }",
                             "{\n\"a\"\n:\n1\n}", " [ 1 , 2 ] "})
        row(text);
    // numbers
    for (const char *text : {"[0]",
                             "[-0]",
                             "[1]",
                             "[-1]",
                             "[123456789]",
                             "[0.0]",
                             "[0e0]",
                             "[0e1]",
                             "[0e+1]",
                             "[0E-1]",
                             "[1.5]",
                             "[-1.5]",
                             "[1e5]",
                             "[1E5]",
                             "[1e+5]",
                             "[1e-5]",
                             "[1.5e10]",
                             "[1.5E+10]",
                             "[123.456e-78]",
                             "[20e1]",
                             "[0.1e1]",
                             "[-0.0]",
                             "[1e-400]",
                             "[-1e-400]",
                             "[123123123123123123123123123123]",
                             "[-123123123123123123123123123123]",
                             "[0.00000000000000000000000000000000000000000000000001]",
                             "[100000000000000000000]",
                             "[1.7976931348623157e308]",
                             "[4.9e-324]"})
        row(text);
    // strings
    for (const char *text :
         {R"([""])", R"([" "])", R"(["\"\\\/\b\f\n\r\t"])", R"(["\u0000"])", R"(["\u001f"])", R"(["\u0020"])",
          R"(["\u007F"])", R"(["\u00e9\u00E9"])", R"(["\uD800\uDC00"])", R"(["\uDBFF\uDFFF"])",
          R"(["\ud83d\ude00"])", R"(["\uFFFE\uFFFF"])", R"(["\u2028\u2029"])", R"(["\\u0000"])",
          R"(["\\\\"])", R"(["a/*b*/c//d"])", R"(["[{}],:"])", R"(["\uFDD0"])", R"(["new\u000Aline"])"})
        row(text);
    row("[\"\x7F\"]");
    row("[\"é漢😀\"]");
    row("[\"\xE2\x80\xA8\xE2\x80\xA9\"]");
    row("{\"clé\":1}");
    row("\xEF\xBB\xBF[]"); // a byte order mark may be ignored
    row("[" + QByteArray("1,").repeated(10000) + "1]");
    row("[\"" + QByteArray(100'000, 'x') + "\"]");
}

void ConformanceTest::accepts()
{
    QFETCH(QByteArray, text);
    try {
        const JSON json = JSON::fromBytes(view(text));
        QVERIFY(json.type() == Type::array || json.type() == Type::dictionary);
    } catch (const ParseError &error) {
        QFAIL(error.what());
    }
}

void ConformanceTest::rejects_data()
{
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const QByteArray &text) {
        QTest::newRow(text.left(60).replace('\0', ' ').constData()) << text;
    };
    // structure
    for (const char *text : {"[",
                             "]",
                             "{",
                             "}",
                             "[}",
                             "{]",
                             "[]]",
                             "{}}",
                             "[[]",
                             "[1",
                             "[1,",
                             "[1,]",
                             "[,]",
                             "[,1]",
                             "[1,,2]",
                             "[1,,]",
                             "[1 2]",
                             "[1:2]",
                             "[\"a\":1]",
                             "[\"a\" \"b\"]",
                             "[\"\"],",
                             "[\"a\",\n4\n,1,",
                             "[][]",
                             "{}{}",
                             "[]1",
                             "{}1",
                             "[];",
                             "{\"a\"}",
                             "{\"a\":}",
                             "{\"a\" 1}",
                             "{\"a\",1}",
                             "{\"a\"::1}",
                             "{:1}",
                             "{\"a\":1,}",
                             "{\"a\":1,,}",
                             "{,}",
                             "{\"a\":1,,\"b\":2}",
                             "{\"a\":1 \"b\":2}",
                             "{1:1}",
                             "{null:1}",
                             "{a:1}",
                             "{'a':1}",
                             "{\"a\":'b'}",
                             "['a']",
                             "{[]:1}",
                             "{\"a\":1}x",
                             "{\"a\":\"b\"}#",
                             "{\"a\":\"b\"}/**/",
                             "[1]//",
                             "[/*c*/]",
                             "[1 // c\n]",
                             "{\"a\":/*c*/1}",
                             "[1;2]",
                             "(1)",
                             "[(1)]",
                             "<[]>",
                             "[*]",
                             "[{]",
                             "[[}]",
                             "{\"a\":[}",
                             "{\"a\":{]",
                             "[\"a",
                             "{\"a",
                             "{\"a\":\"b",
                             "{\"a\":1",
                             "[1,\n1",
                             "[{}",
                             "..",
                             "[.]",
                             "&[]"})
        row(text);
    // words
    for (const char *text : {"[nul]",  "[nulll]", "[NULL]",       "[Null]",      "[tru]",       "[truee]",
                             "[True]", "[TRUE]",  "[fals]",       "[False]",     "[undefined]", "[NaN]",
                             "[nan]",  "[-NaN]",  "[Infinity]",   "[-Infinity]", "[inf]",       "[+inf]",
                             "[a]",    "[_]",     "[true false]", "[nulltrue]"})
        row(text);
    // numbers
    for (const char *text :
         {"[01]",  "[-01]",   "[00]",     "[-00]",      "[012]",   "[+1]",    "[++1]",   "[--1]",  "[-]",
          "[-a]",  "[- 1]",   "[.5]",     "[-.5]",      "[5.]",    "[5.e1]",  "[0.]",    "[0.e1]", "[1e]",
          "[1e+]", "[1e-]",   "[1E]",     "[1e1.5]",    "[1ee1]",  "[1e+-1]", "[0x10]",  "[0X1]",  "[1x]",
          "[1a]",  "[1.2.3]", "[1..2]",   "[1,000.5.]", "[1_000]", "[1 000]", "[1e1 e]", "[0e]",   "[1/2]",
          "[0b1]", "[1e400]", "[-1e400]", "[1f]",       "[1L]",    "[-1.e]",  "[٣]",     "[１]"})
        row(text);
    // strings
    for (const char *text : {R"(["])",
                             R"(["\"])",
                             R"(["\\\"])",
                             R"(["\a"])",
                             R"(["\e"])",
                             R"(["\v"])",
                             R"(["\x41"])",
                             R"(["\0"])",
                             R"(["\'"])",
                             R"(["\U0041"])",
                             R"(["\u"])",
                             R"(["\u0"])",
                             R"(["\u00"])",
                             R"(["\u004"])",
                             R"(["\u004g"])",
                             R"(["\u 041"])",
                             R"(["\u-041"])",
                             R"(["\uD834"])",
                             R"(["\uD834x"])",
                             R"(["\uDFF3"])",
                             R"(["\uDC00\uD800"])",
                             R"(["\uD800\uD800"])",
                             R"(["\uD800\n"])",
                             R"(["\uD800\u0041"])",
                             R"(["\uD800\u"])",
                             R"(["a"b"])",
                             R"([\"a\"])",
                             R"(["a]")",
                             R"(["\)",
                             R"(["\u)",
                             R"(["a\)",
                             "[\"a\nb\"]",
                             "[\"a\tb\"]",
                             "[\"a\rb\"]",
                             "[\"\x1F\"]"})
        row(text);
    // bytes
    row(QByteArray("[\0]", 3));
    row(QByteArray("\0[]", 3));
    row(QByteArray("[]\0", 3));
    row(QByteArray("[] \0", 4));
    row(QByteArray("[1\0]", 4));
    row(QByteArray("[\"a\0b\"]", 7));
    row(QByteArray("{\"a\0\":1}", 8));
    row(QByteArray("[\0\0\0]\0\0\0", 8));     // UTF-32
    row(QByteArray("[\0\"\0a\0\"\0]\0", 10)); // UTF-16, little end first
    row(QByteArray("\0[\0]", 4));             // UTF-16, big end first
    row(QByteArray("\xFF\xFE[\0]\0", 6));     // UTF-16 with a byte order mark
    row("\xEF\xBB[]");                        // half a byte order mark
    row("\xEF\xBB\xBF\xEF\xBB\xBF[]");        // two of them
    row("[]\xEF\xBB\xBF");                    // at the end
    row("[\xC2\xA0]");                        // a no-break space is no blank
    row("[\xE2\x80\x8B]");
    row("[\f]");
    row("[\v1]");
    row("[\x85]");
    row("[\xFF]");
    row("é[]");
    row("");
    row(" ");
    row("\xEF\xBB\xBF");
    for (const char *fragment :
         {"1", "-1.5", "\"a\"", "true", "false", "null", "\"\"", " 1 ", "a", "\"", "nul"})
        row(fragment);
}

void ConformanceTest::rejects()
{
    QFETCH(QByteArray, text);
    QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(text)));
}

void ConformanceTest::refusesEveryPrefix()
{
    const std::string text =
        R"({"a": [1.5e3, -2, "x\u00e9\ud834\udd1e\n", true, null, {"b": {}}], "c": false})";
    QCOMPARE(JSON::fromBytes(text).count(), std::size_t(2));
    for (std::size_t length = 0; length < text.size(); ++length)
        QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(std::string_view(text).substr(0, length)));
}

void ConformanceTest::refusesEveryForeignByteOutsideStrings()
{
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool isBlank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        const bool isDigit = c >= '0' && c <= '9';
        const std::string text = std::string("[") + c + "]";
        if (isBlank || isDigit) {
            QCOMPARE(JSON::fromBytes(text).count(), std::size_t(isDigit));
        } else {
            QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(text));
        }
    }
}

void ConformanceTest::refusesEveryControlCharacterInStrings()
{
    for (int byte = 0; byte < 0x80; ++byte) {
        const char c = static_cast<char>(byte);
        const std::string text = std::string("[\"a") + c + "b\"]";
        if (byte < 0x20 || c == '"' || c == '\\') {
            // a backslash makes \b of it
            if (c == '\\')
                QCOMPARE(shown(JSON::fromBytes(text)[0].stringValue()), u"a\b"_s);
            else
                QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(text));
        } else {
            QCOMPARE(shown(JSON::fromBytes(text)[0].stringValue()),
                     QString(u'a') + QChar(byte) + QChar(u'b'));
        }
    }
}

void ConformanceTest::takesOnlyTheNamedEscapes()
{
    const std::string named = "\"\\/bfnrt";
    const std::string meant = "\"\\/\b\f\n\r\t";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const std::string text = std::string("[\"\\") + c + "\"]";
        const std::size_t place = named.find(c);
        if (place != std::string::npos)
            QCOMPARE(JSON::fromBytes(text)[0].stringValue(), std::string(1, meant[place]));
        else
            QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(text));
    }
}

void ConformanceTest::decidesOnUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isUtf8");
    const auto row = [](const char *name, const QByteArray &bytes, bool isUtf8) {
        QTest::newRow(name) << bytes << isUtf8;
    };
    row("first of two bytes", "\xC2\x80", true);
    row("last of two bytes", "\xDF\xBF", true);
    row("first of three bytes", "\xE0\xA0\x80", true);
    row("before the surrogates", "\xED\x9F\xBF", true);
    row("behind the surrogates", "\xEE\x80\x80", true);
    row("last of three bytes", "\xEF\xBF\xBF", true);
    row("first of four bytes", "\xF0\x90\x80\x80", true);
    row("last character", "\xF4\x8F\xBF\xBF", true);
    row("beyond the last character", "\xF4\x90\x80\x80", false);
    row("high surrogate", "\xED\xA0\x80", false);
    row("low surrogate", "\xED\xBF\xBF", false);
    row("surrogate pair", "\xED\xA0\xB4\xED\xB4\x9E", false);
    row("overlong of two bytes", "\xC0\x80", false);
    row("overlong slash", "\xC1\xAF", false);
    row("overlong of three bytes", "\xE0\x9F\xBF", false);
    row("overlong of four bytes", "\xF0\x8F\xBF\xBF", false);
    row("five bytes", "\xF8\x88\x80\x80\x80", false);
    row("six bytes", "\xFC\x84\x80\x80\x80\x80", false);
    row("continuation alone", "\x80", false);
    row("first byte alone", "\xC3", false);
    row("two of three bytes", "\xE2\x82", false);
    row("three of four bytes", "\xF0\x9F\x98", false);
    row("first byte before a letter", "\xC3(", false);
    row("Latin-1", "caf\xE9", false);
    row("FE", "\xFE", false);
    row("FF", "\xFF", false);
}

void ConformanceTest::decidesOnUtf8()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isUtf8);
    const QByteArray asValue = "[\"" + bytes + "\"]";
    const QByteArray asKey = "{\"" + bytes + "\":1}";
    const JSON written(bytes.toStdString());
    if (isUtf8) {
        QCOMPARE(QByteArray::fromStdString(JSON::fromBytes(view(asValue))[0].stringValue()), bytes);
        QCOMPARE(QByteArray::fromStdString(JSON::fromBytes(view(asKey)).rawDictionary().begin()->first),
                 bytes);
        QCOMPARE(QByteArray::fromStdString(written.rawData()), "\"" + bytes + "\"");
    } else {
        QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(asValue)));
        QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(asKey)));
        QVERIFY_THROWS_EXCEPTION(JSONException, written.rawData());
    }
}

TESSALY_TEST_MAIN(ConformanceTest)
#include "conformance_test.moc"
