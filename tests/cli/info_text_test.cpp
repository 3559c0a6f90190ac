#include "cli/info_text.h"
#include "support/test_case.h"

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

Dictionary track(const char *id, const char *type, const char *codec, const char *special,
                 const char *language)
{
    return {{"trackID", id},
            {"trackType", type},
            {"trackCodec", codec},
            {"trackSpecialInfo", special},
            {"trackLanguage", language}};
}

// A film of two seconds without tracks and tags.
FileProbe film()
{
    FileProbe facts;
    facts.isValidMediaFile = facts.hasVideoTrack = true;
    facts.videoWidth = 640;
    facts.videoHeight = 360;
    facts.duration = 2;
    facts.bitRate = 936406;
    facts.fileSize = 242100;
    facts.fileSizeHuman = u"242 KB"_s;
    return facts;
}

std::map<QString, QString> tag(const QString &label, const QString &value)
{
    return {{u"key"_s, label}, {u"value"_s, value}};
}

using Change = std::function<void(FileProbe &)>;

Change withComment(const QString &comment)
{
    return [comment](FileProbe &facts) { facts.metadata = {tag(u"Comment"_s, comment)}; };
}

} // namespace

class InfoTextTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aligned();
    void fileThatIsNoMedia();
    void oneLine_data();
    void oneLine();
    void kind_data();
    void kind();
    void lineThatIsLeftOut_data();
    void lineThatIsLeftOut();
    void nothingDrivesTheTerminal();
};

void InfoTextTest::aligned()
{
    FileProbe facts = film();
    facts.tagRotateValue = 90;
    facts.tracksInfo = {
        track("0", "Video", "h264", "640x360", "und"), track("1", "Audio", "aac", "5.1(side)", "eng"),
        track("10", "Subtitle", "mov_text", "hun", "hun"), track("11", "Other", "", "[0][0][0][0]", "")};
    facts.metadata = {tag(u"Title"_s, u"A Film"_s), tag(u"Genre"_s, QString()), tag(u"HD"_s, u"Yes"_s),
                      tag(u"Release Date"_s, u"2008"_s)};
    QCOMPARE(infoText(u"a film.mp4"_s, facts), u"a film.mp4\n"
                                               "  Kind          video\n"
                                               "  Size          640 x 360 (turned by 90 degrees)\n"
                                               "  Duration      00:00:02.00\n"
                                               "  Bit rate      936 kbit/s\n"
                                               "  File size     242 KB\n"
                                               "  Track 0       Video     h264      640x360\n"
                                               "  Track 1       Audio     aac       5.1(side)  eng\n"
                                               "  Track 10      Subtitle  mov_text             hun\n"
                                               "  Track 11      Other     unknown\n"
                                               "  Title         A Film\n"
                                               "  HD            Yes\n"
                                               "  Release Date  2008\n"_s);
}

void InfoTextTest::fileThatIsNoMedia()
{
    FileProbe facts;
    facts.fileSizeHuman = u"Unknown File Size"_s;
    facts.jsonDictionary = JSON::fromBytes(R"({"error":{"code":-2,"string":"No such file or directory"}})");
    QCOMPARE(infoText(u"gone.mp4"_s, facts),
             u"gone.mp4\n  Kind          not a media file (No such file or directory)\n"_s);
}

