#include "json_test_case.h"
#include "json/json.h"

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::JSON)

class WalkTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void walksElements();
    void walksMembersInTheOrderOfTheirKeys();
    void positionsMatchTheWalk_data();
    void positionsMatchTheWalk();
    void positionsOfOneKindCompare();
    void positionBehindTheEndStaysThere();
    void elementOutsideIsNull();
    void writingDoesNotDisturbTheWalk();
    void walksAValueThatEndsAtOnce();
};

void WalkTest::walksElements()
{
    const JSON list = JSON::arrayLiteral({1, "two", nullptr});
    QCOMPARE(list.count(), std::size_t(3));
    QVERIFY(!list.empty());
    std::int64_t place = 0;
    for (const auto &[key, value] : list) {
        QVERIFY(key.empty());
        QVERIFY(value == list[place]);
        ++place;
    }
    QCOMPARE(place, std::int64_t(3));
}

void WalkTest::walksMembersInTheOrderOfTheirKeys()
{
    const JSON map = JSON::fromBytes(R"({"c": 3, "a": 1, "b": 2})");
    std::string keys;
    std::int64_t sum = 0;
    for (const auto &[key, value] : map) {
        keys += key;
        sum = sum * 10 + value.intValue();
    }
    QCOMPARE(shown(keys), u"abc"_s);
    QCOMPARE(sum, std::int64_t(123));
}

void WalkTest::positionsMatchTheWalk_data()
{
    QTest::addColumn<JSON>("json");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("kind");
    using Kind = JSON::Index::Kind;
    QTest::newRow("array") << JSON::arrayLiteral({1, 2}) << 2 << int(Kind::array);
    QTest::newRow("empty array") << JSON::arrayLiteral({}) << 0 << int(Kind::array);
    QTest::newRow("dictionary") << JSON::dictionaryLiteral({{"a", 1}, {"b", 2}}) << 2
                                << int(Kind::dictionary);
    QTest::newRow("empty dictionary") << JSON::dictionaryLiteral({}) << 0 << int(Kind::dictionary);
    QTest::newRow("number") << JSON(5) << 0 << int(Kind::null);
    QTest::newRow("string") << JSON("ab") << 0 << int(Kind::null);
    QTest::newRow("true") << JSON(true) << 0 << int(Kind::null);
    QTest::newRow("null") << JSON::null() << 0 << int(Kind::null);
    QTest::newRow("failed lookup") << JSON::null()["x"] << 0 << int(Kind::null);
    QTest::newRow("unknown") << JSON::fromObject(Object::other(1)) << 0 << int(Kind::null);
}

void WalkTest::positionsMatchTheWalk()
{
    QFETCH(JSON, json);
    QFETCH(int, count);
    QFETCH(int, kind);
    QCOMPARE(json.count(), std::size_t(count));
    QCOMPARE(json.empty(), count == 0);
    QCOMPARE(int(json.startIndex().kind()), kind);
    QCOMPARE(json.distance(json.startIndex(), json.endIndex()), std::int64_t(count));
    int steps = 0;
    auto walked = json.begin();
    for (JSON::Index at = json.startIndex(); at != json.endIndex(); at = json.indexAfter(at)) {
        QVERIFY(json[at].value == (*walked).value);
        QCOMPARE(shown(json[at].key), shown((*walked).key));
        walked++;
        ++steps;
    }
    QCOMPARE(steps, count);
    QVERIFY(walked == json.end());
}

void WalkTest::positionsOfOneKindCompare()
{
    const JSON list = JSON::arrayLiteral({1, 2});
    const JSON map = JSON::dictionaryLiteral({{"a", 1}, {"b", 2}});
    for (const JSON &json : {list, map}) {
        const JSON::Index start = json.startIndex();
        QVERIFY(start < json.indexAfter(start));
        QVERIFY(json.indexAfter(start) < json.endIndex());
        QVERIFY(json.endIndex() > start);
        QVERIFY(start == json.startIndex());
        QCOMPARE(json.distance(json.endIndex(), start), std::int64_t(-2));
    }
    QVERIFY(list.startIndex() != map.startIndex());
    QVERIFY(!(list.startIndex() < map.endIndex()));
    QVERIFY(!(list.startIndex() > map.endIndex()));
    QVERIFY(JSON::null().startIndex() == JSON(5).endIndex());
}

void WalkTest::positionBehindTheEndStaysThere()
{
    const JSON values[] = {JSON::arrayLiteral({1}), JSON::dictionaryLiteral({{"a", 1}}), nullptr};
    for (const JSON &json : values)
        QVERIFY(json.indexAfter(json.endIndex()) == json.endIndex());
}

void WalkTest::elementOutsideIsNull()
{
    const JSON list = JSON::arrayLiteral({1});
    QCOMPARE(list[list.endIndex()].value.error(), JSONError::indexOutOfBounds);
    const JSON map = JSON::dictionaryLiteral({{"a", 1}});
    QCOMPARE(map[map.endIndex()].value.type(), Type::null);
    const JSON null;
    QCOMPARE(null[null.startIndex()].value.type(), Type::null);
}

void WalkTest::writingDoesNotDisturbTheWalk()
{
    JSON map = JSON::dictionaryLiteral({{"a", 1}, {"b", 2}, {"c", 3}});
    int steps = 0;
    for (const auto &[key, value] : map) {
        QVERIFY(map.set("new " + key, value));
        ++steps;
    }
    QCOMPARE(steps, 3);
    QCOMPARE(map.count(), std::size_t(6));
}

void WalkTest::walksAValueThatEndsAtOnce()
{
    std::int64_t sum = 0;
    for (const auto &[key, value] : JSON::fromBytes("[1, 2, 3]"))
        sum += value.intValue();
    QCOMPARE(sum, std::int64_t(6));
}

TESSALY_TEST_MAIN(WalkTest)
#include "walk_test.moc"
