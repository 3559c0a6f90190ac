#include "cli/resize_json.h"
#include "support/test_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

FileProbe film(qint64 width, qint64 height, quint64 bytes, double seconds)
{
    FileProbe facts;
    facts.videoWidth = width;
    facts.videoHeight = height;
    facts.fileSize = bytes;
    facts.duration = seconds;
    return facts;
}

const QByteArray unknownSides =
    R"("inputWidth":null,"inputHeight":null,"inputBytes":null,"inputSeconds":null,)"
    R"("outputWidth":null,"outputHeight":null,"outputBytes":null,)"
    R"("outputSeconds":null,"secondsTaken":0.0,"remarks":[],)";

} // namespace

class ResizeJsonTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aVideoThatWasMade();
    void aVideoThatCouldNotBeChecked();
    void otherEnds_data();
    void otherEnds();
    void whatIsKnownOfTheInputIsTold();
};

void ResizeJsonTest::aVideoThatWasMade()
{
    const auto input = std::make_shared<const FileProbe>(film(1920, 1080, 5'000'000'000, 12.5));
    const JobDone done{film(960, 540, 1'000'000, 12.52), {{u"Too \"short\"."_s, true}, {u"No sound."_s}}, {}};
    const ResizeFile file{.input = {u"é.mov"_s, u"/v/é.mov"_s}, .output = {u"small/é"_s, u"/v/small/é"_s}};
    const QByteArray expected =
        R"({"input":"/v/é.mov","output":"/v/small/é.mp4","outcome":"done",)"
        R"("inputWidth":1920,"inputHeight":1080,"inputBytes":5000000000,"inputSeconds":12.5,)"
        R"("outputWidth":960,"outputHeight":540,"outputBytes":1000000,"outputSeconds":12.52,)"
        R"("secondsTaken":3.25,"remarks":["Too \"short\".","No sound."],"failure":null,"details":null})";
    QCOMPARE(resizeJson(file, {done, input, 3.25}), expected);
}

void ResizeJsonTest::aVideoThatCouldNotBeChecked()
{
    FileProbe output;
    output.fileSize = 1000;
    const FileEnd end{JobDone{output, {}, u"ffprobe is missing."_s}, {}, 1};
    const QByteArray text = resizeJson({.input = {u"a"_s, u"/a"_s}, .output = {u"b"_s, u"/b"_s}}, end);
    QVERIFY2(text.contains(R"("outcome":"done",)"), text.constData());
    QVERIFY2(
        text.contains(R"("outputWidth":null,"outputHeight":null,"outputBytes":1000,"outputSeconds":null,)"),
        text.constData());
    QVERIFY2(text.contains(R"("remarks":["The new video could not be checked. ffprobe is missing."],)"),
             text.constData());
}

void ResizeJsonTest::otherEnds_data()
{
    QTest::addColumn<FileEnd>("end");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("outcome");
    QTest::addColumn<QByteArray>("failure");
    const QByteArray planned = R"("/b.mp4")";
    const auto row = [](const char *name, const FileEnd &end, const QByteArray &output, const char *outcome,
                        const char *failure) {
        QTest::newRow(name) << end << output << QByteArray(outcome) << QByteArray(failure);
    };
    row("failed", {JobFailed{u"The disk is full."_s, u"No\nspace"_s}}, planned, "failed",
        R"("failure":"The disk is full.","details":"No\nspace")");
    row("failed without a word", {JobFailed{u"It crashed."_s, {}}}, planned, "failed",
        R"("failure":"It crashed.","details":null)");
    row("refused", {Refused{u"/b.mp4 exists already."_s}}, planned, "failed",
        R"("failure":"/b.mp4 exists already.","details":null)");
    row("cancelled", {JobCancelled{}}, planned, "cancelled", R"("failure":null,"details":null)");
    row("cancelled with a rest", {JobCancelled{u"It is still there."_s}}, planned, "cancelled",
        R"("failure":"It is still there.","details":null)");
    row("not begun", {NotBegun{}}, planned, "cancelled", R"("failure":null,"details":null)");
    row("skipped", {Skipped{u"no video was found in it."_s, u"Invalid data"_s}}, "null", "skipped",
        R"("failure":"no video was found in it.","details":"Invalid data")");
    row("skipped without a word", {Skipped{u"it is a picture."_s, {}}}, "null", "skipped",
        R"("failure":"it is a picture.","details":null)");
}

void ResizeJsonTest::otherEnds()
{
    QFETCH(FileEnd, end);
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, outcome);
    QFETCH(QByteArray, failure);
    const ResizeFile file{.input = {u"a"_s, u"/a"_s}, .output = {u"b"_s, u"/b"_s}};
    QCOMPARE(resizeJson(file, end), R"({"input":"/a","output":)" + output + R"(,"outcome":")" + outcome +
                                        "\"," + unknownSides + failure + '}');
}

void ResizeJsonTest::whatIsKnownOfTheInputIsTold()
{
    const auto input = std::make_shared<const FileProbe>(film(640, 360, 7, 0));
    const ResizeFile unnamed{.input = {u"b\uFFFD"_s, std::nullopt}};
    const QByteArray text = resizeJson(unnamed, {Refused{u"No."_s}, input, 0.5});
    QVERIFY2(text.startsWith("{\"input\":\"b\uFFFD\",\"output\":null,"), text.constData());
    QVERIFY2(text.contains(R"("inputWidth":640,"inputHeight":360,"inputBytes":7,"inputSeconds":null,)"),
             text.constData());
}

TESSALY_TEST_MAIN(ResizeJsonTest)
#include "resize_json_test.moc"
