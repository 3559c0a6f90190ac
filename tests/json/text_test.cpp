#include "json_test_case.h"
#include "json/json.h"
#include "json/text_writer.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::JSON)
Q_DECLARE_METATYPE(tessaly::Number)
Q_DECLARE_METATYPE(tessaly::JSONError)

namespace {

writingOptionsKeys compact()
{
    writingOptionsKeys options;
    options.jsonSerialization.prettyPrinted = false;
    return options;
}

Number decimal(std::string_view text)
{
    return Decimal::fromString(text);
}

} // namespace

class TextTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void writesNumbers_data();
    void writesNumbers();
    void writesStrings_data();
    void writesStrings();
    void writesContainers_data();
    void writesContainers();
    void fragmentsCanBeForbidden();
    void absentValuesAreCastOrRefused();
    void refusesWhatJSONCannotSay_data();
    void refusesWhatJSONCannotSay();
    void boundsTheDepth_data();
    void boundsTheDepth();
    void writesInTheEncoding_data();
    void writesInTheEncoding();
    void describesEveryValue_data();
    void describesEveryValue();
    void writtenTextReadsBack_data();
    void writtenTextReadsBack();
    void theTextOfALongRealSettles_data();
    void theTextOfALongRealSettles();
    void writerKeepsTheOrderOfEvents();
};

void TextTest::writesNumbers_data()
{
    QTest::addColumn<Number>("number");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const Number &number, const QString &text) {
        QTest::newRow(name) << number << text;
    };
    row("0", 0, u"0"_s);
    row("smallest", std::numeric_limits<std::int64_t>::min(), u"-9223372036854775808"_s);
    row("largest unsigned", std::numeric_limits<std::uint64_t>::max(), u"18446744073709551615"_s);
    row("29.97", 29.97, u"29.97"_s);
    row("all digits of 0.1 + 0.2", 0.1 + 0.2, u"0.30000000000000004"_s);
    row("whole real keeps a point", 2.0, u"2.0"_s);
    row("0.0", 0.0, u"0.0"_s);
    row("-0.0", -0.0, u"-0.0"_s);
    row("100000.0", 100000.0, u"100000.0"_s);
    row("0.00001", 0.00001, u"0.00001"_s);
    row("0.000001", 0.000001, u"1e-06"_s);
    row("largest plain real", 9999999999999998.0, u"9999999999999998.0"_s);
    row("1e16", 1e16, u"1e+16"_s);
    row("smallest real", 5e-324, u"5e-324"_s);
    row("largest real", std::numeric_limits<double>::max(), u"1.7976931348623157e+308"_s);
    row("decimal", decimal("1.50"), u"1.5"_s);
    row("decimal with many digits", decimal("1.23456789123456789"), u"1.23456789123456789"_s);
    row("large decimal", decimal("1e30"), u"1000000000000000000000000000000"_s);
    row("decimal that no real shows", decimal("9.007199254740992"), u"9.0071992547409920"_s);
    row("true", true, u"true"_s);
    row("false", false, u"false"_s);
}

void TextTest::writesNumbers()
{
    QFETCH(Number, number);
    QFETCH(QString, text);
    QCOMPARE(shown(JSON(number).rawString(compact())), text);
    const JSON readBack = JSON::fromBytes(text.toStdString(), {.fragmentsAllowed = true});
    QVERIFY(readBack == JSON(number));
    TextWriter writer;
    writer.number(number);
    QCOMPARE(shown(writer.text()), text);
}

void TextTest::writesStrings_data()
{
    QTest::addColumn<QByteArray>("string");
    QTest::addColumn<bool>("escapesSlashes");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << ""_ba << false << R"("")"_ba;
    QTest::newRow("quote and backslash") << R"(a"b\c)"_ba << false << R"("a\"b\\c")"_ba;
    QTest::newRow("named controls") << "\b\f\n\r\t"_ba << false << R"("\b\f\n\r\t")"_ba;
    QTest::newRow("other controls") << QByteArray("\0\x01\x1f", 3) << false << R"("\u0000\u0001\u001f")"_ba;
    QTest::newRow("DEL") << "\x7F"_ba << false << "\"\x7F\""_ba;
    QTest::newRow("slash") << "a/b"_ba << false << R"("a/b")"_ba;
    QTest::newRow("escaped slash") << "a/b"_ba << true << R"("a\/b")"_ba;
    QTest::newRow("beyond ASCII") << "é漢😀"_ba << false << "\"é漢😀\""_ba;
}

