#include "probe/track_lengths.h"
#include "support/test_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

using Length = std::optional<double>;

const QByteArray video = R"({"codec_type":"video","avg_frame_rate":"25/1","start_time":"0.0")";
const QByteArray sound = R"({"codec_type":"audio","avg_frame_rate":"0/0","start_time":"0.0")";
const QByteArray subtitle = R"({"codec_type":"subtitle","start_time":"0.0","duration":"99.0"})";

QByteArray report(const QByteArray &streams, const QByteArray &format = R"("format_name":"matroska,webm")")
{
    return R"({"streams":[)" + streams + R"(],"format":{)" + format + "}}";
}

QByteArray tagged(const QByteArray &track, const QByteArray &tag, const QByteArray &text)
{
    return track + R"(,"tags":{")" + tag + R"(":")" + text + R"("}})";
}

QByteArray late(const QByteArray &track, const QByteArray &start)
{
    return QByteArray(track).replace(R"("start_time":"0.0")", R"("start_time":)" + start);
}

TrackLengths lengthsOf(const QByteArray &report)
{
    return keptTrackLengths(FileProbe::fromReport(u"/a.mkv"_s, report));
}

} // namespace

class TrackLengthsTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void picture_data();
    void picture();
    void sound_data();
    void sound();
    void whole_data();
    void whole();
    void pictures_data();
    void pictures();
    void nothingOfNoReport();
};

void TrackLengthsTest::picture_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<Length>("seconds");
    const auto row = [](const char *name, const QByteArray &streams, Length seconds,
                        const QByteArray &format = R"("format_name":"matroska,webm")") {
        QTest::newRow(name) << report(streams, format) << seconds;
    };
    const QByteArray mp4 = R"("format_name":"mov,mp4,m4a,3gp,3g2,mj2")";

    row("the stream's own duration", video + R"(,"duration":"12.5"})", 12.5);
    row("a duration leaves the lead out", late(video, R"("5.0")") + R"(,"duration":"4.0"})", 4.0);
    row("a duration comes before a tag", tagged(video + R"(,"duration":"4.0")", "DURATION", "00:00:09.0"),
        4.0);
    row("a tag", tagged(video, "DURATION", "01:02:10.010000000"), 3730.01);
    row("a tag with a language", tagged(video, "DURATION-eng", "00:00:02.000000000"), 2.0);
    row("a tag without a language comes first",
        video + R"(,"tags":{"DURATION-eng":"00:00:09.0","DURATION":"00:00:02.0"}})", 2.0);
    row("a tag is the time of the end", tagged(late(video, R"("5.0")"), "DURATION", "00:00:09.000000000"),
        4.0);
    row("a start before 0 adds nothing", tagged(late(video, R"("-1.0")"), "DURATION", "00:00:09.0"), 9.0);
    row("a tag that ends in its lead", tagged(late(video, R"("5.0")"), "DURATION", "00:00:04.0"), {});
    row("a tag of two parts", tagged(video, "DURATION", "00:09.0"), {});
    row("a tag of words", tagged(video, "DURATION", "a:b:c"), {});
    row("a tag of infinite length", tagged(video, "DURATION", "00:00:inf"), {});
    row("a tag below 0", tagged(video, "DURATION", "00:-1:99"), {});
    row("without any", video + "}", {});
    row("a duration of 0", video + R"(,"duration":"0.000000"})", {});
    row("a duration below 0", video + R"(,"duration":"-3.0"})", {});
    row("a duration of words", video + R"(,"duration":"N/A"})", {});
    row("without a start the duration is the container's",
        R"({"codec_type":"video","avg_frame_rate":"25/1","duration":"12.5"})", {});
    row("fragments of an MP4 count their lead", late(video, R"("10.0")") + R"(,"duration":"17.25"})", 7.25,
        mp4);
    row("another MP4 does not", late(video, R"("10.0")") + R"(,"duration":"4.0","nb_frames":"120"})", 4.0,
        mp4);
    row("a length that the MP4 does not know",
        video + R"(,"duration_ts":4294967295,"duration":"143165.576500"})", {}, mp4);
    row("of the first moving pictures, not of a cover or a larger track",
        R"({"codec_type":"video","avg_frame_rate":"0/0","start_time":"0.0","duration":"99.0"},)" + video +
            R"(,"width":10,"duration":"2.1"},)" + video + R"(,"width":20,"duration":"0.4"})",
        2.1);
    row("sound only", ::sound + R"(,"duration":"12.5"})", {});
}

