// A conversion from its arguments to its report, with a converter that does as it is told.
#include "app/resize_stage.h"
#include "support/seen.h"

#include <cmath>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestResize : public TestCase, private ResizeStage
{
    Q_OBJECT

private:
    // The converter waits until the test has seen what it was to see.
    QStringList untilSeen(int step) const { return {u"wait-for-file"_s, app->folder.filePath(nameOf(step))}; }
    void haveSeen(int step) const { app->makeFile(nameOf(step)); }
    static QString nameOf(int step) { return u"seen %1"_s.arg(step); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setUp();
    }
    void cleanup() { tearDown(); }

    void theConverterGetsExactlyTheseArguments_data()
    {
        QTest::addColumn<QByteArray>("moreStreams");
        QTest::addColumn<bool>("mixedDown");
        QTest::newRow("silent") << QByteArray() << false;
        QTest::newRow("stereo") << QByteArray(R"(, {"codec_type": "audio", "channels": 2})") << false;
        QTest::newRow("six channels") << QByteArray(R"(, {"codec_type": "audio", "channels": 6})") << true;
        QTest::newRow("many channels, no sound")
            << QByteArray(R"(, {"codec_type": "data", "channels": 6})") << false;
    }
    void theConverterGetsExactlyTheseArguments()
    {
        QFETCH(QByteArray, moreStreams);
        QFETCH(bool, mixedDown);
        open(moreStreams);
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QStringList expected{u"-i"_s,
                             app->folder.filePath(u"clip.mov"_s),
                             u"-sn"_s,
                             u"-dn"_s,
                             u"-map_chapters"_s,
                             u"-1"_s,
                             u"-map_metadata"_s,
                             u"-1"_s,
                             u"-pix_fmt"_s,
                             u"yuv420p"_s,
                             u"-avoid_negative_ts"_s,
                             u"1"_s};
        if (mixedDown) expected += {u"-ac"_s, u"2"_s};
        expected += {u"-vf"_s, u"scale=640:360,setsar=1:1"_s, u"-y"_s, output()};
        QCOMPARE(app->tools.calls(u"creator"_s), QList<QStringList>{expected});
    }

    void aFinishedJobIsReported()
    {
        open();
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QCOMPARE(app->alertText(), u"Video Resized Successfully!\nInput Resolution: 640 x 360 (Zero KB)\n"
                                   "Output Resolution: 640 x 360 (5 bytes)"_s);
        QCOMPARE(app->alertButtons(),
                 (QStringList{u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s}));
        QCOMPARE(app->tools.calls(u"sniffer"_s).size(), 2); // the output is probed twice
        QCOMPARE(app->tools.calls(u"sniffer"_s).first().last(), output());
        QVERIFY(!isConverting());
        app->answerAlert(1000);
        QVERIFY(QFile::exists(output()));
    }

    void aFileThatIsGoneIsSaid()
    {
        for (const int response : {1001, 1002}) {
            open();
            letConverter({{u"write-output"_s, u"video"_s}});
            app->saveTo(output());
            QTRY_VERIFY(app->alert());
            QFile::remove(output());
            app->answerAlertWithoutWaiting(response);
            QTRY_VERIFY(app->alert() && app->alertText().contains("out.mp4"_L1));
            seen(u"%1: %2"_s.arg(response == 1001 ? u"reveal"_s : u"play"_s, app->alertText()));
            app->answerAlert();
        }
    }

    void theSheetFollowsTheConverter()
    {
        open();
        letConverter({{u"complain"_s, u"frame=1 time=00:00:02.50 bitrate=1\r"_s},
                      untilSeen(1),
                      {u"complain"_s, u"frame=2 time=00:00:05.00 bitrate=1\r"_s},
                      untilSeen(2),
                      {u"complain"_s, u"frame=2 time=N/A bitrate=1\r"_s},
                      {u"wait-until-read"_s},
                      {u"complain"_s, u"frame=3 time=00:00:15.00 bitrate=1\r"_s},
                      untilSeen(3),
                      {u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        QCOMPARE(app->delegate.progressTitle->text(), u"Resizing Video..."_s);
        QVERIFY(app->delegate.progressCancel->isVisible());
        int step = 0;
        for (const double value : {25.0, 50.0, 150.0}) { // not clamped
            QTRY_COMPARE(app->delegate.progressBar->doubleValue(), value);
            haveSeen(++step);
        }
        QTRY_VERIFY(app->alert());
        QCOMPARE(app->delegate.progressBar->doubleValue(), 0.0);
        QVERIFY(app->delegate.progressCancel->isHidden());
    }

    void anInputWithoutDurationIsDrawnAsBusy()
    {
        app->letProberReport(640, 360, u"0"_s);
        app->drop(app->makeFile(u"clip.mov"_s));
        letConverter(
            {{u"complain"_s, u"time=00:00:01.00 \r"_s}, untilSeen(1), {u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(std::isinf(app->delegate.progressBar->doubleValue()));
        QCOMPARE(app->delegate.progressBar->isBusy(), true);
        haveSeen(1);
        QTRY_VERIFY(app->alert());
    }

    void theRemainingTimeBeginsAnewWithEachJob()
    {
        open();
        letConverter({{u"progress"_s, u"0"_s, u"time=00:00:09.00 \r"_s, u"time=00:00:09.10 \r"_s},
                      {u"write-output"_s, u"video"_s}});
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->alert());
        app->answerAlert();
        letConverter({{u"pause"_s, u"2100"_s}, // before that nothing is told
                      {u"complain"_s, u"time=00:00:03.00 \r"_s},
                      {u"wait-until-read"_s},
                      {u"complain"_s, u"time=00:00:03.10 \r"_s},
                      untilSeen(1),
                      {u"write-output"_s, u"video"_s}});
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(!app->delegate.progressDetail->text().isEmpty());
        QVERIFY2(app->delegate.progressDetail->text().startsWith("31 %"_L1),
                 qPrintable(app->delegate.progressDetail->text()));
        haveSeen(1);
        QTRY_VERIFY(app->alert());
        QVERIFY(app->delegate.progressDetail->text().isEmpty());
    }
};

TESSALY_GUI_TEST_MAIN(TestResize)
#include "resize_test.moc"