void TextTest::writesStrings()
{
    QFETCH(QByteArray, string);
    QFETCH(bool, escapesSlashes);
    QFETCH(QByteArray, text);
    writingOptionsKeys options = compact();
    options.jsonSerialization.escapesSlashes = escapesSlashes;
    const std::string written = JSON(string.toStdString()).rawString(options);
    QCOMPARE(QByteArray::fromStdString(written), text);
    QVERIFY(JSON::fromBytes(written, {.fragmentsAllowed = true}) == JSON(string.toStdString()));
    QCOMPARE(
        QByteArray::fromStdString(JSON::dictionaryLiteral({{string.toStdString(), 1}}).rawString(options)),
        "{" + text + ":1}");
}

void TextTest::writesContainers_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("compactText");
    QTest::addColumn<QString>("prettyText");
    QTest::newRow("empty array") << "[ ]"_ba << u"[]"_s << u"[]"_s;
    QTest::newRow("empty dictionary") << "{ }"_ba << u"{}"_s << u"{}"_s;
    QTest::newRow("array") << "[1,null,true]"_ba << u"[1,null,true]"_s << u"[\n  1,\n  null,\n  true\n]"_s;
    QTest::newRow("keys in order") << R"({"b":1,"a":2})"_ba << uR"({"a":2,"b":1})"_s
                                   << u"{\n  \"a\": 2,\n  \"b\": 1\n}"_s;
    QTest::newRow("nested")
        << R"({"a":[{}, [], {"b":[1]}]})"_ba << uR"({"a":[{},[],{"b":[1]}]})"_s
        << u"{\n  \"a\": [\n    {},\n    [],\n    {\n      \"b\": [\n        1\n      ]\n    }\n  ]\n}"_s;
}

void TextTest::writesContainers()
{
    QFETCH(QByteArray, value);
    const JSON json = JSON::fromBytes(view(value));
    QTEST(shown(json.rawString(compact())), "compactText");
    QTEST(shown(json.rawString(writingOptionsKeys{})), "prettyText");
}

void TextTest::fragmentsCanBeForbidden()
{
    writingOptionsKeys options = compact();
    QCOMPARE(shown(JSON("a").rawString(options)), u"\"a\""_s);
    QCOMPARE(shown(JSON::null().rawString(options)), u"null"_s);
    options.jsonSerialization.fragmentsAllowed = false;
    for (const JSON &fragment : {JSON("a"), JSON(1), JSON(true), JSON::null()}) {
        try {
            fragment.rawString(options);
            QFAIL("was written");
        } catch (const JSONException &exception) {
            QCOMPARE(exception.error(), JSONError::invalidJSON);
        }
    }
    QCOMPARE(shown(JSON::arrayLiteral({}).rawString(options)), u"[]"_s);
    QCOMPARE(shown(JSON::dictionaryLiteral({}).rawString(options)), u"{}"_s);
}

void TextTest::absentValuesAreCastOrRefused()
{
    const JSON json = JSON::fromObject(Array{1, Object(), Object(Dictionary{{"a", Object()}})});
    writingOptionsKeys options = compact();
    QVERIFY(!options.castNilToNSNull);
    QVERIFY_THROWS_EXCEPTION(JSONException, json.rawString(options));
    options.castNilToNSNull = true;
    QCOMPARE(shown(json.rawString(options)), u"[1,null,{\"a\":null}]"_s);
}

