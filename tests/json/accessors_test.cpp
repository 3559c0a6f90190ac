#include "json_test_case.h"
#include "json/json.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::JSON)
Q_DECLARE_METATYPE(tessaly::Type)
Q_DECLARE_METATYPE(tessaly::Object)
Q_DECLARE_METATYPE(tessaly::Number::Origin)

namespace {

// Optional values as texts, so that a row can say "-" for absent.
template<class T>
QString orDash(const std::optional<T> &value)
{
    return value ? QString::number(*value) : u"-"_s;
}

} // namespace

class AccessorsTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryKind_data();
    void readsEveryKind();
    void numberValueKeepsItsOrigin_data();
    void numberValueKeepsItsOrigin();
    void readsStringsAsNumbers_data();
    void readsStringsAsNumbers();
    void readsStringsAsTruthValues_data();
    void readsStringsAsTruthValues();
    void givesElementsAndMembers();
    void rawFieldsHaveTheirDefaults();
    void storesObjectsByTheirKind_data();
    void storesObjectsByTheirKind();
    void writingTheObjectClearsTheError();
    void parsesByteBuffers_data();
    void parsesByteBuffers();
    void isMadeFromLiterals();
    void isMadeFromRawValues();
    void kindsHaveTheirNumbers();
    void errorsHaveCodesAndMessages_data();
    void errorsHaveCodesAndMessages();
    void movedFromValueIsNull();
};

void AccessorsTest::readsEveryKind_data()
{
    QTest::addColumn<JSON>("json");
    QTest::addColumn<QString>("stringValue");
    QTest::addColumn<QString>("string");
    QTest::addColumn<qint64>("intValue");
    QTest::addColumn<QString>("int_");
    QTest::addColumn<double>("doubleValue");
    QTest::addColumn<QString>("double_");
    QTest::addColumn<bool>("boolValue");
    QTest::addColumn<QString>("bool_");
    const QString dash = u"-"_s;
    QTest::newRow("integer") << JSON(1920) << u"1920"_s << dash << qint64(1920) << u"1920"_s << 1920.0
                             << u"1920"_s << true << dash;
    QTest::newRow("integer 1") << JSON(1) << u"1"_s << dash << qint64(1) << u"1"_s << 1.0 << u"1"_s << true
                               << dash;
    QTest::newRow("integer 0") << JSON(0) << u"0"_s << dash << qint64(0) << u"0"_s << 0.0 << u"0"_s << false
                               << dash;
    QTest::newRow("real") << JSON(29.97) << u"29.97"_s << dash << qint64(29) << u"29"_s << 29.97 << u"29.97"_s
                          << true << dash;
    QTest::newRow("negative real") << JSON(-29.97) << u"-29.97"_s << dash << qint64(-29) << u"-29"_s << -29.97
                                   << u"-29.97"_s << true << dash;
    QTest::newRow("string") << JSON("1920") << u"1920"_s << u"1920"_s << qint64(1920) << dash << 1920.0
                            << dash << false << dash;
    QTest::newRow("string true") << JSON("true") << u"true"_s << u"true"_s << qint64(0) << dash << 0.0 << dash
                                 << true << dash;
    QTest::newRow("empty string") << JSON("") << u""_s << u""_s << qint64(0) << dash << 0.0 << dash << false
                                  << dash;
    QTest::newRow("true") << JSON(true) << u"true"_s << dash << qint64(1) << u"1"_s << 1.0 << u"1"_s << true
                          << u"1"_s;
    QTest::newRow("false") << JSON(false) << u"false"_s << dash << qint64(0) << u"0"_s << 0.0 << u"0"_s
                           << false << u"0"_s;
    const JSON others[] = {JSON::arrayLiteral({1, 2}), JSON::dictionaryLiteral({{"a", 1}}), JSON::null(),
                           JSON::fromObject(Object::other(1)), JSON::null()["x"]};
    const char *const names[] = {"array", "dictionary", "null", "unknown", "failed lookup"};
    for (std::size_t i = 0; i < std::size(others); ++i)
        QTest::newRow(names[i]) << others[i] << u""_s << dash << qint64(0) << dash << 0.0 << dash << false
                                << dash;
}

void AccessorsTest::readsEveryKind()
{
    QFETCH(JSON, json);
    QTEST(shown(json.stringValue()), "stringValue");
    QTEST(json.string() ? shown(*json.string()) : u"-"_s, "string");
    QTEST(qint64(json.intValue()), "intValue");
    QTEST(orDash(json.int_()), "int_");
    QTEST(json.doubleValue(), "doubleValue");
    QTEST(orDash(json.double_()), "double_");
    QTEST(json.boolValue(), "boolValue");
    QTEST(orDash(json.bool_()), "bool_");
    QCOMPARE(json.number().has_value(), json.int_().has_value());
}

