#include "probe/track_records.h"
#include "support/test_case.h"

#include <cmath>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

// As after the first passes: a main video of 640 x 360.
FileProbe recorded(const QByteArray &streams)
{
    FileProbe probe;
    probe.jsonDictionary = JSON::fromBytes((R"({"streams":)" + streams + "}").toStdString());
    probe.videoWidth = 640;
    probe.videoHeight = 360;
    probe.videoRatio = 640.0 / 360.0;
    recordTracks(probe, u"/videos/a b.mp4"_s);
    return probe;
}

QString text(const Dictionary &track, const char *key)
{
    const std::string *value = track.at(key).string();
    return value ? QString::fromStdString(*value) : u"no text"_s;
}

} // namespace

class TrackRecordsTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void types_data();
    void types();
    void specialInfo_data();
    void specialInfo();
    void sizeSetAgain_data();
    void sizeSetAgain();
    void sizeSetAgainToNothing_data();
    void sizeSetAgainToNothing();
    void ratioIsNotFiniteForNoHeight();
    void nineKeys();
    void missingMembers();
    void streamThatIsNoObject();
    void oneRecordForEachStreamInOrder();
    void noStreams();
};

void TrackRecordsTest::types_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QString>("type");
    const auto row = [](const char *name, const char *stream, const char *type) {
        QTest::newRow(name) << QByteArray(stream) << QString::fromLatin1(type);
    };
    row("motion JPEG tagged jpeg",
        R"({"codec_type":"video","codec_name":"mjpeg","codec_tag_string":"jpeg","avg_frame_rate":"25/1"})",
        "Other");
    row("motion JPEG with another tag",
        R"({"codec_type":"video","codec_name":"mjpeg","codec_tag_string":"MJPG","avg_frame_rate":"25/1"})",
        "Video");
    row("another codec tagged jpeg",
        R"({"codec_type":"video","codec_name":"png","codec_tag_string":"jpeg","avg_frame_rate":"25/1"})",
        "Video");
    row("sound tagged jpeg", R"({"codec_type":"audio","codec_name":"mjpeg","codec_tag_string":"jpeg"})",
        "Audio");
    row("h264", R"({"codec_type":"video","codec_name":"h264","avg_frame_rate":"25/1"})", "Video");
    row("h264 without a frame rate", R"({"codec_type":"video","codec_name":"h264","avg_frame_rate":"0/0"})",
        "Video");
    row("theora without a frame rate",
        R"({"codec_type":"video","codec_name":"theora","avg_frame_rate":"0/0"})", "Video");
    row("wmv3 without a frame rate", R"({"codec_type":"video","codec_name":"wmv3","avg_frame_rate":"0/0"})",
        "Video");
    row("WMV3 without a frame rate", R"({"codec_type":"video","codec_name":"WMV3","avg_frame_rate":"0/0"})",
        "Video");
    row("H264 in capitals without a frame rate",
        R"({"codec_type":"video","codec_name":"H264","avg_frame_rate":"0/0"})", "Other");
    row("another codec with a frame rate",
        R"({"codec_type":"video","codec_name":"hevc","avg_frame_rate":"25/1"})", "Video");
    row("another codec, no frame rate said", R"({"codec_type":"video","codec_name":"hevc"})", "Video");
    row("another codec without a frame rate",
        R"({"codec_type":"video","codec_name":"wmv2","avg_frame_rate":"0/0"})", "Other");
    row("video without a codec", R"({"codec_type":"video","avg_frame_rate":"25/1"})", "Video");
    row("sound", R"({"codec_type":"audio","codec_name":"aac","avg_frame_rate":"0/0"})", "Audio");
    row("sound that is called h264", R"({"codec_type":"audio","codec_name":"h264"})", "Audio");
    row("subtitle", R"({"codec_type":"subtitle","codec_name":"mov_text","codec_tag_string":"tx3g"})",
        "Subtitle");
    row("text track for chapters",
        R"({"codec_type":"subtitle","codec_name":"mov_text","codec_tag_string":"text"})", "Other");
    row("subtitle without a codec", R"({"codec_type":"subtitle"})", "Other");
    row("attached JPEG",
        R"({"codec_type":"video","codec_name":"mjpeg","codec_tag_string":"[0][0][0][0]","avg_frame_rate":"0/0"})",
        "Poster");
    row("attached PNG",
        R"({"codec_type":"video","codec_name":"png","codec_tag_string":"[0][0][0][0]","avg_frame_rate":"0/0"})",
        "Poster");
    row("attached picture of another codec",
        R"({"codec_type":"video","codec_name":"bmp","codec_tag_string":"[0][0][0][0]","avg_frame_rate":"0/0"})",
        "Other");
    row("attached picture with a tag",
        R"({"codec_type":"video","codec_name":"png","codec_tag_string":"PNG1","avg_frame_rate":"0/0"})",
        "Other");
    row("a picture that is no video",
        R"({"codec_type":"data","codec_name":"png","codec_tag_string":"[0][0][0][0]"})", "Other");
    row("data", R"({"codec_type":"data","codec_name":"bin_data"})", "Other");
    row("no type", R"({"codec_name":"h264"})", "Other");
}