void TextTest::refusesWhatJSONCannotSay_data()
{
    QTest::addColumn<JSON>("json");
    QTest::newRow("nan") << JSON(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("inf") << JSON(std::numeric_limits<double>::infinity());
    QTest::newRow("-inf") << JSON(-std::numeric_limits<double>::infinity());
    QTest::newRow("decimal not a number") << JSON(Number(Decimal::notANumber()));
    QTest::newRow("unknown") << JSON::fromObject(Object::other(1));
    QTest::newRow("bytes") << JSON::fromObject(Object::bytes("[]"));
    QTest::newRow("string that is not UTF-8") << JSON("\xFF");
    QTest::newRow("cut UTF-8") << JSON("\xE2\x82");
    QTest::newRow("overlong UTF-8") << JSON("\xC0\xAF");
    QTest::newRow("overlong UTF-8 of three bytes") << JSON("\xE0\x80\xAF");
    QTest::newRow("UTF-8 surrogate") << JSON("\xED\xA0\x80");
    QTest::newRow("UTF-8 beyond the last character") << JSON("\xF4\x90\x80\x80");
    QTest::newRow("key that is not UTF-8") << JSON::dictionaryLiteral({{"\x80", 1}});
}

void TextTest::refusesWhatJSONCannotSay()
{
    QFETCH(JSON, json);
    for (const JSON &value : {json, JSON::fromObject(Array{json.object(), Object::bytes("")})}) {
        try {
            value.rawData();
            QFAIL("was written");
        } catch (const JSONException &exception) {
            QCOMPARE(exception.error(), JSONError::invalidJSON);
        }
    }
}

void TextTest::boundsTheDepth_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("levels");
    QTest::newRow("fragment") << "1"_ba << 0;
    QTest::newRow("one array") << "[1]"_ba << 1;
    QTest::newRow("beside each other") << "[[],[],{}]"_ba << 2;
    QTest::newRow("mixed") << R"({"a":[{"b":[]}]})"_ba << 4;
}

void TextTest::boundsTheDepth()
{
    QFETCH(QByteArray, value);
    QFETCH(int, levels);
    const JSON json = JSON::fromBytes(view(value), {.fragmentsAllowed = true});
    writingOptionsKeys options;
    options.maxObjextDepth = std::size_t(levels);
    QVERIFY(JSON::fromBytes(json.rawString(options), {.fragmentsAllowed = true}) == json);
    if (levels == 0) return;
    --options.maxObjextDepth;
    try {
        json.rawString(options);
        QFAIL("was written");
    } catch (const JSONException &exception) {
        QCOMPARE(exception.error(), JSONError::elementTooDeep);
    }
}

void TextTest::writesInTheEncoding_data()
{
    QTest::addColumn<int>("encoding");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("UTF-8") << int(TextEncoding::utf8) << "\"a\x7Fé漢😀\""_ba;
    QTest::newRow("ASCII") << int(TextEncoding::ascii) << R"("a\u007f\u00e9\u6f22\ud83d\ude00")"_ba;
    const QByteArray little("\"\0a\0\x7F\0\xE9\0\x22\x6F\x3D\xD8\x00\xDE\"\0", 16);
    QByteArray big;
    for (qsizetype i = 0; i < little.size(); i += 2)
        big.append(little[i + 1]).append(little[i]);
    QTest::newRow("UTF-16, little end first") << int(TextEncoding::utf16LittleEndian) << little;
    QTest::newRow("UTF-16, big end first") << int(TextEncoding::utf16BigEndian) << big;
}

void TextTest::writesInTheEncoding()
{
    QFETCH(int, encoding);
    QFETCH(QByteArray, data);
    writingOptionsKeys options = compact();
    options.encoding = TextEncoding(encoding);
    const JSON json("a\x7Fé漢😀");
    QCOMPARE(QByteArray::fromStdString(json.rawData(options)), data);
    QVERIFY(JSON::fromBytes(json.rawString(options), {.fragmentsAllowed = true}) == json);
}