void AccessorsTest::numberValueKeepsItsOrigin_data()
{
    QTest::addColumn<JSON>("json");
    QTest::addColumn<Number::Origin>("origin");
    QTest::addColumn<QString>("text");
    QTest::newRow("integer") << JSON(5) << Number::Origin::int64 << u"5"_s;
    QTest::newRow("real") << JSON(5.0) << Number::Origin::real << u"5"_s;
    QTest::newRow("true is the integer 1") << JSON(true) << Number::Origin::int64 << u"1"_s;
    QTest::newRow("false is the integer 0") << JSON(false) << Number::Origin::int64 << u"0"_s;
    QTest::newRow("string is a decimal") << JSON("29.970") << Number::Origin::decimal << u"29.97"_s;
    QTest::newRow("string without a number is the decimal 0")
        << JSON("N/A") << Number::Origin::decimal << u"0"_s;
    QTest::newRow("null is the real 0") << JSON::null() << Number::Origin::real << u"0"_s;
    QTest::newRow("array is the real 0") << JSON::arrayLiteral({1}) << Number::Origin::real << u"0"_s;
}

void AccessorsTest::numberValueKeepsItsOrigin()
{
    QFETCH(JSON, json);
    QTEST(json.numberValue().origin(), "origin");
    QTEST(shown(json.numberValue().stringValue()), "text");
    if (json.number()) QCOMPARE(json.number()->origin(), json.numberValue().origin());
}

void AccessorsTest::readsStringsAsNumbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("intValue");
    QTest::addColumn<double>("doubleValue");
    QTest::newRow("integer") << "1920"_ba << qint64(1920) << 1920.0;
    QTest::newRow("fraction") << "29.97"_ba << qint64(29) << 29.97;
    QTest::newRow("leading blank") << " 12"_ba << qint64(12) << 12.0;
    QTest::newRow("trailing words") << "29.97 fps"_ba << qint64(29) << 29.97;
    QTest::newRow("comma") << "1,5"_ba << qint64(1) << 1.0;
    QTest::newRow("ratio") << "30000/1001"_ba << qint64(30000) << 30000.0;
    QTest::newRow("words") << "N/A"_ba << qint64(0) << 0.0;
    QTest::newRow("nan") << "nan"_ba << qint64(0) << 0.0;
    QTest::newRow("empty") << ""_ba << qint64(0) << 0.0;
    QTest::newRow("too large") << "1e128"_ba << qint64(0) << 0.0;
    QTest::newRow("duration") << "3725.500000"_ba << qint64(3725) << 3725.5;
}

void AccessorsTest::readsStringsAsNumbers()
{
    QFETCH(QByteArray, text);
    const JSON json(text.toStdString());
    QTEST(qint64(json.intValue()), "intValue");
    QTEST(json.doubleValue(), "doubleValue");
}

void AccessorsTest::readsStringsAsTruthValues_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("value");
    for (const char *word : {"true", "y", "t", "yes", "1", "TRUE", "Y", "T", "Yes", "tRuE", "YES"})
        QTest::newRow(word) << QByteArray(word) << true;
    for (const char *word :
         {"", "false", "no", "n", "f", "0", "on", "2", "10", " true", "true ", "yess", "ye", "ON"})
        QTest::addRow("\"%s\"", word) << QByteArray(word) << false;
    QTest::newRow("NUL behind the word") << QByteArray("true\0", 5) << false;
}

void AccessorsTest::readsStringsAsTruthValues()
{
    QFETCH(QByteArray, text);
    QTEST(JSON(text.toStdString()).boolValue(), "value");
}

void AccessorsTest::givesElementsAndMembers()
{
    const JSON json = JSON::fromBytes(R"({"list": [1, "a", null], "text": "b"})");
    const JSON list = json["list"];
    QCOMPARE(list.arrayValue().size(), std::size_t(3));
    QVERIFY(list.arrayValue()[1] == "a");
    QVERIFY(list.array());
    QVERIFY(*list.array() == list.arrayValue());
    QVERIFY(list.dictionaryValue().empty());
    QVERIFY(!list.dictionary());
    QVERIFY(!list.dictionaryObject());

    QCOMPARE(json.dictionaryValue().size(), std::size_t(2));
    QVERIFY(json.dictionaryValue().at("list") == list);
    QVERIFY(json.dictionary());
    QVERIFY(*json.dictionary() == json.dictionaryValue());
    QVERIFY(json.dictionaryObject());
    QVERIFY(*json.dictionaryObject()->at("text").string() == "b");
    QVERIFY(json.arrayValue().empty());
    QVERIFY(!json.array());

    for (const JSON &other : {JSON(1), JSON("a"), JSON(true), JSON::null()}) {
        QVERIFY(other.arrayValue().empty());
        QVERIFY(!other.array());
        QVERIFY(other.dictionaryValue().empty());
        QVERIFY(!other.dictionary());
        QVERIFY(!other.dictionaryObject());
    }
}

