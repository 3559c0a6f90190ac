#include "json_test_case.h"
#include "json/json.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::Number::Origin)

class ReaderTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsNumbersByTheirLiteral_data();
    void readsNumbersByTheirLiteral();
    void refusesNumbersWithoutValue_data();
    void refusesNumbersWithoutValue();
    void readsStrings_data();
    void readsStrings();
    void reportsErrors_data();
    void reportsErrors();
    void placesErrors_data();
    void placesErrors();
    void readsFragmentsOnlyWhenAllowed_data();
    void readsFragmentsOnlyWhenAllowed();
    void lastOfEqualKeysWins();
    void keepsKindsApart();
    void reads512Levels();
    void refuses513Levels_data();
    void refuses513Levels();
};

void ReaderTest::readsNumbersByTheirLiteral_data()
{
    QTest::addColumn<Number::Origin>("origin");
    QTest::addColumn<QByteArray>("objCType");
    QTest::addColumn<QString>("stringValue");
    const auto row = [](const QByteArray &literal, Number::Origin origin, const char *type,
                        const QString &text) {
        QTest::newRow(literal.constData()) << origin << QByteArray(type) << text;
    };
    using Origin = Number::Origin;
    row("1920", Origin::int64, "q", u"1920"_s);
    row("-5", Origin::int64, "q", u"-5"_s);
    row("0", Origin::int64, "q", u"0"_s);
    row("-0", Origin::int64, "q", u"0"_s);
    row("9223372036854775807", Origin::int64, "q", u"9223372036854775807"_s);
    row("-9223372036854775808", Origin::int64, "q", u"-9223372036854775808"_s);
    row("9223372036854775808", Origin::uint64, "Q", u"9223372036854775808"_s);
    row("18446744073709551615", Origin::uint64, "Q", u"18446744073709551615"_s);
    row("18446744073709551616", Origin::decimal, "d", u"18446744073709551616"_s);
    row("-9223372036854775809", Origin::decimal, "d", u"-9223372036854775809"_s);
    row("29.97", Origin::real, "d", u"29.97"_s);
    row("3.133", Origin::real, "d", u"3.133"_s);
    row("1.0", Origin::real, "d", u"1"_s);
    row("-0.0", Origin::real, "d", u"-0"_s);
    row("1e3", Origin::real, "d", u"1000"_s);
    row("1E+3", Origin::real, "d", u"1000"_s);
    row("1e16", Origin::real, "d", u"1e+16"_s);
    row("1.2345678901234567", Origin::decimal, "d", u"1.2345678901234567"_s); // 18 characters
    row("1.234567890123456", Origin::real, "d", u"1.234567890123456"_s);      // 17
    row("-1.23456789012345", Origin::real, "d", u"-1.23456789012345"_s);      // 17, the sign counts
    row("-1.234567890123456", Origin::decimal, "d", u"-1.234567890123456"_s); // 18
    row("1.23456789123456789", Origin::decimal, "d", u"1.23456789123456789"_s);
    row("23.976023976023978", Origin::decimal, "d", u"23.976023976023978"_s);
    row("1.23456789123456789e2", Origin::decimal, "d", u"123.456789123456789"_s);
    row("1234567890123456789e-3", Origin::decimal, "d", u"1234567890123456.789"_s);
    row("1.23456789123456789e128", Origin::real, "d", u"1.234567891234568e+128"_s);
    row("1.23456789123456789e-129", Origin::real, "d", u"1.234567891234568e-129"_s);
    row("1.23456789123456789e127", Origin::decimal, "d", u"123456789123456789"_s + QString(110, u'0'));
    row("1.23456789123456789e-120", Origin::real, "d", u"1.234567891234568e-120"_s); // beyond a decimal
    row("1e-400", Origin::real, "d", u"0"_s);
    row("1" + QByteArray(200, '0'), Origin::real, "d", u"1e+200"_s); // an integer beyond a decimal
}

void ReaderTest::readsNumbersByTheirLiteral()
{
    QFETCH(QString, stringValue);
    const std::string text = "[" + std::string(QTest::currentDataTag()) + "]";
    const std::optional<Number> number = JSON::fromBytes(text)[0].number();
    QVERIFY(number);
    QTEST(number->origin(), "origin");
    QTEST(QByteArray(number->objCType()), "objCType");
    QCOMPARE(shown(number->stringValue()), stringValue);
}

