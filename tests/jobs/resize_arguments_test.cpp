#include "jobs/resize_arguments.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "support/fake_tools.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QTemporaryDir>

#include <limits>
#include <unistd.h>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

class TestResizeArguments : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void buildsTheList_data();
    void buildsTheList();
    void passesTheSizeOn_data();
    void passesTheSizeOn();
    void printsOneLine();
    void resizesForReal_data();
    void resizesForReal();
};

void TestResizeArguments::buildsTheList_data()
{
    QTest::addColumn<bool>("hasSound");
    QTest::addColumn<bool>("hasManyChannels");
    QTest::addColumn<QStringList>("downmix");
    QTest::newRow("silent") << false << false << QStringList();
    QTest::newRow("stereo") << true << false << QStringList();
    QTest::newRow("six channels") << true << true << QStringList{u"-ac"_s, u"2"_s};
    QTest::newRow("channels without sound") << false << true << QStringList();
}

void TestResizeArguments::buildsTheList()
{
    QFETCH(bool, hasSound);
    QFETCH(bool, hasManyChannels);
    QFETCH(QStringList, downmix);
    FileProbe probe;
    probe.hasAudioTrack = hasSound;
    probe.hasAudioTrackWhichHasMoreThanTwoChannels = hasManyChannels;
    const QStringList expected =
        QStringList{u"-i"_s,
                    u"/v/-in 'a'.mov"_s,
                    u"-sn"_s,
                    u"-dn"_s,
                    u"-map_chapters"_s,
                    u"-1"_s,
                    u"-map_metadata"_s,
                    u"-1"_s,
                    u"-pix_fmt"_s,
                    u"yuv420p"_s,
                    u"-avoid_negative_ts"_s,
                    u"1"_s} +
        downmix + QStringList{u"-vf"_s, u"scale=1280:720,setsar=1:1"_s, u"-y"_s, u"/v/out %d.mp4"_s};
    QCOMPARE(buildResizeArguments(probe, u"/v/-in 'a'.mov"_s, u"/v/out %d.mp4"_s, 1280, 720), expected);
}

void TestResizeArguments::passesTheSizeOn_data()
{
    QTest::addColumn<qint64>("width");
    QTest::addColumn<qint64>("height");
    QTest::addColumn<QString>("filter");
    QTest::newRow("odd") << qint64(853) << qint64(481) << u"scale=853:481,setsar=1:1"_s;
    QTest::newRow("zero") << qint64(0) << qint64(0) << u"scale=0:0,setsar=1:1"_s;
    QTest::newRow("negative") << qint64(-3) << qint64(-4) << u"scale=-3:-4,setsar=1:1"_s;
    QTest::newRow("largest") << std::numeric_limits<qint64>::max() << qint64(1'000'000'000)
                             << u"scale=9223372036854775807:1000000000,setsar=1:1"_s;
}

void TestResizeArguments::passesTheSizeOn()
{
    QFETCH(qint64, width);
    QFETCH(qint64, height);
    const QStringList arguments = buildResizeArguments({}, u"/in"_s, u"/out.mp4"_s, width, height);
    QTEST(arguments.value(arguments.indexOf(u"-vf"_s) + 1), "filter");
}

void TestResizeArguments::printsOneLine()
{
    const QByteArray printed = test::writtenTo(
        STDOUT_FILENO, [] { buildResizeArguments({}, u"/it's \"new\".mov"_s, u"/a\nb.mp4"_s, 2, 4); });
    const QByteArray expected =
        R"(["-i", "/it\'s \"new\".mov", "-sn", "-dn", "-map_chapters", "-1", "-map_metadata", "-1", )"
        R"("-pix_fmt", "yuv420p", "-avoid_negative_ts", "1", "-vf", "scale=2:4,setsar=1:1", "-y", )"
        R"("/a\nb.mp4"])"
        "\n";
    QCOMPARE(printed, expected);
}

void TestResizeArguments::resizesForReal_data()
{
    QTest::addColumn<QString>("clip");
    QTest::addColumn<bool>("hasSound");
    QTest::newRow("plain") << u"plain.mp4"_s << true;
    QTest::newRow("silent") << u"hd.mp4"_s << false;
    QTest::newRow("six channels become two") << u"surround.mkv"_s << true;
    QTest::newRow("upright phone video") << u"portrait.mp4"_s << true;
}

void TestResizeArguments::resizesForReal()
{
    QFETCH(QString, clip);
    QFETCH(bool, hasSound);
    test::FakeTools tools;
    tools.useRealTool(u"sniffer"_s);
    tools.useRealTool(u"creator"_s);
    tools.confine();
    const QTemporaryDir folder;
    const QString input = QStringLiteral(TESSALY_MEDIA_FOLDER "/") + clip;
    const QString output = folder.filePath(u"out.mp4"_s);
    const auto arguments = buildResizeArguments(FileProbe(input), input, output, 130, 98);
    QVERIFY(runToEnd(pathForResource(u"creator"_s).value(), QStringList{u"-v"_s, u"error"_s} + arguments, {},
                     placesForFile(output))
                .succeeded());
    const FileProbe made(output);
    QVERIFY(made.hasVideoTrack);
    QCOMPARE(made.videoWidth, 130);
    QCOMPARE(made.videoHeight, 98);
    QCOMPARE(made.hasAudioTrack, hasSound);
    QVERIFY(!made.hasAudioTrackWhichHasMoreThanTwoChannels);
    QVERIFY(!made.hasSubtitleTrack);
}

} // namespace

TESSALY_TEST_MAIN(TestResizeArguments)
#include "resize_arguments_test.moc"
