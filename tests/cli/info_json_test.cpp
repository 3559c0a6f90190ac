#include "cli/info_json.h"
#include "support/test_case.h"

#include <cmath>
#include <functional>
#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

const QByteArray untouched =
    R"({"hasErrors":false,"isValidMediaFile":false,"isEncrypted":false,"numberOfStreams":0,)"
    R"("hasVideoTrack":false,"hasAudioTrack":false,"hasSubtitleTrack":false,)"
    R"("hasAudioTrackWhichHasMoreThanTwoChannels":false,"duration":0.0,"bitRate":0,)"
    R"("videoWidth":null,"videoHeight":null,"videoRatio":null,"tagRotateValue":0,)"
    R"("tracksInfo":[],"metadata":[],"fileSize":null,"fileSizeHuman":null,)"
    R"("fileFullPath":null,"fileFullURL":null,"proberFailure":null,"failure":null})";

} // namespace

class InfoJsonTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsAbsentIsNull();
    void everyFieldInItsOrder();
    void oneMember_data();
    void oneMember();
    void theReportIsLeftOut();
};

void InfoJsonTest::whatIsAbsentIsNull()
{
    QCOMPARE(infoJson(FileProbe()), untouched);
}

void InfoJsonTest::everyFieldInItsOrder()
{
    FileProbe facts;
    facts.hasErrors = facts.isValidMediaFile = facts.isEncrypted = true;
    facts.numberOfStreams = 1;
    facts.hasVideoTrack = facts.hasAudioTrack = facts.hasSubtitleTrack = true;
    facts.hasAudioTrackWhichHasMoreThanTwoChannels = true;
    facts.duration = 2.068333;
    facts.bitRate = 936406;
    facts.videoWidth = 1080;
    facts.videoHeight = 1920;
    facts.videoRatio = 0.5625;
    facts.tagRotateValue = -90;
    facts.tracksInfo = {{{"trackType", "Video"},
                         {"trackCodec", "h264"},
                         {"trackID", "0"},
                         {"trackSpecialInfo", "1080x1920"},
                         {"trackPresentInfile", "/v/é.mp4"},
                         {"trackDuration", 2.5},
                         {"trackDurationHuman", "00:00:02.50"},
                         {"trackLanguage", "eng"},
                         {"trackDictionary", Dictionary{{"index", 0}}}}};
    facts.metadata = {{{u"key"_s, u"Title"_s}, {u"value"_s, u"A \"Film\"\n"_s}},
                      {{u"key"_s, u"HD"_s}, {u"value"_s, u"No"_s}}};
    facts.fileSize = 242100;
    facts.fileSizeHuman = u"242 KB"_s;
    facts.fileFullPath = u"/v/é.mp4"_s;
    facts.fileFullURL = QUrl::fromLocalFile(u"/v/é.mp4"_s);
    QCOMPARE(
        infoJson(facts),
        QByteArray(R"({"hasErrors":true,"isValidMediaFile":true,"isEncrypted":true,"numberOfStreams":1,)"
                   R"("hasVideoTrack":true,"hasAudioTrack":true,"hasSubtitleTrack":true,)"
                   R"("hasAudioTrackWhichHasMoreThanTwoChannels":true,"duration":2.068333,"bitRate":936406,)"
                   R"("videoWidth":1080,"videoHeight":1920,"videoRatio":0.5625,"tagRotateValue":-90,)"
                   R"("tracksInfo":[{"trackType":"Video","trackCodec":"h264","trackID":"0",)"
                   R"("trackSpecialInfo":"1080x1920","trackPresentInfile":"/v/é.mp4","trackDuration":2.5,)"
                   R"("trackDurationHuman":"00:00:02.50","trackLanguage":"eng"}],)"
                   R"("metadata":[{"key":"Title","value":"A \"Film\"\n"},{"key":"HD","value":"No"}],)"
                   R"("fileSize":242100,"fileSizeHuman":"242 KB","fileFullPath":"/v/é.mp4",)"
                   R"("fileFullURL":"file:///v/%C3%A9.mp4","proberFailure":null,"failure":null})"));
}

void InfoJsonTest::oneMember_data()
{
    using Change = std::function<void(FileProbe &)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const auto row = [](const char *name, const char *before, const char *after, const Change &change) {
        QTest::newRow(name) << change << QByteArray(before) << QByteArray(after);
    };
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    row("a ratio that is no number", R"("videoRatio":null)", R"("videoRatio":null)",
        [](FileProbe &facts) { facts.videoRatio = std::nan(""); });
    row("an infinite ratio", R"("videoRatio":null)", R"("videoRatio":null)",
        [](FileProbe &facts) { facts.videoRatio = infinity; });
    row("an infinite duration", R"("duration":0.0)", R"("duration":null)",
        [](FileProbe &facts) { facts.duration = -infinity; });
    row("a whole ratio is a real", R"("videoRatio":null)", R"("videoRatio":2.0)",
        [](FileProbe &facts) { facts.videoRatio = 2; });
    row("a size of 0 is not absent", R"("videoWidth":null)", R"("videoWidth":0)",
        [](FileProbe &facts) { facts.videoWidth = 0; });
    row("the largest file", R"("fileSize":null)", R"("fileSize":18446744073709551615)",
        [](FileProbe &facts) { facts.fileSize = std::numeric_limits<quint64>::max(); });
    row("the smallest turn", R"("tagRotateValue":0)", R"("tagRotateValue":-9223372036854775808)",
        [](FileProbe &facts) { facts.tagRotateValue = std::numeric_limits<qint64>::min(); });
    row("control characters", R"("fileFullPath":null)", R"("fileFullPath":"/a\n\t\u001b\"\\")",
        [](FileProbe &facts) { facts.fileFullPath = u"/a\n\t\x1B\"\\"_s; });
    row("what the prober said", R"("failure":null)", R"("failure":"Is a directory")", [](FileProbe &facts) {
        facts.jsonDictionary = JSON::fromBytes(R"({"error":{"code":-21,"string":"Is a directory"}})");
    });
    row("why nothing is known", R"("proberFailure":null,"failure":null)",
        R"("proberFailure":"No \"ffprobe\".","failure":"No \"ffprobe\".")",
        [](FileProbe &facts) { facts.proberFailure = u"No \"ffprobe\"."_s; });
    // Older versions of Qt write a question mark for it, newer ones leave it out at the end of a text.
    const QByteArray standIn = QString(QChar(0xD800)).toUtf8();
    QVERIFY(standIn == "?" || standIn.isEmpty());
    row("half a surrogate pair", R"("fileFullPath":null)",
        (R"("fileFullPath":")" + standIn + '"').constData(),
        [](FileProbe &facts) { facts.fileFullPath = QString(QChar(0xD800)); });
}

void InfoJsonTest::oneMember()
{
    QFETCH(std::function<void(FileProbe &)>, change);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    FileProbe facts;
    change(facts);
    QByteArray expected = untouched;
    expected.replace(before, after);
    QCOMPARE(infoJson(facts), expected);
}

void InfoJsonTest::theReportIsLeftOut()
{
    FileProbe facts;
    facts.jsonDictionary = JSON::fromBytes(R"({"streams":[]})");
    QCOMPARE(infoJson(facts), untouched);
}

TESSALY_TEST_MAIN(InfoJsonTest)
#include "info_json_test.moc"