void ReaderTest::refusesNumbersWithoutValue_data()
{
    QTest::addColumn<QByteArray>("literal");
    for (const char *literal : {"1e400", "-1e400", "1.1e547", "1e999999999999"})
        QTest::newRow(literal) << QByteArray(literal);
    QTest::newRow("a digit and 400 zeros") << "1" + QByteArray(400, '0');
}

void ReaderTest::refusesNumbersWithoutValue()
{
    QFETCH(QByteArray, literal);
    QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view("[" + literal + "]")));
}

void ReaderTest::readsStrings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("string");
    QTest::newRow("empty") << R"([""])"_ba
                           << ""_ba;
    QTest::newRow("escapes") << R"(["\" \\ \/ \b \f \n \r \t"])"_ba
                             << "\" \\ / \b \f \n \r \t"_ba;
    QTest::newRow("unicode escape") << R"(["\u00e9\u00E9"])"_ba
                                    << "éé"_ba;
    QTest::newRow("surrogate pair") << R"(["\uD834\uDD1E"])"_ba
                                    << "\xF0\x9D\x84\x9E"_ba;
    QTest::newRow("NUL") << R"(["a\u0000b"])"_ba << QByteArray("a\0b", 3);
    QTest::newRow("DEL and line separator") << "[\"\x7F\xE2\x80\xA8\"]"_ba
                                            << "\x7F\xE2\x80\xA8"_ba;
    QTest::newRow("UTF-8 as it is") << "[\"é漢😀\"]"_ba
                                    << "é漢😀"_ba;
    QTest::newRow("noncharacter") << R"(["\uFFFF"])"_ba
                                  << "\xEF\xBF\xBF"_ba;
}

void ReaderTest::readsStrings()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, string);
    const std::optional<std::string> read = JSON::fromBytes(view(text))[0].string();
    QVERIFY(read);
    QCOMPARE(QByteArray::fromStdString(*read), string);
}

void ReaderTest::reportsErrors_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("position"); // -1: none
    const QString notAContainer =
        u"JSON text did not start with array or object and option to allow fragments not set."_s;
    const auto row = [](const char *name, const QByteArray &text, const QString &message, int position) {
        QTest::newRow(name) << text << message << position;
    };
    row("empty", "", u"Unable to parse empty data."_s, -1);
    row("only blanks", " \n\t\r", u"Unable to parse empty data."_s, -1);
    row("only a byte order mark", "\xEF\xBB\xBF", u"Unable to parse empty data."_s, -1);
    row("number", "3", notAContainer + u" around line 1, column 0."_s, 0);
    row("string", "\"a\"", notAContainer + u" around line 1, column 0."_s, 0);
    row("markup", "<html></html>", notAContainer + u" around line 1, column 0."_s, 0);
    row("number on the second line", "\n 3", notAContainer + u" around line 2, column 1."_s, 2);
    row("missing value", R"({"error":})", u"Invalid value around line 1, column 9."_s, 9);
    row("leading zero", "[01]", u"Invalid value around line 1, column 2."_s, 2);
    row("on the third line", "{\n\"a\": 1,\n \"b\": ?}", u"Invalid value around line 3, column 6."_s, 16);
    row("trailing text", R"({"a":1}x)", u"Garbage at end around line 1, column 7."_s, 7);
    row("trailing bracket", "[]]", u"Garbage at end around line 1, column 2."_s, 2);
    row("second object", "{}{}", u"Garbage at end around line 1, column 2."_s, 2);
    row("NUL behind the value", QByteArray("[]\0", 3), u"Garbage at end around line 1, column 2."_s, 2);
    row("NUL inside the value", QByteArray("[\0]", 3), u"Invalid value around line 1, column 1."_s, 1);
    row("truncated", "{", u"Unexpected end of file around line 1, column 1."_s, 1);
    row("truncated string", R"(["abc)", u"Unexpected end of file around line 1, column 5."_s, 5);
    row("513 levels", QByteArray(513, '['),
        u"Too many nested arrays or dictionaries around line 1, column 513."_s, 513);
}