void AccessorsTest::rawFieldsHaveTheirDefaults()
{
    const JSON values[] = {
        JSON::arrayLiteral({1}), JSON::dictionaryLiteral({{"a", 1}}), "text", 5, true, nullptr};
    for (const JSON &json : values) {
        const Type type = json.type();
        QCOMPARE(json.rawArray().size(), std::size_t(type == Type::array));
        QCOMPARE(json.rawDictionary().size(), std::size_t(type == Type::dictionary));
        QCOMPARE(shown(json.rawString()), type == Type::string ? u"text"_s : u""_s);
        QVERIFY(json.rawNumber() == Number(type == Type::number ? 5 : 0));
        QVERIFY(!json.rawNumber().isBool());
        QCOMPARE(json.rawBool(), type == Type::bool_);
        QCOMPARE(json.rawNull().kind(), Object::Kind::null);
    }
    QCOMPARE(JSON::arrayLiteral({1, 2}).rawArray().size(), std::size_t(2)); // of a value that ends at once
    QCOMPARE(JSON::dictionaryLiteral({{"a", 1}}).rawDictionary().size(), std::size_t(1));
}

void AccessorsTest::storesObjectsByTheirKind_data()
{
    QTest::addColumn<Object>("object");
    QTest::addColumn<Type>("type");
    QTest::addColumn<bool>("readBackAsNull");
    QTest::newRow("absent") << Object() << Type::null << true;
    QTest::newRow("null") << Object(nullptr) << Type::null << true;
    QTest::newRow("true") << Object(true) << Type::bool_ << false;
    QTest::newRow("integer") << Object(1) << Type::number << false;
    QTest::newRow("real") << Object(1.0) << Type::number << false;
    QTest::newRow("decimal") << Object(Number(Decimal())) << Type::number << false;
    QTest::newRow("string") << Object("a") << Type::string << false;
    QTest::newRow("array") << Object(Array()) << Type::array << false;
    QTest::newRow("dictionary") << Object(Dictionary()) << Type::dictionary << false;
    QTest::newRow("bytes") << Object::bytes("[]") << Type::unknown << true;
    QTest::newRow("other") << Object::other(QString()) << Type::unknown << true;
}

void AccessorsTest::storesObjectsByTheirKind()
{
    QFETCH(Object, object);
    QFETCH(Type, type);
    QFETCH(bool, readBackAsNull);
    const JSON json = JSON::fromObject(object);
    QCOMPARE(json.type(), type);
    QVERIFY(json.object() == (readBackAsNull ? Object(nullptr) : object));
    QVERIFY(json.rawValue() == json.object());
    QCOMPARE(json.error().has_value(), type == Type::unknown);
    if (json.error()) QCOMPARE(*json.error(), JSONError::unsupportedType);
    const std::optional<JSON> fromRaw = JSON::fromRawValue(object);
    QCOMPARE(fromRaw.has_value(), type != Type::unknown);
    if (fromRaw) QVERIFY(*fromRaw == json);
}

void AccessorsTest::writingTheObjectClearsTheError()
{
    JSON json = JSON::null()["x"];
    QCOMPARE(json.error(), JSONError::wrongType);
    json.setObject(5);
    QVERIFY(!json.error());
    QCOMPARE(json.intValue(), 5);
    json.setObject(Object::other(1));
    QCOMPARE(json.error(), JSONError::unsupportedType);
    json.setObject(nullptr);
    QVERIFY(!json.error());
    QCOMPARE(json.type(), Type::null);
}

void AccessorsTest::parsesByteBuffers_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<Type>("type");
    QTest::newRow("object") << R"({"a":1})"_ba << Type::dictionary;
    QTest::newRow("array") << "[]"_ba << Type::array;
    QTest::newRow("fragment") << "1"_ba << Type::null;
    QTest::newRow("rubbish") << "{"_ba << Type::null;
    QTest::newRow("empty") << ""_ba << Type::null;
}

void AccessorsTest::parsesByteBuffers()
{
    QFETCH(QByteArray, bytes);
    const JSON json(Object::bytes(bytes.toStdString()));
    QTEST(json.type(), "type");
    QVERIFY(!json.error());
}