void TrackRecordsTest::types()
{
    QFETCH(QByteArray, stream);
    QTEST(QString::fromStdString(trackType(JSON::fromBytes(stream.toStdString()))), "type");
    const FileProbe probe = recorded('[' + stream + ']');
    QTEST(text(probe.tracksInfo.at(0), "trackType"), "type");
}

void TrackRecordsTest::specialInfo_data()
{
    QTest::addColumn<QByteArray>("streams");
    QTest::addColumn<QString>("info"); // of the last stream
    const auto row = [](const char *name, const char *streams, const char *info) {
        QTest::newRow(name) << QByteArray(streams) << QString::fromLatin1(info);
    };
    row("video: the size known for the file",
        R"([{"codec_type":"video","codec_name":"hevc","width":1,"height":2}])", "640x360");
    row("h264: its own size", R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080}])",
        "1920x1080");
    row("h264: as turned",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080,"tags":{"rotate":"90"}}])",
        "1080x1920");
    row("video behind h264: the size of that",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080},
            {"codec_type":"video","codec_name":"hevc","width":1,"height":2}])",
        "1920x1080");
    row("h264 without a width", R"([{"codec_type":"video","codec_name":"h264","height":1080}])", "?x1080");
    row("h264 without a height", R"([{"codec_type":"video","codec_name":"h264","width":1920}])", "1920x?");
    row("h264 without a size", R"([{"codec_type":"video","codec_name":"h264"}])", "");
    row("sound", R"j([{"codec_type":"audio","channel_layout":"5.1(side)"}])j", "5.1(side)");
    row("sound without a layout", R"([{"codec_type":"audio","channels":6}])", "");
    row("subtitle", R"([{"codec_type":"subtitle","codec_name":"subrip","tags":{"language":"hun"}}])", "hun");
    row("subtitle without a language", R"([{"codec_type":"subtitle","codec_name":"subrip"}])", "");
    row("cover picture: its own size",
        R"([{"codec_type":"video","codec_name":"png","codec_tag_string":"[0][0][0][0]",
             "avg_frame_rate":"0/0","width":500,"height":400}])",
        "500x400");
    row("cover picture: size as text",
        R"([{"codec_type":"video","codec_name":"png","codec_tag_string":"[0][0][0][0]",
             "avg_frame_rate":"0/0","width":"500","height":"400"}])",
        "500x400");
    row("other", R"([{"codec_type":"data","codec_tag_string":"mebx"}])", "mebx");
    row("motion JPEG tagged jpeg",
        R"([{"codec_type":"video","codec_name":"mjpeg","codec_tag_string":"jpeg","width":1,"height":2}])",
        "jpeg");
}

void TrackRecordsTest::specialInfo()
{
    QFETCH(QByteArray, streams);
    const FileProbe probe = recorded(streams);
    QTEST(text(probe.tracksInfo.back(), "trackSpecialInfo"), "info");
}

void TrackRecordsTest::sizeSetAgain_data()
{
    QTest::addColumn<QByteArray>("streams");
    QTest::addColumn<qint64>("width");
    QTest::addColumn<qint64>("height");
    const auto row = [](const char *name, const char *streams, qint64 width, qint64 height) {
        QTest::newRow(name) << QByteArray(streams) << width << height;
    };
    row("h264", R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080}])", 1920, 1080);
    row("theora", R"([{"codec_type":"video","codec_name":"theora","width":1920,"height":1080}])", 1920, 1080);
    row("wmv3", R"([{"codec_type":"video","codec_name":"wmv3","width":1920,"height":1080}])", 1920, 1080);
    row("WMV3", R"([{"codec_type":"video","codec_name":"WMV3","width":1920,"height":1080}])", 1920, 1080);
    row("h264 without a frame rate",
        R"([{"codec_type":"video","codec_name":"h264","avg_frame_rate":"0/0","width":1920,"height":1080}])",
        1920, 1080);
    row("turned by 90",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080,"tags":{"rotate":"90"}}])",
        1080, 1920);
    row("turned by 270",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080,"tags":{"rotate":"270"}}])",
        1080, 1920);
    row("turned by 180",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080,"tags":{"rotate":"180"}}])",
        1920, 1080);
    row("turned by a number",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080,"tags":{"rotate":90}}])",
        1920, 1080);
    row("the last of two",
        R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":1080},
            {"codec_type":"video","codec_name":"theora","width":320,"height":240}])",
        320, 240);
    row("another codec sets nothing",
        R"([{"codec_type":"video","codec_name":"hevc","width":1920,"height":1080}])", 640, 360);
    row("sound that is called h264 sets nothing",
        R"([{"codec_type":"audio","codec_name":"h264","width":1920,"height":1080}])", 640, 360);
    row("H264 in capitals sets nothing",
        R"([{"codec_type":"video","codec_name":"H264","width":1920,"height":1080}])", 640, 360);
}