void ReaderTest::reportsErrors()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    QFETCH(int, position);
    try {
        JSON::fromBytes(view(text));
        QFAIL("was read");
    } catch (const ParseError &error) {
        QCOMPARE(error.code(), 3840);
        QCOMPARE(shown(error.text()), message);
        QCOMPARE(error.position() ? int(*error.position()) : -1, position);
        const QString index =
            position < 0 ? QString() : u", NSJSONSerializationErrorIndex=%1"_s.arg(QString::number(position));
        QCOMPARE(shown(error.description()),
                 u"Error Domain=NSCocoaErrorDomain Code=3840 \"%1\" UserInfo={NSDebugDescription=%1%2}"_s.arg(
                     message, index));
        QCOMPARE(QByteArray(error.what()), QByteArray::fromStdString(error.description()));
    }
}

void ReaderTest::placesErrors_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("position");
    const auto row = [](const QByteArray &text, int position) {
        QTest::newRow(text.toPercentEncoding(" []{}\":,\\+").constData()) << text << position;
    };
    // Structure: the first byte of what is out of place.
    row(R"({"a":1}12345)", 7);
    row(R"({"a":1} trailing)", 8);
    row("[] tru", 3);
    row("{}{}", 2);
    row(R"([1 "x"])", 3);
    row(R"([1 "\e"])", 3);
    row("[1 nul]", 3);
    row(R"({"k" 123})", 5);
    row(R"({"k":1 2})", 7);
    row(R"({"k":1 "l":2})", 7);
    row("{1:2}", 1);
    row("{true:2}", 1);
    row("{]", 1);
    row("[}", 1);
    row("[1}", 2);
    row(R"({"a":1])", 6);
    row(R"({"a"})", 4);
    row("[1,]", 3);
    row("[,1]", 1);
    row("[1,,2]", 3);
    row(R"({"a":1,})", 7);
    row("[//]", 1);
    row("['a']", 1);
    // Words and numbers: the first byte that does not fit.
    row("[nulx]", 4);
    row("[nul]", 4);
    row("[True]", 1);
    row("[trues]", 5);
    row("[01]", 2);
    row("[-01]", 3);
    row("[-]", 2);
    row("[+1]", 1);
    row("[.5]", 1);
    row("[1.]", 3);
    row("[1.e2]", 3);
    row("[1e]", 3);
    row("[1e+]", 4);
    row("[1e5.0]", 4);
    row("[0x10]", 2);
    row("[NaN]", 1);
    row("[-Infinity]", 2);
    row("[12, 1e400 ]", 5);
    row("[12,1" + QByteArray(400, '0') + "]", 4);
    // Strings.
    row(R"(["\e"])", 3);
    row(R"(["\u00g0"])", 6);
    row(R"(["\u12"])", 6);
    row(R"(["\udc00"])", 5);
    row(R"(["\ud800"])", 8);
    row(R"(["\ud800\n"])", 9);
    row(R"(["\ud800\u0041"])", 10);
    row(R"(["\ud800\ud800"])", 11);
    row("[\"a\x01\"]", 3);
    row("[\"a\n\"]", 3);
    row("[\"a\x1F\"]", 3);
    row("[\"a\xFF\"]", 3);
    row("[\"a\x80\"]", 3);
    row("[\"\xC0\x80\"]", 2);
    row("[\"\xC3(\"]", 3);
    row("[\"\xE0\x9F\x80\"]", 3);
    row("[\"\xED\xA0\x80\"]", 3);
    row("[\"\xE2\x82(\"]", 4);
    row("[\"\xF0\x8F\x80\x80\"]", 3);
    row("[\"\xF1\x80\x80(\"]", 5);
    row("[\"\xF4\x90\x80\x80\"]", 3);
    row("[\"\xF5\x80\x80\x80\"]", 2);
    // What lacks its end: behind the last byte.
    for (const char *text :
         {"[", "{", "[1", "[1.", "[1e", "[-", "[tru", "[1,", R"({"a)", R"({"a")", R"({"a":)", R"({"a":1,)",
          R"(["\)", R"(["\u00)", R"(["\ud800)", "[\"\xE2\x82", "[[] \n"})
        row(text, int(qstrlen(text)));
    // Bytes are counted as they are given.
    row("\xEF\xBB\xBF[?]", 4);
    row("[\"\xE2\x82\xAC\" ?]", 7);
    row("[\xEF\xBB\xBF]", 1);
    row(QByteArray("[1,\0]", 5), 3);
    row(QByteArray("[1]\0", 4), 3);
    row(QByteArray("[\0001\0]\0", 6), 1); // UTF-16
    QTest::newRow("too deep behind brackets in strings")
        << R"(["[[\"[[",{"[":)" + QByteArray(511, '[') << 526;
    QTest::newRow("too deep behind closed brackets") << "[[[]],{}," + QByteArray(512, '[') << 521;
}

void ReaderTest::placesErrors()
{
    QFETCH(QByteArray, text);
    QFETCH(int, position);
    try {
        JSON::fromBytes(view(text));
        QFAIL("was read");
    } catch (const ParseError &error) {
        QVERIFY(error.position());
        QCOMPARE(int(*error.position()), position);
    }
}

void ReaderTest::readsFragmentsOnlyWhenAllowed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("type"); // -1: an error all the same
    QTest::newRow("number") << " 3 "_ba << int(Type::number);
    QTest::newRow("string") << "\"a\""_ba << int(Type::string);
    QTest::newRow("true") << "true"_ba << int(Type::bool_);
    QTest::newRow("null") << "null"_ba << int(Type::null);
    QTest::newRow("word") << "nope"_ba << -1;
    QTest::newRow("two") << "3 4"_ba << -1;
    QTest::newRow("nothing") << ""_ba << -1;
}

void ReaderTest::readsFragmentsOnlyWhenAllowed()
{
    QFETCH(QByteArray, text);
    QFETCH(int, type);
    QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(text)));
    if (type < 0) {
        QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(text), {.fragmentsAllowed = true}));
        return;
    }
    QCOMPARE(int(JSON::fromBytes(view(text), {.fragmentsAllowed = true}).type()), type);
}

