#include "json_test_case.h"
#include "json/json.h"

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

using Path = std::vector<JSONSubscriptType>;
Q_DECLARE_METATYPE(Path)
Q_DECLARE_METATYPE(tessaly::JSON)

namespace {

const JSON &document()
{
    static const JSON value = JSON::fromBytes(R"({"list": [1, {"a": "b"}], "text": "t"})");
    return value;
}

} // namespace

class WriteTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void writesByIndex();
    void writesByKey();
    void writesByPath_data();
    void writesByPath();
    void emptyPathReplacesTheValue();
    void refusesPlacesThatAreNone_data();
    void refusesPlacesThatAreNone();
    void refusesValuesWithAnError();
    void writesItselfIntoItself();
    void leavesCopiesAlone();
    void merges_data();
    void merges();
    void refusesToMergeDifferentKinds();
    void mergesWithItself();
};

void WriteTest::writesByIndex()
{
    JSON list = JSON::arrayLiteral({1, 2, 3});
    QVERIFY(list.set(1, "two"));
    QVERIFY(list == JSON::arrayLiteral({1, "two", 3}));
    QVERIFY(list.set(std::size_t(2), nullptr));
    QVERIFY(list == JSON::arrayLiteral({1, "two", nullptr}));
}

void WriteTest::writesByKey()
{
    JSON map = JSON::dictionaryLiteral({{"a", 1}});
    QVERIFY(map.set("a", 2));
    QVERIFY(map.set(std::string("b"), JSON::arrayLiteral({})));
    QVERIFY(map == JSON::fromBytes(R"({"a": 2, "b": []})"));
}

void WriteTest::writesByPath_data()
{
    QTest::addColumn<Path>("path");
    QTest::addColumn<QByteArray>("result");
    QTest::newRow("element") << Path{"list", 0} << R"({"list": [0, {"a": "b"}], "text": "t"})"_ba;
    QTest::newRow("member") << Path{"text"} << R"({"list": [1, {"a": "b"}], "text": 0})"_ba;
    QTest::newRow("deep member") << Path{"list", 1, "a"} << R"({"list": [1, {"a": 0}], "text": "t"})"_ba;
    QTest::newRow("new member") << Path{"list", 1, "c"}
                                << R"({"list": [1, {"a": "b", "c": 0}], "text": "t"})"_ba;
    QTest::newRow("container") << Path{"list"} << R"({"list": 0, "text": "t"})"_ba;
}

void WriteTest::writesByPath()
{
    QFETCH(Path, path);
    QFETCH(QByteArray, result);
    JSON json = document();
    QVERIFY(json.set(path, 0));
    QVERIFY(json == JSON::fromBytes(view(result)));
    QVERIFY(json[path] == 0);
}

void WriteTest::emptyPathReplacesTheValue()
{
    JSON json = document();
    QVERIFY(json.set(Path(), "new"));
    QVERIFY(json == "new");
}

void WriteTest::refusesPlacesThatAreNone_data()
{
    QTest::addColumn<JSON>("json");
    QTest::addColumn<Path>("path");
    QTest::newRow("index past the end") << document() << Path{"list", 2};
    QTest::newRow("negative index") << document() << Path{"list", -1};
    QTest::newRow("index of a dictionary") << document() << Path{0};
    QTest::newRow("key of an array") << document() << Path{"list", "a"};
    QTest::newRow("key of a string") << document() << Path{"text", "a"};
    QTest::newRow("index of a string") << document() << Path{"text", 0};
    QTest::newRow("behind a missing key") << document() << Path{"missing", "a"};
    QTest::newRow("behind an index past the end") << document() << Path{"list", 5, "a"};
    QTest::newRow("index of an empty array") << JSON::arrayLiteral({}) << Path{0};
    QTest::newRow("key of a null") << JSON::null() << Path{"a"};
    QTest::newRow("key of a number") << JSON(5) << Path{"a"};
    QTest::newRow("index of an unknown value") << JSON::fromObject(Object::other(1)) << Path{0};
}

void WriteTest::refusesPlacesThatAreNone()
{
    QFETCH(JSON, json);
    QFETCH(Path, path);
    const Object before = json.object();
    const auto errorBefore = json.error();
    QVERIFY(!json.set(path, 0));
    if (path.size() == 1 && path[0].jsonKey().index()) QVERIFY(!json.set(*path[0].jsonKey().index(), 0));
    if (path.size() == 1 && path[0].jsonKey().key()) QVERIFY(!json.set(*path[0].jsonKey().key(), 0));
    QVERIFY(json.object() == before);
    QCOMPARE(json.error(), errorBefore);
    QCOMPARE(json.object().dictionary(), before.dictionary()); // not even copied
}