void AccessorsTest::isMadeFromLiterals()
{
    QCOMPARE(JSON().type(), Type::null);
    QVERIFY(!JSON().error());
    QCOMPARE(JSON(nullptr).type(), Type::null);
    QCOMPARE(shown(JSON("text").stringValue()), u"text"_s);
    QCOMPARE(shown(JSON(std::string("text")).stringValue()), u"text"_s);
    QCOMPARE(shown(JSON(std::string_view("text")).stringValue()), u"text"_s);
    QCOMPARE(shown(JSON('c').stringValue()), u"c"_s);
    QCOMPARE(shown(JSON(U'z').stringValue()), u"z"_s);
    QCOMPARE(shown(JSON(U'é').stringValue()), u"é"_s);
    QCOMPARE(shown(JSON(U'漢').stringValue()), u"漢"_s);
    QCOMPARE(shown(JSON(U'😀').stringValue()), u"😀"_s);
    QCOMPARE(shown(JSON(char32_t(0xD834)).stringValue()), u"\uFFFD"_s);
    QCOMPARE(shown(JSON(char32_t(0x110000)).stringValue()), u"\uFFFD"_s);
    QCOMPARE(JSON(short(5)).rawNumber().origin(), Number::Origin::int64);
    QCOMPARE(JSON(5U).rawNumber().origin(), Number::Origin::uint64);
    QCOMPARE(JSON(std::numeric_limits<std::uint64_t>::max()).rawNumber().objCType(), "Q");
    QCOMPARE(JSON(1.5F).rawNumber().doubleValue(), 1.5);
    QCOMPARE(JSON(true).type(), Type::bool_);
    QCOMPARE(JSON(Number(Decimal::fromString("1.5"))).rawNumber().origin(), Number::Origin::decimal);

    const JSON list = JSON::arrayLiteral({1, "two", nullptr, true, JSON::arrayLiteral({})});
    QVERIFY(list == JSON::fromBytes(R"([1, "two", null, true, []])"));
    const JSON map = JSON::dictionaryLiteral({{"a", 1}, {"b", list}, {"a", 2}});
    QVERIFY(map == JSON::fromBytes(R"({"a": 2, "b": [1, "two", null, true, []]})"));
}

void AccessorsTest::isMadeFromRawValues()
{
    const Object object(Array{1, "two"});
    const std::optional<JSON> json = JSON::fromRawValue(object);
    QVERIFY(json);
    QVERIFY(json->rawValue() == object);
    QVERIFY(!JSON::fromRawValue(Object::bytes("[]")));
}

void AccessorsTest::kindsHaveTheirNumbers()
{
    QCOMPARE(int(Type::number), 0);
    QCOMPARE(int(Type::string), 1);
    QCOMPARE(int(Type::bool_), 2);
    QCOMPARE(int(Type::array), 3);
    QCOMPARE(int(Type::dictionary), 4);
    QCOMPARE(int(Type::null), 5);
    QCOMPARE(int(Type::unknown), 6);
}

void AccessorsTest::errorsHaveCodesAndMessages_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message"); // empty: no such error
    QTest::newRow("unsupportedType") << 999 << u"It is an unsupported type."_s;
    QTest::newRow("indexOutOfBounds") << 900 << u"Array Index is out of bounds."_s;
    QTest::newRow("elementTooDeep")
        << 902 << u"Element too deep. Increase maxObjectDepth and make sure there is no reference loop."_s;
    QTest::newRow("wrongType") << 901 << u"Couldn't merge, because the JSONs differ in type on top level."_s;
    QTest::newRow("notExist") << 500 << u"Dictionary key does not exist."_s;
    QTest::newRow("invalidJSON") << 490 << u"JSON is invalid."_s;
    QTest::newRow("0") << 0 << u""_s;
    QTest::newRow("903") << 903 << u""_s;
    QTest::newRow("-1") << -1 << u""_s;
}

void AccessorsTest::errorsHaveCodesAndMessages()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    const std::optional<JSONError> error = jsonErrorFromCode(code);
    QCOMPARE(error.has_value(), !message.isEmpty());
    if (!error) return;
    QCOMPARE(errorCode(*error), code);
    QCOMPARE(shown(errorMessage(*error)), message);
    QCOMPARE(shown(errorDomain()), u"org.tessaly.json"_s);
    QCOMPARE(errorUserInfo(*error).size(), std::size_t(1));
    QCOMPARE(shown(errorUserInfo(*error).at("NSLocalizedDescription")), message);
    QCOMPARE(JSONException(*error).error(), *error);
    QCOMPARE(QString::fromUtf8(JSONException(*error).what()), message);
}

void AccessorsTest::movedFromValueIsNull()
{
    JSON json = JSON::arrayLiteral({1});
    const JSON target = std::move(json);
    QCOMPARE(target.count(), std::size_t(1));
    QCOMPARE(json.type(), Type::null); // NOLINT(bugprone-use-after-move): that it can be used is the point
    QCOMPARE(json.count(), std::size_t(0));
    QVERIFY(json == JSON::null());
}

TESSALY_TEST_MAIN(AccessorsTest)
#include "accessors_test.moc"