void TextTest::describesEveryValue_data()
{
    QTest::addColumn<JSON>("json");
    QTest::addColumn<QString>("text");
    QTest::newRow("number") << JSON(29.97) << u"29.97"_s;
    QTest::newRow("string") << JSON("a\nb") << uR"("a\nb")"_s;
    QTest::newRow("true") << JSON(true) << u"true"_s;
    QTest::newRow("null") << JSON::null() << u"null"_s;
    QTest::newRow("failed lookup") << JSON::null()["x"] << u"null"_s;
    QTest::newRow("array") << JSON::arrayLiteral({1, "a"}) << uR"([1,"a"])"_s;
    QTest::newRow("dictionary") << JSON::dictionaryLiteral({{"a", 1}}) << uR"({"a":1})"_s;
    QTest::newRow("absent inside") << JSON::fromObject(Array{Object()}) << u"[null]"_s;
    QTest::newRow("unknown") << JSON::fromObject(Object::other(1)) << u"It is an unsupported type."_s;
    QTest::newRow("nan inside") << JSON::arrayLiteral({std::numeric_limits<double>::quiet_NaN()})
                                << u"JSON is invalid."_s;
}

void TextTest::describesEveryValue()
{
    QFETCH(JSON, json);
    QTEST(shown(json.description()), "text");
    QTEST(shown(json.debugDescription()), "text");
}

void TextTest::writtenTextReadsBack_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text :
         {"[1920]", "[-0.0]", "[0.1,1e300,5e-324]", "[18446744073709551616]", "[1.23456789123456789]",
          "[9.00719925474099200000000]", "[0.00000100000000000000000]", "[1e-400]",
          R"({"a":{"b":[null,true]}})", R"(["\u0000\u001f\ud834\udd1e"])",
          "[123456789012345678901234567890123456789012345678901234567890]"})
        QTest::newRow(text) << QByteArray(text);
}

void TextTest::writtenTextReadsBack()
{
    QFETCH(QByteArray, text);
    const JSON read = JSON::fromBytes(view(text));
    const std::string written = read.rawString(compact());
    const JSON again = JSON::fromBytes(written);
    QVERIFY(again == read);
    QCOMPARE(shown(again.rawString(compact())), shown(written));
}

void TextTest::theTextOfALongRealSettles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("settled");
    const auto row = [](const char *text, const QString &written, const QString &settled) {
        QTest::newRow(text) << QByteArray(text) << written << settled;
    };
    row("[12345678901234567e-30]", u"[1.2345678901234567e-14]"_s, u"[0.000000000000012345678901234567]"_s);
    row("[-1234567856e5]", u"[-123456785600000.0]"_s, u"[-123456785600000]"_s);
    row("[-1234567890123456e5]", u"[-1.234567890123456e+20]"_s, u"[-123456789012345600000]"_s);
    row("[1.2345678901234567e-120]", u"[1.2345678901234567e-120]"_s, u"[1.2345678901234567e-120]"_s);
    row("[12345678901234567.89012345e-125]", u"[1.2345678901234567e-109]"_s, // too many digits for a decimal
        u"[0."_s + QString(108, u'0') + u"12345678901234567]"_s);
}

void TextTest::theTextOfALongRealSettles()
{
    QFETCH(QByteArray, text);
    const JSON read = JSON::fromBytes(view(text));
    const std::string written = read.rawString(compact());
    QTEST(shown(written), "written");
    const JSON again = JSON::fromBytes(written);
    QVERIFY(again == read);
    const std::string settled = again.rawString(compact());
    QTEST(shown(settled), "settled");
    QCOMPARE(shown(JSON::fromBytes(settled).rawString(compact())), shown(settled));
}

void TextTest::writerKeepsTheOrderOfEvents()
{
    TextWriter writer;
    writer.beginDictionary();
    writer.key("b");
    writer.number(1);
    writer.key("a");
    writer.beginArray();
    writer.null();
    writer.boolean(true);
    writer.string("x");
    writer.endArray();
    writer.endDictionary();
    QCOMPARE(shown(writer.text()), uR"({"b":1,"a":[null,true,"x"]})"_s);
}

TESSALY_TEST_MAIN(TextTest)
#include "text_test.moc"