void TrackRecordsTest::sizeSetAgain()
{
    QFETCH(QByteArray, streams);
    QFETCH(qint64, width);
    QFETCH(qint64, height);
    const FileProbe probe = recorded(streams);
    QCOMPARE(probe.videoWidth, std::optional(width));
    QCOMPARE(probe.videoHeight, std::optional(height));
    QCOMPARE(probe.videoRatio, std::optional(static_cast<double>(width) / static_cast<double>(height)));
}

void TrackRecordsTest::sizeSetAgainToNothing_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<bool>("hasWidth");
    QTest::addColumn<bool>("hasHeight");
    const auto row = [](const char *name, const char *members, bool hasWidth, bool hasHeight) {
        QTest::newRow(name) << QByteArray(R"({"codec_type":"video","codec_name":"h264")") + members + '}'
                            << hasWidth << hasHeight;
    };
    row("no size", "", false, false);
    row("no width", R"(,"height":1080)", false, true);
    row("no height", R"(,"width":1920)", true, false);
    row("turned, no width", R"(,"height":1080,"tags":{"rotate":"90"})", true, false);
    row("a text is no size here", R"(,"width":"1920","height":"1080")", false, false);
}

void TrackRecordsTest::sizeSetAgainToNothing()
{
    QFETCH(QByteArray, stream);
    const FileProbe probe = recorded('[' + stream + ']');
    QTEST(probe.videoWidth.has_value(), "hasWidth");
    QTEST(probe.videoHeight.has_value(), "hasHeight");
    QVERIFY(!probe.videoRatio);
    QCOMPARE(probe.tracksInfo.size(), std::size_t{1});
}

void TrackRecordsTest::ratioIsNotFiniteForNoHeight()
{
    const FileProbe infinite =
        recorded(R"([{"codec_type":"video","codec_name":"h264","width":1920,"height":0}])");
    QVERIFY(infinite.videoRatio && std::isinf(*infinite.videoRatio));
    const FileProbe none = recorded(R"([{"codec_type":"video","codec_name":"h264","width":0,"height":0}])");
    QVERIFY(none.videoRatio && std::isnan(*none.videoRatio));
}

void TrackRecordsTest::nineKeys()
{
    const QByteArray stream = R"({"index":3,"codec_type":"audio","codec_name":"aac","channel_layout":"stereo",
        "duration":"3725.504","tags":{"language":"eng"}})";
    const FileProbe probe = recorded('[' + stream + ']');
    const Dictionary expected{
        {"trackType", "Audio"},
        {"trackCodec", "aac"},
        {"trackID", "3"},
        {"trackSpecialInfo", "stereo"},
        {"trackPresentInfile", "/videos/a b.mp4"},
        {"trackDuration", 3725.504},
        {"trackDurationHuman", "01:02:05.50"},
        {"trackLanguage", "eng"},
        {"trackDictionary", JSON::fromBytes(stream.toStdString()).object()},
    };
    QCOMPARE(probe.tracksInfo.size(), std::size_t{1});
    QVERIFY(probe.tracksInfo[0] == expected);
    QCOMPARE(probe.tracksInfo[0].at("trackDuration").number()->origin(), Number::Origin::real);
}

void TrackRecordsTest::missingMembers()
{
    const FileProbe probe = recorded("[{}]");
    const Dictionary expected{
        {"trackType", "Other"},
        {"trackCodec", ""},
        {"trackID", ""},
        {"trackSpecialInfo", ""},
        {"trackPresentInfile", "/videos/a b.mp4"},
        {"trackDuration", 0.0},
        {"trackDurationHuman", "00:00:00.00"},
        {"trackLanguage", ""},
        {"trackDictionary", Dictionary()},
    };
    QCOMPARE(probe.tracksInfo.size(), std::size_t{1});
    QVERIFY(probe.tracksInfo[0] == expected);
}

void TrackRecordsTest::streamThatIsNoObject()
{
    const FileProbe probe = recorded(R"(["video"])");
    QCOMPARE(probe.tracksInfo.size(), std::size_t{1});
    QCOMPARE(text(probe.tracksInfo[0], "trackType"), u"Other"_s);
    QCOMPARE(probe.tracksInfo[0].at("trackDictionary").kind(), Object::Kind::null);
}

void TrackRecordsTest::oneRecordForEachStreamInOrder()
{
    const FileProbe probe = recorded(R"([
        {"index":0,"codec_type":"video","codec_name":"h264","width":1920,"height":1080},
        {"index":1,"codec_type":"audio","codec_name":"aac"},
        {"index":2,"codec_type":"subtitle","codec_name":"mov_text","codec_tag_string":"tx3g"}])");
    QStringList found;
    for (const Dictionary &track : probe.tracksInfo)
        found += text(track, "trackID") + u' ' + text(track, "trackType");
    QCOMPARE(found, (QStringList{u"0 Video"_s, u"1 Audio"_s, u"2 Subtitle"_s}));
}

void TrackRecordsTest::noStreams()
{
    QVERIFY(recorded("[]").tracksInfo.empty());
    QVERIFY(recorded("{}").tracksInfo.empty());
}

TESSALY_TEST_MAIN(TrackRecordsTest)
#include "track_records_test.moc"
