#include "probe/facts_text.h"
#include "support/test_case.h"

using namespace tessaly;
using namespace Qt::StringLiterals;

class FactsTextTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void tellsInWords_data();
    void tellsInWords();
    void tellsLengths_data();
    void tellsLengths();
};

void FactsTextTest::tellsInWords_data()
{
    QTest::addColumn<QByteArray>("streams");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QByteArray &streams, const QString &text) {
        QTest::newRow(name) << streams << text;
    };
    const QByteArray video = R"({"codec_type":"video","codec_name":"h264","avg_frame_rate":"30/1"})";
    const auto sound = [](const char *codec, const char *channels) {
        return QByteArray(R"({"codec_type":"audio","codec_name":")") + codec + R"(","channels":)" + channels +
               '}';
    };
    row("picture and sound", video + ',' + sound("aac", "1"),
        u"35 s - H.264 - 30 frames/s - AAC, mono - 19.5 MB"_s);
    row("no sound", video, u"35 s - H.264 - 30 frames/s - 19.5 MB"_s);
    row("stereo", video + ',' + sound("opus", "2"), u"35 s - H.264 - 30 frames/s - Opus, stereo - 19.5 MB"_s);
    row("six channels", video + ',' + sound("ac3", "6"),
        u"35 s - H.264 - 30 frames/s - AC-3, 6 channels - 19.5 MB"_s);
    row("channels not known", video + ',' + sound("mp3", "0"),
        u"35 s - H.264 - 30 frames/s - MP3 - 19.5 MB"_s);
    row("plain samples", video + ',' + sound("pcm_s16le", "2"),
        u"35 s - H.264 - 30 frames/s - PCM, stereo - 19.5 MB"_s);
    row("the first sound counts", video + ',' + sound("aac", "2") + ',' + sound("ac3", "6"),
        u"35 s - H.264 - 30 frames/s - AAC, stereo - 19.5 MB"_s);
    row("a rate with a fraction",
        R"({"codec_type":"video","codec_name":"hevc","avg_frame_rate":"30000/1001"})",
        u"35 s - H.265 - 29.97 frames/s - 19.5 MB"_s);
    row("a codec without another name",
        R"({"codec_type":"video","codec_name":"snow","avg_frame_rate":"25/1"})",
        u"35 s - snow - 25 frames/s - 19.5 MB"_s);
    row("a rate that is none", R"({"codec_type":"video","codec_name":"vp9","avg_frame_rate":"1/0"})",
        u"35 s - VP9 - 19.5 MB"_s);
    row("a cover picture is passed over",
        R"({"codec_type":"video","codec_name":"png","avg_frame_rate":"0/0"},)" + video,
        u"35 s - H.264 - 30 frames/s - 19.5 MB"_s);
    row("nothing known", {}, u"35 s - 19.5 MB"_s);
}

void FactsTextTest::tellsInWords()
{
    QFETCH(QByteArray, streams);
    FileProbe probe;
    probe.jsonDictionary = JSON::fromBytes("{\"streams\":[" + streams.toStdString() + "]}");
    probe.duration = 35;
    probe.fileSizeHuman = u"19.5 MB"_s;
    QTEST(factsText(probe), "text");
}

void FactsTextTest::tellsLengths_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    const auto row = [](double seconds, const char *text) {
        QTest::addRow("%g", seconds) << seconds << QString::fromLatin1(text);
    };
    row(0.04, "0 s");
    row(2, "2 s");
    row(2.44, "2.4 s");
    row(9.96, "10 s");
    row(59.4, "59 s");
    row(59.6, "1 min");
    row(65, "1 min 5 s");
    row(3599, "59 min 59 s");
    row(3600, "1 h");
    row(7380, "2 h 3 min");
    row(360000, "100 h");
    row(0, "");
    row(-1, "");
    row(qInf(), "");
    row(qQNaN(), "");
    row(1e300, "");
}

void FactsTextTest::tellsLengths()
{
    QFETCH(double, seconds);
    FileProbe probe;
    probe.duration = seconds;
    QTEST(factsText(probe), "text");
}

TESSALY_TEST_MAIN(FactsTextTest)
#include "facts_text_test.moc"