void ReaderTest::lastOfEqualKeysWins()
{
    const JSON value = JSON::fromBytes(R"({"a":1,"b":0,"a":[2],"a":3})");
    QCOMPARE(value.count(), std::size_t(2));
    QCOMPARE(value["a"].intValue(), 3);
}

void ReaderTest::keepsKindsApart()
{
    const JSON value = JSON::fromBytes(R"([1, 1.5, "1", true, false, null, [], {}])");
    const Type types[] = {Type::number, Type::number, Type::string, Type::bool_,
                          Type::bool_,  Type::null,   Type::array,  Type::dictionary};
    QCOMPARE(value.count(), std::size(types));
    for (std::size_t i = 0; i < std::size(types); ++i)
        QCOMPARE(int(value[i].type()), int(types[i]));
    QVERIFY(!value[5].error());
}

void ReaderTest::reads512Levels()
{
    const JSON arrays = JSON::fromBytes(std::string(512, '[') + std::string(512, ']'));
    JSON innermost = arrays;
    for (int i = 0; i < 511; ++i)
        innermost = innermost[0];
    QCOMPARE(innermost.type(), Type::array);
    QCOMPARE(innermost.count(), std::size_t(0));

    std::string objects = "{}";
    for (int i = 0; i < 511; ++i)
        objects = "{\"a\":" + objects + "}";
    QCOMPARE(JSON::fromBytes(objects).type(), Type::dictionary);
}

void ReaderTest::refuses513Levels_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("arrays") << QByteArray(513, '[') + QByteArray(513, ']');
    QTest::newRow("objects") << QByteArray("{\"a\":").repeated(513) + "1" + QByteArray(513, '}');
}

void ReaderTest::refuses513Levels()
{
    QFETCH(QByteArray, text);
    try {
        JSON::fromBytes(view(text));
        QFAIL("was read");
    } catch (const ParseError &error) {
        QVERIFY(shown(error.text()).startsWith(u"Too many nested arrays or dictionaries"_s));
    }
}

TESSALY_TEST_MAIN(ReaderTest)
#include "reader_test.moc"
