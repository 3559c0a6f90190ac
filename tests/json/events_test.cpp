#include "json_test_case.h"
#include "json/builder.h"
#include "json/json.h"

#include <functional>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

using Source = std::function<void(EventSink &)>;
Q_DECLARE_METATYPE(Source)

namespace {

// Writes the events down, one word each.
class Recorder final : public EventSink
{
public:
    void null() override { words << u"null"_s; }
    void boolean(bool value) override { words << (value ? u"true"_s : u"false"_s); }
    void number(const Number &value) override
    {
        words << shown(std::string(value.objCType()) + value.stringValue());
    }
    void string(std::string_view text) override { words << u"'"_s + shown(text) + u"'"_s; }
    void beginArray() override { words << u"["_s; }
    void endArray() override { words << u"]"_s; }
    void beginDictionary() override { words << u"{"_s; }
    void key(std::string_view key) override { words << shown(key) + u":"_s; }
    void endDictionary() override { words << u"}"_s; }

    QStringList words;
};

} // namespace

class EventsTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void encodesEventByEvent();
    void decodesWhatWasEncoded_data();
    void decodesWhatWasEncoded();
    void encodesEveryNullAsNull();
    void decodingKeepsNumbersAsTheyWere();
    void decodedLastOfEqualKeysWins();
    void refusesToEncode_data();
    void refusesToEncode();
    void refusesEventsThatFormNoValue_data();
    void refusesEventsThatFormNoValue();
    void builderCanBeUsedAgain();
};

void EventsTest::encodesEventByEvent()
{
    const JSON json =
        JSON::fromBytes(R"({"b": [1, 1.5, 1.23456789123456789, 18446744073709551615, true, false, null],
                                          "a": {"x": "text", "e": []}})");
    Recorder recorder;
    json.encode(recorder);
    QCOMPARE(
        recorder.words.join(u' '),
        u"{ a: { e: [ ] x: 'text' } b: [ q1 d1.5 d1.23456789123456789 Q18446744073709551615 true false null ] }"_s);
}

void EventsTest::decodesWhatWasEncoded_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text : {"null", "true", "5", "5.5", "\"a\"", "[]", "{}", "[1,[2,[3]],{}]",
                             R"({"a":{"b":{"c":[null,false]}},"d":"\u0000"})"})
        QTest::newRow(text) << QByteArray(text);
}

void EventsTest::decodesWhatWasEncoded()
{
    QFETCH(QByteArray, text);
    const JSON json = JSON::fromBytes(view(text), {.fragmentsAllowed = true});
    const JSON decoded = JSON::decode([&json](EventSink &sink) { json.encode(sink); });
    QCOMPARE(decoded.type(), json.type());
    QVERIFY(decoded == json);
}

void EventsTest::encodesEveryNullAsNull()
{
    JSON movedFrom = JSON::arrayLiteral({});
    const JSON taken = std::move(movedFrom);
    // NOLINTNEXTLINE(bugprone-use-after-move): that it can be used is the point
    for (const JSON &null : {JSON(), JSON(nullptr), JSON::fromObject(Object()), JSON()["x"], movedFrom}) {
        Recorder recorder;
        null.encode(recorder);
        QCOMPARE(recorder.words, QStringList{u"null"_s});
    }
    QCOMPARE(taken.type(), Type::array);
}

void EventsTest::decodingKeepsNumbersAsTheyWere()
{
    const Number numbers[] = {1, 1U, 1.0, Decimal::fromString("1"), std::numeric_limits<double>::infinity()};
    for (const Number &number : numbers) {
        const JSON json(number);
        const JSON decoded = JSON::decode([&json](EventSink &sink) { json.encode(sink); });
        QCOMPARE(decoded.rawNumber().origin(), number.origin());
        QVERIFY(decoded.rawNumber() == number);
    }
    const JSON truth = JSON::decode([](EventSink &sink) { sink.boolean(true); });
    QCOMPARE(truth.type(), Type::bool_);
}

void EventsTest::decodedLastOfEqualKeysWins()
{
    const JSON json = JSON::decode([](EventSink &sink) {
        sink.beginDictionary();
        sink.key("a");
        sink.number(1);
        sink.key("a");
        sink.number(2);
        sink.endDictionary();
    });
    QVERIFY(json == JSON::dictionaryLiteral({{"a", 2}}));
}

void EventsTest::refusesToEncode_data()
{
    QTest::addColumn<int>("which");
    QTest::newRow("unknown") << 0;
    QTest::newRow("bytes inside") << 1;
    QTest::newRow("absent inside") << 2;
}

void EventsTest::refusesToEncode()
{
    QFETCH(int, which);
    const JSON values[] = {JSON::fromObject(Object::other(1)), JSON::fromObject(Array{Object::bytes("")}),
                           JSON::fromObject(Array{Object()})};
    Recorder recorder;
    try {
        values[which].encode(recorder);
        QFAIL("was encoded");
    } catch (const JSONException &exception) {
        QCOMPARE(exception.error(), JSONError::invalidJSON);
    }
}

void EventsTest::refusesEventsThatFormNoValue_data()
{
    QTest::addColumn<Source>("source");
    const auto row = [](const char *name, const Source &source) { QTest::newRow(name) << source; };
    row("nothing", [](EventSink &) {});
    row("array without end", [](EventSink &sink) { sink.beginArray(); });
    row("end without array", [](EventSink &sink) { sink.endArray(); });
    row("end without dictionary", [](EventSink &sink) { sink.endDictionary(); });
    row("array ended as dictionary", [](EventSink &sink) { sink.beginArray(), sink.endDictionary(); });
    row("dictionary ended as array", [](EventSink &sink) { sink.beginDictionary(), sink.endArray(); });
    row("two values", [](EventSink &sink) { sink.null(), sink.null(); });
    row("array behind a value", [](EventSink &sink) { sink.null(), sink.beginArray(); });
    row("key alone", [](EventSink &sink) { sink.key("a"); });
    row("key in an array", [](EventSink &sink) { sink.beginArray(), sink.key("a"); });
    row("two keys", [](EventSink &sink) { sink.beginDictionary(), sink.key("a"), sink.key("b"); });
    row("key without a value",
        [](EventSink &sink) { sink.beginDictionary(), sink.key("a"), sink.endDictionary(); });
    row("member without a key", [](EventSink &sink) { sink.beginDictionary(), sink.null(); });
    row("container without a key", [](EventSink &sink) { sink.beginDictionary(), sink.beginArray(); });
}

void EventsTest::refusesEventsThatFormNoValue()
{
    QFETCH(Source, source);
    try {
        JSON::decode(source);
        QFAIL("was decoded");
    } catch (const JSONException &exception) {
        QCOMPARE(exception.error(), JSONError::invalidJSON);
    }
}

void EventsTest::builderCanBeUsedAgain()
{
    Builder builder;
    QVERIFY(!builder.isComplete());
    builder.beginArray();
    QCOMPARE(builder.depth(), std::size_t(1));
    builder.endArray();
    QVERIFY(builder.isComplete());
    QVERIFY(builder.takeResult() == Object(Array()));
    QVERIFY(!builder.isComplete());
    builder.null();
    QVERIFY(builder.takeResult() == Object(nullptr));
}

TESSALY_TEST_MAIN(EventsTest)
#include "events_test.moc"
