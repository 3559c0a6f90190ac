#include "json_test_case.h"
#include "json/json.h"

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

using Path = std::vector<JSONSubscriptType>;
Q_DECLARE_METATYPE(Path)
Q_DECLARE_METATYPE(tessaly::JSONError)

namespace {

const char *const report = R"({
    "streams": [
        {"index": 0, "width": 1920, "tags": {"language": "eng"}},
        {"index": 1, "nothing": null}
    ],
    "format": {"duration": "12.5"},
    "text": "abc"
})";

} // namespace

class LookupTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void findsByPath();
    void pathEqualsSingleSteps();
    void reportsTheFirstFailingStep_data();
    void reportsTheFirstFailingStep();
    void absentAndNullCanBeToldApart();
    void failedLookupReadsAsDefaults();
    void anyIntegerAndStringIsAStep();
    void unknownValueKeepsItsError();
    void copiesNothing();

private:
    const JSON m_json = JSON::fromBytes(report);
};

void LookupTest::findsByPath()
{
    QCOMPARE(m_json["streams"][0]["width"].intValue(), 1920);
    const JSON width = m_json[{"streams", 0, "width"}];
    QCOMPARE(width.intValue(), 1920);
    const JSON language = m_json[{"streams", 0, "tags", "language"}];
    QCOMPARE(shown(language.stringValue()), u"eng"_s);
    QVERIFY(!language.error());
    const JSON twoStrings = m_json[{"format", "duration"}];
    QCOMPARE(twoStrings.doubleValue(), 12.5);
    const JSON oneString = m_json[{"text"}];
    QCOMPARE(shown(oneString.stringValue()), u"abc"_s);
}

void LookupTest::pathEqualsSingleSteps()
{
    const std::vector<JSONSubscriptType> path{"streams", 1, "index"};
    QVERIFY(m_json[path] == m_json["streams"][1]["index"]);
    const std::vector<JSONSubscriptType> empty;
    QVERIFY(m_json[empty] == m_json);
    const JSON failed = m_json["nowhere"];
    QCOMPARE(failed[empty].error(), JSONError::notExist);
}

void LookupTest::reportsTheFirstFailingStep_data()
{
    QTest::addColumn<Path>("path");
    QTest::addColumn<JSONError>("error");
    const auto row = [](const char *name, const Path &path, JSONError error) {
        QTest::newRow(name) << path << error;
    };
    row("missing key", {"format", "tags"}, JSONError::notExist);
    row("key behind a missing key", {"format", "tags", "rotate"}, JSONError::notExist);
    row("index behind a missing key", {"format", "tags", 0}, JSONError::notExist);
    row("index past the end", {"streams", 2}, JSONError::indexOutOfBounds);
    row("negative index", {"streams", -1}, JSONError::indexOutOfBounds);
    row("key behind an index past the end", {"streams", 2, "width"}, JSONError::indexOutOfBounds);
    row("key of a string", {"text", "length"}, JSONError::wrongType);
    row("index of a string", {"text", 0}, JSONError::wrongType);
    row("key of an array", {"streams", "width"}, JSONError::wrongType);
    row("index of a dictionary", {"format", 0}, JSONError::wrongType);
    row("key of a number", {"streams", 0, "width", "x"}, JSONError::wrongType);
    row("key of a null", {"streams", 1, "nothing", "x"}, JSONError::wrongType);
    row("missing key behind a wrong kind", {"text", 0, "x"}, JSONError::wrongType);
}

void LookupTest::reportsTheFirstFailingStep()
{
    QFETCH(Path, path);
    QFETCH(JSONError, error);
    const JSON byPath = m_json[path];
    QCOMPARE(byPath.type(), Type::null);
    QCOMPARE(byPath.error(), error);

    JSON byStep = m_json;
    for (const JSONSubscriptType &step : path) {
        const JSONKey &key = step.jsonKey();
        byStep = key.index() ? byStep[*key.index()] : byStep[*key.key()];
    }
    QCOMPARE(byStep.type(), Type::null);
    QCOMPARE(byStep.error(), error);
}

void LookupTest::absentAndNullCanBeToldApart()
{
    const JSON null = m_json[{"streams", 1, "nothing"}];
    const JSON absent = m_json[{"streams", 1, "missing"}];
    QVERIFY(!null.error());
    QCOMPARE(absent.error(), JSONError::notExist);
    QVERIFY(null == absent);
    QVERIFY(absent == JSON::null());
}

void LookupTest::failedLookupReadsAsDefaults()
{
    const JSON rotate = m_json[{"format", "tags", "rotate"}];
    QCOMPARE(shown(rotate.stringValue()), u""_s);
    QCOMPARE(rotate.intValue(), 0);
    QVERIFY(!rotate.int_());
}

void LookupTest::anyIntegerAndStringIsAStep()
{
    const JSON streams = m_json["streams"];
    QVERIFY(streams[std::size_t(1)] == streams[1]);
    QVERIFY(streams[1U] == streams[1]);
    QVERIFY(streams[std::int64_t(1)] == streams[1]);
    QCOMPARE(streams[std::numeric_limits<std::uint64_t>::max()].error(), JSONError::indexOutOfBounds);
    QVERIFY(m_json[std::string("text")] == m_json["text"]);
    QVERIFY(m_json[std::string_view("text")] == m_json["text"]);
    QVERIFY((m_json[{std::string("format"), std::string_view("duration")}] == m_json["format"]["duration"]));
    QVERIFY((m_json[{JSONKey::key("streams"), JSONKey::index(1)}] == streams[1]));
}

void LookupTest::unknownValueKeepsItsError()
{
    const JSON unknown = JSON::fromObject(Object::other(5));
    QCOMPARE(unknown.error(), JSONError::unsupportedType);
    QCOMPARE(unknown["x"].error(), JSONError::unsupportedType);
    QCOMPARE(unknown[0].error(), JSONError::unsupportedType);
    const JSON outer{Object(Array{Object::other(5)})};
    QCOMPARE(outer[0]["x"].error(), JSONError::unsupportedType);
    const JSON byPath = outer[{0, "x", 1}];
    QCOMPARE(byPath.error(), JSONError::unsupportedType);
}

void LookupTest::copiesNothing()
{
    const Object root = m_json.object();
    const Object *stream = &(*root.dictionary()->find("streams")->second.array())[0];
    QCOMPARE(m_json["streams"][0].object().dictionary(), stream->dictionary());
    const JSON byPath = m_json[{"streams", 0}];
    QCOMPARE(byPath.object().dictionary(), stream->dictionary());
    QCOMPARE(m_json["text"].object().string(), root.dictionary()->find("text")->second.string());
}

TESSALY_TEST_MAIN(LookupTest)
#include "lookup_test.moc"
