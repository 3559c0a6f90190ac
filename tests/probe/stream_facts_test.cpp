#include "probe/stream_facts.h"
#include "support/test_case.h"

using namespace tessaly;

namespace {

std::vector<JSON> streams(const QByteArray &text)
{
    return JSON::fromBytes(text.toStdString()).arrayValue();
}

} // namespace

class StreamFactsTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void mainVideo_data();
    void mainVideo();
    void noMainVideo_data();
    void noMainVideo();
    void encryption_data();
    void encryption();
    void audio_data();
    void audio();
    void channels_data();
    void channels();
    void subtitles_data();
    void subtitles();
};

void StreamFactsTest::mainVideo_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<qint64>("width");
    QTest::addColumn<qint64>("height");
    QTest::addColumn<qint64>("rotate");
    const auto row = [](const char *name, const char *list, qint64 width, qint64 height, qint64 rotate = 0) {
        QTest::newRow(name) << QByteArray(list) << width << height << rotate;
    };
    const auto turned = [&row](const char *name, const char *rotate, qint64 width, qint64 height,
                               qint64 value) {
        const QByteArray list = QByteArray(R"([{"codec_type":"video","width":1920,"height":1080,)") +
                                R"("tags":{"rotate":)" + rotate + "}}]";
        row(name, list.constData(), width, height, value);
    };
    row("plain", R"([{"codec_type":"video","avg_frame_rate":"25/1","width":640,"height":360}])", 640, 360);
    row("without a frame rate", R"([{"codec_type":"video","width":640,"height":360}])", 640, 360);
    row("behind sound and data",
        R"([{"codec_type":"audio","width":1,"height":2},{"codec_type":"data","width":3,"height":4},
            {"codec_type":"video","width":640,"height":360}])",
        640, 360);
    row("behind a cover picture",
        R"([{"codec_type":"video","avg_frame_rate":"0/0","width":500,"height":400},
            {"codec_type":"video","avg_frame_rate":"25/1","width":640,"height":360}])",
        640, 360);
    row("the first of two",
        R"([{"codec_type":"video","width":640,"height":360},{"codec_type":"video","width":1,"height":2}])",
        640, 360);
    row("size as text", R"([{"codec_type":"video","width":"640","height":"360"}])", 640, 360);
    row("without a size", R"([{"codec_type":"video"}])", 0, 0);
    row("without a width", R"([{"codec_type":"video","height":360}])", 0, 360);
    row("without a height", R"([{"codec_type":"video","width":640}])", 640, 0);
    row("a turned one without a width", R"([{"codec_type":"video","height":360,"tags":{"rotate":"90"}}])",
        360, 0, 90);
    row("the turn of another stream does not count",
        R"([{"codec_type":"video","width":640,"height":360},
            {"codec_type":"video","width":1,"height":2,"tags":{"rotate":"90"}}])",
        640, 360);
    turned("turned by 90", R"("90")", 1080, 1920, 90);
    turned("turned by 270", R"("270")", 1080, 1920, 270);
    turned("turned by 180", R"("180")", 1920, 1080, 180);
    turned("turned by -90", R"("-90")", 1920, 1080, -90);
    turned("turned by 0", R"("0")", 1920, 1080, 0);
    turned("a number is no tag, but a value", "90", 1920, 1080, 90);
    turned("other text", R"("left")", 1920, 1080, 0);
    turned("a text that begins with 90", R"("90.0")", 1920, 1080, 90);
}

void StreamFactsTest::mainVideo()
{
    QFETCH(QByteArray, list);
    const std::optional<MainVideo> video = tessaly::mainVideo(streams(list));
    QVERIFY(video);
    QTEST(qint64{video->width}, "width");
    QTEST(qint64{video->height}, "height");
    QTEST(qint64{video->rotate}, "rotate");
}

void StreamFactsTest::noMainVideo_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("no streams") << QByteArray("[]");
    QTest::newRow("sound only") << QByteArray(R"([{"codec_type":"audio","width":640,"height":360}])");
    QTest::newRow("cover pictures only")
        << QByteArray(R"([{"codec_type":"video","avg_frame_rate":"0/0","width":500,"height":400}])");
    QTest::newRow("without a type") << QByteArray(R"([{"width":640,"height":360}])");
    QTest::newRow("type in capitals") << QByteArray(R"([{"codec_type":"VIDEO","width":640,"height":360}])");
    QTest::newRow("no objects") << QByteArray(R"([1,"video",null,[]])");
}

void StreamFactsTest::noMainVideo()
{
    QFETCH(QByteArray, list);
    QVERIFY(!tessaly::mainVideo(streams(list)));
}