void TrackLengthsTest::picture()
{
    QFETCH(QByteArray, report);
    QTEST(lengthsOf(report).picture, "seconds");
}

void TrackLengthsTest::sound_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<Length>("seconds");
    const auto track = [](const char *length, const char *channels, const char *isDefault) {
        return ::sound + R"(,"duration":")" + length + R"(","channels":)" + channels +
               R"(,"disposition":{"default":)" + isDefault + "}}";
    };
    const auto row = [](const char *name, const QByteArray &streams, Length seconds) {
        QTest::newRow(name) << report(streams) << seconds;
    };
    row("the only one", video + R"(,"duration":"12.5"},)" + track("11.5", "2", "0"), 11.5);
    row("by its tag", tagged(late(::sound, R"("0.5")"), "DURATION-eng", "00:00:02.0"), 1.5);
    row("the first of two alike", track("11.5", "2", "0") + "," + track("99.0", "2", "0"), 11.5);
    row("the one with the most channels", track("99.0", "2", "0") + "," + track("11.5", "6", "0"), 11.5);
    row("a default one before more channels", track("99.0", "6", "0") + "," + track("11.5", "1", "1"), 11.5);
    row("not known, though another is", ::sound + R"(,"channels":6},)" + track("99.0", "2", "0"), {});
    row("silent", video + R"(,"duration":"12.5"})", {});
}

void TrackLengthsTest::sound()
{
    QFETCH(QByteArray, report);
    QTEST(lengthsOf(report).sound, "seconds");
}

void TrackLengthsTest::whole_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<Length>("seconds");
    const auto row = [](const char *name, const QByteArray &streams, const QByteArray &format,
                        Length seconds) { QTest::newRow(name) << report(streams, format) << seconds; };
    const QByteArray webm = R"("format_name":"matroska,webm","start_time":"1.5","duration":"9.0")";
    const QByteArray both = video + "}," + ::sound + "}";

    row("picture longer than sound", video + R"(,"duration":"12.5"},)" + ::sound + R"(,"duration":"11.0"})",
        webm, 12.5);
    row("sound longer than picture", video + R"(,"duration":"2.5"},)" + ::sound + R"(,"duration":"11.0"})",
        webm, 11.0);
    row("sound unknown", video + R"(,"duration":"2.5"},)" + ::sound + "}", webm, 2.5);
    row("picture unknown", video + "}," + ::sound + R"(,"duration":"2.5"})", webm, 2.5);
    row("both unknown: the container without its lead", both, webm, 7.5);
    row("a container that starts before 0", both, R"("start_time":"-1.5","duration":"9.0")", 9.0);
    row("a container with subtitles", both + "," + subtitle, webm, {});
    row("a container with data", both + R"(,{"codec_type":"data"})", webm, {});
    row("a container that ends in its lead", both, R"("start_time":"9.0","duration":"4.0")", {});
    row("a container without a duration", both, R"("format_name":"matroska,webm")", {});
    row("an MP4 whose tracks do not know", both,
        R"("format_name":"mov,mp4,m4a,3gp,3g2,mj2","start_time":"0.0","duration":"143165.6")", {});
}

void TrackLengthsTest::whole()
{
    QFETCH(QByteArray, report);
    QTEST(lengthsOf(report).whole, "seconds");
}

void TrackLengthsTest::pictures_data()
{
    QTest::addColumn<QByteArray>("report");
    QTest::addColumn<std::optional<qint64>>("count");
    const auto row = [](const char *name, const QByteArray &streams, std::optional<qint64> count) {
        QTest::newRow(name) << report(streams) << count;
    };
    row("as text", video + R"(,"nb_frames":"58"},)" + video + R"(,"nb_frames":"1"})", 58);
    row("as a number", video + R"(,"nb_frames":58})", 58);
    row("not known", video + "}", {});
    row("none", video + R"(,"nb_frames":"0"})", {});
    row("words", video + R"(,"nb_frames":"N/A"})", {});
    row("of sound", ::sound + R"(,"nb_frames":"300"})", {});
}

void TrackLengthsTest::pictures()
{
    QFETCH(QByteArray, report);
    QTEST(lengthsOf(report).pictures, "count");
}

void TrackLengthsTest::nothingOfNoReport()
{
    const TrackLengths lengths = keptTrackLengths(FileProbe());
    QVERIFY(!lengths.picture && !lengths.sound && !lengths.whole && !lengths.pictures);
}

TESSALY_TEST_MAIN(TrackLengthsTest)
#include "track_lengths_test.moc"