void InfoTextTest::oneLine_data()
{
    QTest::addColumn<QString>("expected");
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, const QString &line, const Change &change) {
        QTest::newRow(name) << u"\n  "_s + line + u'\n' << change;
    };
    row("video", u"Kind          video"_s, [](FileProbe &) {});
    row("encrypted", u"Kind          encrypted, or of a kind that cannot be decoded"_s,
        [](FileProbe &facts) { facts.isEncrypted = true; });
    row("sound only", u"Kind          sound only"_s,
        [](FileProbe &facts) { facts.hasVideoTrack = false, facts.hasAudioTrack = true; });
    row("neither", u"Kind          neither video nor sound"_s,
        [](FileProbe &facts) { facts.hasVideoTrack = false; });
    row("invalid", u"Kind          not a media file"_s,
        [](FileProbe &facts) { facts.isValidMediaFile = false; });
    row("the prober could not be run", u"Kind          unknown (ffprobe is missing)"_s, [](FileProbe &facts) {
        facts.isValidMediaFile = false, facts.proberFailure = u"ffprobe is missing."_s;
    });
    row("valid, with an error", u"Kind          video (Torn)"_s,
        [](FileProbe &facts) { facts.jsonDictionary = JSON::fromBytes(R"({"error":{"string":"Torn"}})"); });
    row("size", u"Size          640 x 360"_s, [](FileProbe &) {});
    row("half a turn", u"Size          640 x 360 (turned by 180 degrees)"_s,
        [](FileProbe &facts) { facts.tagRotateValue = 180; });
    row("no width", u"Size          unknown"_s, [](FileProbe &facts) { facts.videoWidth.reset(); });
    row("no height", u"Size          unknown"_s, [](FileProbe &facts) { facts.videoHeight.reset(); });
    row("width 0", u"Size          unknown"_s, [](FileProbe &facts) { facts.videoWidth = 0; });
    row("height 0", u"Size          unknown"_s, [](FileProbe &facts) { facts.videoHeight = 0; });
    row("no duration", u"Duration      unknown"_s, [](FileProbe &facts) { facts.duration = 0; });
    row("bit rate rounded up", u"Bit rate      2 kbit/s"_s, [](FileProbe &facts) { facts.bitRate = 1500; });
    row("bit rate rounded down", u"Bit rate      1 kbit/s"_s, [](FileProbe &facts) { facts.bitRate = 1499; });
    row("a bit rate below half a kilobit", u"Bit rate      0 kbit/s"_s,
        [](FileProbe &facts) { facts.bitRate = 499; });
    row("the largest bit rate", u"Bit rate      9223372036854776 kbit/s"_s,
        [](FileProbe &facts) { facts.bitRate = std::numeric_limits<qint64>::max(); });
    row("a tag of many lines", u"Comment       a b"_s, withComment(u" a\r\n\r\n\tb "_s));
    row("a tag of 100 characters", u"Comment       "_s + QString(100, u'x'), withComment(QString(100, u'x')));
    row("a longer tag", u"Comment       "_s + QString(99, u'x') + u'…', withComment(QString(101, u'x')));
    row("a longer tag is not cut inside a character", u"Comment       "_s + QString(98, u'x') + u'…',
        withComment(QString(98, u'x') + u"🎬🎬"_s));
    row("a tag with format signs", u"Comment       %1 %2 100%"_s, withComment(u"%1 %2 100%"_s));
}

void InfoTextTest::oneLine()
{
    QFETCH(Change, change);
    QFETCH(QString, expected);
    FileProbe facts = film();
    change(facts);
    const QString text = infoText(u"a.mp4"_s, facts);
    QVERIFY2(text.contains(expected), qPrintable(text));
}

void InfoTextTest::kind_data()
{
    QTest::addColumn<QByteArray>("streams");
    QTest::addColumn<QString>("kind");
    const auto row = [](const char *name, const char *streams, const QString &kind) {
        QTest::newRow(name) << R"({"streams":[)" + QByteArray(streams) + "]}" << kind;
    };
    const QString video = u"video"_s;
    const QString withoutRate = u"video without a frame rate"_s;
    const QString still = u"a still"_s;
    row("moving pictures",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"25/1","nb_frames":"2"})", video);
    row("of a length",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"30000/1001","duration":"0.066733"})",
        video);
    row("of unknown length", R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"25/1"})", video);
    row("of a rate that is none",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"25","duration":"0.04"})", video);
    row("one picture", R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"25/1","nb_frames":"1"})",
        still);
    row("as long as one picture",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"25/1","duration":"0.040000"})", still);
    row("one picture, long shown",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"1/10","nb_frames":"1","duration":"10"})",
        still);
    row("counted before computed",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"25/1","nb_frames":"300","duration":"0.04"})",
        video);
    row("without a frame rate",
        R"({"codec_type":"video","codec_name":"msmpeg4v3","avg_frame_rate":"0/0","duration":"27.699000"})",
        withoutRate);
    row("without a frame rate, behind sound",
        R"({"codec_type":"audio"},{"codec_type":"video","codec_name":"theora","avg_frame_rate":"0/0"})",
        withoutRate);
    row("one picture without a frame rate",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"0/0","nb_frames":"1"},{"codec_type":"audio"})",
        still);
    row("sound with a cover",
        R"({"codec_type":"audio"},
           {"codec_type":"video","codec_name":"av1","avg_frame_rate":"0/0","disposition":{"attached_pic":1}})",
        u"sound only"_s);
    row("video without a frame rate with a cover",
        R"({"codec_type":"audio"},
           {"codec_type":"video","codec_name":"av1","avg_frame_rate":"0/0","disposition":{"attached_pic":1}},
           {"codec_type":"video","codec_name":"av1","avg_frame_rate":"0/0","disposition":{"attached_pic":0}})",
        withoutRate);
    row("a cover alone",
        R"({"codec_type":"video","codec_name":"av1","avg_frame_rate":"0/0","disposition":{"attached_pic":1}})",
        still);
    row("subtitles alone", R"({"codec_type":"subtitle"})", u"neither video nor sound"_s);
}