void StreamFactsTest::encryption_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("encrypted");
    QTest::newRow("video with a codec")
        << QByteArray(R"([{"codec_type":"video","codec_name":"h264"}])") << false;
    QTest::newRow("video without a codec") << QByteArray(R"([{"codec_type":"video"}])") << true;
    QTest::newRow("video whose codec is null")
        << QByteArray(R"([{"codec_type":"video","codec_name":null}])") << true;
    QTest::newRow("video whose codec is an empty text")
        << QByteArray(R"([{"codec_type":"video","codec_name":""}])") << false;
    QTest::newRow("second video without a codec")
        << QByteArray(R"([{"codec_type":"video","codec_name":"h264"},{"codec_type":"video"}])") << true;
    QTest::newRow("a still without a codec")
        << QByteArray(R"([{"codec_type":"video","avg_frame_rate":"0/0"}])") << true;
    QTest::newRow("sound without a codec") << QByteArray(R"([{"codec_type":"audio"}])") << false;
    QTest::newRow("no streams") << QByteArray("[]") << false;
}

void StreamFactsTest::encryption()
{
    QFETCH(QByteArray, list);
    QTEST(hasUnnamedVideoCodec(streams(list)), "encrypted");
}

void StreamFactsTest::audio_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("audible");
    QTest::newRow("behind a video") << QByteArray(R"([{"codec_type":"video"},{"codec_type":"audio"}])")
                                    << true;
    QTest::newRow("video only") << QByteArray(R"([{"codec_type":"video","channels":2}])") << false;
    QTest::newRow("no streams") << QByteArray("[]") << false;
}

void StreamFactsTest::audio()
{
    QFETCH(QByteArray, list);
    QTEST(hasAudio(streams(list)), "audible");
}

void StreamFactsTest::channels_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("many");
    QTest::newRow("none said") << QByteArray(R"([{"codec_type":"audio"}])") << false;
    QTest::newRow("0") << QByteArray(R"([{"codec_type":"audio","channels":0}])") << false;
    QTest::newRow("exactly 2") << QByteArray(R"([{"codec_type":"audio","channels":2}])") << false;
    QTest::newRow("3") << QByteArray(R"([{"codec_type":"audio","channels":3}])") << true;
    QTest::newRow("2 and 6") << QByteArray(R"([{"channels":2},{"channels":6}])") << true;
    QTest::newRow("6 and 2") << QByteArray(R"([{"channels":6},{"channels":2}])") << true;
    QTest::newRow("of any type of stream") << QByteArray(R"([{"codec_type":"data","channels":8}])") << true;
    QTest::newRow("null") << QByteArray(R"([{"channels":null}])") << false;
    QTest::newRow("a text reads as none") << QByteArray(R"([{"channels":"6"}])") << false;
    QTest::newRow("a text does not hide the next")
        << QByteArray(R"([{"channels":"x"},{"channels":6}])") << true;
}

void StreamFactsTest::channels()
{
    QFETCH(QByteArray, list);
    QTEST(hasMoreThanTwoChannels(streams(list)), "many");
}

void StreamFactsTest::subtitles_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("subtitled");
    const auto row = [](const char *name, const char *list, bool subtitled) {
        QTest::newRow(name) << QByteArray(list) << subtitled;
    };
    row("a subtitle", R"([{"codec_type":"subtitle","codec_tag_string":"tx3g","codec_name":"mov_text"}])",
        true);
    row("without a tag", R"([{"codec_type":"subtitle","codec_name":"subrip"}])", true);
    row("a text track for chapters",
        R"([{"codec_type":"subtitle","codec_tag_string":"text","codec_name":"mov_text"}])", false);
    row("behind a text track",
        R"([{"codec_type":"subtitle","codec_tag_string":"text","codec_name":"mov_text"},
            {"codec_type":"subtitle","codec_tag_string":"tx3g","codec_name":"mov_text"}])",
        true);
    row("without a codec", R"([{"codec_type":"subtitle","codec_tag_string":"[0][0][0][0]"}])", false);
    row("whose codec is null", R"([{"codec_type":"subtitle","codec_name":null}])", false);
    row("of another type", R"([{"codec_type":"data","codec_tag_string":"tx3g","codec_name":"mov_text"}])",
        false);
    row("no streams", "[]", false);
}

void StreamFactsTest::subtitles()
{
    QFETCH(QByteArray, list);
    QTEST(hasSubtitles(streams(list)), "subtitled");
}

TESSALY_TEST_MAIN(StreamFactsTest)
#include "stream_facts_test.moc"
