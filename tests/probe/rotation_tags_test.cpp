#include "probe/rotation_tags.h"
#include "support/test_case.h"

using namespace tessaly;

class RotationTagsTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void tagOfTheFirstStream_data();
    void tagOfTheFirstStream();
    void leavesTheRestAlone_data();
    void leavesTheRestAlone();
    void everyStreamHasItsOwnTag();
    void otherTagsStay();
};

void RotationTagsTest::tagOfTheFirstStream_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QByteArray>("tag"); // as JSON; "null" for none
    const auto row = [](const char *name, const QByteArray &stream, const char *tag) {
        QTest::newRow(name) << stream << QByteArray(tag);
    };
    const auto matrix = [](const QByteArray &rotation) {
        return R"({"side_data_type":"Display Matrix","rotation":)" + rotation + "}";
    };
    const auto turned = [&matrix](const QByteArray &rotation) {
        return R"({"side_data_list":[)" + matrix(rotation) + "]}";
    };
    row("a quarter, as a phone held upright writes", turned("-90"), R"("90")");
    row("a quarter the other way", turned("90"), R"("270")");
    row("a half", turned("180"), R"("180")");
    row("a half, with a sign", turned("-180"), R"("180")");
    row("no turn", turned("0"), "null");
    row("a matrix of zeros", turned("-9223372036854775808"), "null");
    row("an angle between", turned("-45"), "null");
    row("nearly a quarter", turned("-89.5"), "null");
    row("a little more than a quarter", turned("-90.5"), "null");
    row("a quarter as a real", turned("-90.0"), R"("90")");
    row("more than a half", turned("270"), "null");
    row("a text", turned(R"("-90")"), "null");
    row("null", turned("null"), "null");
    row("a matrix without an angle", R"({"side_data_list":[{"side_data_type":"Display Matrix"}]})", "null");
    row("side data of another type", R"({"side_data_list":[{"side_data_type":"Stereo 3D","rotation":-90}]})",
        "null");
    row("side data without a type", R"({"side_data_list":[{"rotation":-90}]})", "null");
    row("the matrix behind other side data",
        R"({"side_data_list":[{"side_data_type":"DOVI configuration record"},)" + matrix("-90") + "]}",
        R"("90")");
    row("the first matrix with sense",
        R"({"side_data_list":[)" + matrix("-45") + "," + matrix("90") + "," + matrix("-90") + "]}",
        R"("270")");
    row("empty side data", R"({"side_data_list":[]})", "null");
    row("side data that is no list", R"({"side_data_list":)" + matrix("-90") + "}", "null");
    row("no side data", "{}", "null");
    row("tags that are null", R"({"tags":null,"side_data_list":[)" + matrix("-90") + "]}", R"("90")");
    row("tags that are no dictionary", R"({"tags":"none","side_data_list":[)" + matrix("-90") + "]}",
        R"("90")");
    row("a tag wins over the matrix", R"({"tags":{"rotate":"180"},"side_data_list":[)" + matrix("-90") + "]}",
        R"("180")");
    row("a tag that is a number stays one",
        R"({"tags":{"rotate":90},"side_data_list":[)" + matrix("-90") + "]}", "90");
    row("a tag that is null stays null",
        R"({"tags":{"rotate":null},"side_data_list":[)" + matrix("-90") + "]}", "null");
    row("a tag without a matrix", R"({"tags":{"rotate":"90"}})", R"("90")");
}

void RotationTagsTest::tagOfTheFirstStream()
{
    QFETCH(QByteArray, stream);
    QFETCH(QByteArray, tag);
    JSON report = JSON::fromBytes((R"({"streams":[)" + stream + "]}").toStdString());
    restoreRotateTags(report);
    const JSON expected = JSON::fromBytes(tag.toStdString(), {.fragmentsAllowed = true});
    const JSON found = report[{"streams", 0, "tags", "rotate"}];
    QVERIFY2(found == expected, found.description().c_str());
}

void RotationTagsTest::leavesTheRestAlone_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::newRow("no streams") << QByteArray(R"({"streams":[]})");
    QTest::newRow("streams missing") << QByteArray(R"({"format":{}})");
    QTest::newRow("streams that are no list") << QByteArray(R"({"streams":{"a":1}})");
    QTest::newRow("streams that are no objects") << QByteArray(R"({"streams":[1,null,"a",[]]})");
    QTest::newRow("a list at the top") << QByteArray(R"([1,2])");
    QTest::newRow("no tag is made for a matrix without sense") << QByteArray(
        R"({"streams":[{"side_data_list":[{"side_data_type":"Display Matrix","rotation":0}]}]})");
}

void RotationTagsTest::leavesTheRestAlone()
{
    QFETCH(QByteArray, report);
    const JSON before = JSON::fromBytes(report.toStdString());
    JSON after = before;
    restoreRotateTags(after);
    QVERIFY2(after == before, after.description().c_str());
}

void RotationTagsTest::everyStreamHasItsOwnTag()
{
    JSON report = JSON::fromBytes(R"({"streams":[
        {"side_data_list":[{"side_data_type":"Display Matrix","rotation":-90}]},
        {},
        {"tags":{"rotate":"180"}},
        {"side_data_list":[{"side_data_type":"Display Matrix","rotation":90}]}]})");
    restoreRotateTags(report);
    const JSON streams = report["streams"];
    QCOMPARE(streams[0]["tags"]["rotate"].stringValue(), std::string("90"));
    QVERIFY(streams[1]["tags"].error() == JSONError::notExist);
    QCOMPARE(streams[2]["tags"]["rotate"].stringValue(), std::string("180"));
    QCOMPARE(streams[3]["tags"]["rotate"].stringValue(), std::string("270"));
}

void RotationTagsTest::otherTagsStay()
{
    JSON report = JSON::fromBytes(R"({"format":{"duration":"2.0"},"streams":[{"width":640,
        "tags":{"language":"eng"},"side_data_list":[{"side_data_type":"Display Matrix","rotation":-90}]}]})");
    restoreRotateTags(report);
    const JSON expected = JSON::fromBytes(R"({"format":{"duration":"2.0"},"streams":[{"width":640,
        "tags":{"language":"eng","rotate":"90"},
        "side_data_list":[{"side_data_type":"Display Matrix","rotation":-90}]}]})");
    QVERIFY2(report == expected, report.description().c_str());
}

TESSALY_TEST_MAIN(RotationTagsTest)
#include "rotation_tags_test.moc"