void InfoTextTest::kind()
{
    QFETCH(QByteArray, streams);
    QFETCH(QString, kind);
    const QString text = infoText(u"a"_s, FileProbe::fromReport(u"/a.mp4"_s, streams));
    QCOMPARE(text.section(u'\n', 1, 1), u"  Kind          "_s + kind);
}

void InfoTextTest::lineThatIsLeftOut_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, const QString &label, const Change &change) {
        QTest::newRow(name) << label << change;
    };
    row("size without a video", u"Size "_s, [](FileProbe &facts) { facts.hasVideoTrack = false; });
    row("duration of no media", u"Duration"_s, [](FileProbe &facts) { facts.isValidMediaFile = false; });
    row("bit rate that is not known", u"Bit rate"_s, [](FileProbe &facts) { facts.bitRate = 0; });
    row("file size that is not known", u"File size"_s, [](FileProbe &facts) { facts.fileSize.reset(); });
    row("a tag without a value", u"Title"_s,
        [](FileProbe &facts) { facts.metadata = {tag(u"Title"_s, QString())}; });
    row("a tag of blanks", u"Title"_s,
        [](FileProbe &facts) { facts.metadata = {tag(u"Title"_s, u" \n"_s)}; });
    row("HD that is not", u"HD"_s, [](FileProbe &facts) { facts.metadata = {tag(u"HD"_s, u"No"_s)}; });
}

void InfoTextTest::lineThatIsLeftOut()
{
    QFETCH(Change, change);
    QFETCH(QString, label);
    FileProbe facts = film();
    facts.metadata = {tag(u"Title"_s, u"A Film"_s), tag(u"HD"_s, u"Yes"_s)};
    QVERIFY(infoText(u"a.mp4"_s, facts).contains(u"\n  "_s + label));
    change(facts);
    const QString text = infoText(u"a.mp4"_s, facts);
    QVERIFY2(!text.contains(u"\n  "_s + label), qPrintable(text));
}

void InfoTextTest::nothingDrivesTheTerminal()
{
    FileProbe facts = film();
    facts.jsonDictionary = JSON::fromBytes(R"({"error":{"string":"a\u001bb"}})");
    facts.tracksInfo = {track("0\x1B", "Video", "h264\n", "\x1B[2J", "\x07")};
    facts.metadata = {tag(u"Title"_s, u"\x1B]0;title\x07"_s + QChar(0x9B))};
    QCOMPARE(infoText(u"a\n\x1B[31m.mp4"_s, facts),
             u"a\\u{0A}\\u{1B}[31m.mp4\n"
             "  Kind          video (a\\u{1B}b)\n"
             "  Size          640 x 360\n"
             "  Duration      00:00:02.00\n"
             "  Bit rate      936 kbit/s\n"
             "  File size     242 KB\n"
             "  Track 0\\u{1B} Video  h264\\u{0A}  \\u{1B}[2J  \\u{07}\n"
             "  Title         \\u{1B}]0;title\\u{07}\\u{9B}\n"_s);
}

TESSALY_TEST_MAIN(InfoTextTest)
#include "info_text_test.moc"