void WriteTest::refusesValuesWithAnError()
{
    JSON json = document();
    QVERIFY(!json.set("text", json["missing"]));
    QVERIFY(!json.set({"list", 0}, JSON::fromObject(Object::other(1))));
    QVERIFY(!json.set(Path(), json["missing"]));
    QVERIFY(json == document());
    QVERIFY(json.set("text", nullptr));
}

void WriteTest::writesItselfIntoItself()
{
    JSON json = JSON::dictionaryLiteral({{"a", 1}});
    QVERIFY(json.set("self", json));
    QVERIFY(json.set({"self", "self"}, json));
    QVERIFY(json == JSON::fromBytes(R"({"a": 1, "self": {"a": 1, "self": {"a": 1, "self": {"a": 1}}}})"));
}

void WriteTest::leavesCopiesAlone()
{
    JSON json = document();
    const JSON part = json["list"];
    QVERIFY(json.set({"list", 1, "a"}, "changed"));
    QVERIFY(part == document()["list"]);
    QVERIFY(json != document());
}

void WriteTest::merges_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<QByteArray>("result");
    QTest::newRow("members are added") << R"({"a": 1})"_ba
                                       << R"({"b": 2})"_ba
                                       << R"({"a": 1, "b": 2})"_ba;
    QTest::newRow("the other's value wins") << R"({"a": 1})"_ba
                                            << R"({"a": "x"})"_ba
                                            << R"({"a": "x"})"_ba;
    QTest::newRow("deep") << R"({"a": {"b": {"c": 1, "d": 2}}})"_ba
                          << R"({"a": {"b": {"c": 3}, "e": 4}})"_ba
                          << R"({"a": {"b": {"c": 3, "d": 2}, "e": 4}})"_ba;
    QTest::newRow("arrays are joined") << "[1, 2]"_ba
                                       << "[2, 3]"_ba
                                       << "[1, 2, 2, 3]"_ba;
    QTest::newRow("arrays inside") << R"({"a": [1]})"_ba
                                   << R"({"a": [[2]]})"_ba
                                   << R"({"a": [1, [2]]})"_ba;
    QTest::newRow("different kinds inside") << R"({"a": [1], "b": {}})"_ba
                                            << R"({"a": {"c": 1}, "b": null})"_ba
                                            << R"({"a": {"c": 1}, "b": null})"_ba;
    QTest::newRow("numbers") << "1"_ba
                             << "2"_ba
                             << "2"_ba;
    QTest::newRow("strings") << "\"a\""_ba
                             << "\"b\""_ba
                             << "\"b\""_ba;
    QTest::newRow("booleans") << "true"_ba
                              << "false"_ba
                              << "false"_ba;
    QTest::newRow("nulls") << "null"_ba
                           << "null"_ba
                           << "null"_ba;
}

void WriteTest::merges()
{
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, right);
    QFETCH(QByteArray, result);
    const auto read = [](const QByteArray &text) {
        return JSON::fromBytes(view(text), {.fragmentsAllowed = true});
    };
    JSON json = read(left);
    const JSON other = read(right);
    const JSON copy = json;
    QVERIFY(json.merged(other) == read(result));
    QVERIFY(json == copy);
    json.merge(other);
    QVERIFY(json == read(result));
    QVERIFY(copy == read(left));
    QVERIFY(other == read(right));
}

void WriteTest::refusesToMergeDifferentKinds()
{
    const JSON values[] = {1,      "1", true, JSON::arrayLiteral({1}), JSON::dictionaryLiteral({{"a", 1}}),
                           nullptr};
    for (const JSON &left : values) {
        for (const JSON &right : values) {
            if (left.type() == right.type()) continue;
            JSON json = left;
            try {
                json.merge(right);
                QFAIL("were merged");
            } catch (const JSONException &exception) {
                QCOMPARE(exception.error(), JSONError::wrongType);
            }
            QVERIFY(json == left);
            QVERIFY_THROWS_EXCEPTION(JSONException, left.merged(right));
        }
    }
}

void WriteTest::mergesWithItself()
{
    JSON json = JSON::fromBytes(R"({"a": [1, 2], "b": {"c": [3]}})");
    json.merge(json);
    QVERIFY(json == JSON::fromBytes(R"({"a": [1, 2, 1, 2], "b": {"c": [3, 3]}})"));
}

TESSALY_TEST_MAIN(WriteTest)
#include "write_test.moc"
