// Save, conversion, cancel and report, with a converter that does as it is told.
#include "app/app_harness.h"
#include "platform/printing.h"
#include "support/test_case.h"

#include <QStatusBar>

#include <cmath>
#include <unistd.h>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestResize : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    QString output() const { return app->folder.filePath(u"out.mp4"_s); }
    bool isConverting() const { return app->delegate.progressWindow->isVisible(); }
    QString failure() const { return app->alertText(); }

    void open(const QByteArray &moreStreams = {})
    {
        const QByteArray report =
            R"({"streams": [{"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "25/1", "width": 640,
             "height": 360})" +
            moreStreams + R"(], "format": {"duration": "10.0"}})";
        app->letProberReport(report);
        app->drop(app->makeFile(u"clip.mov"_s));
        app->tools.forgetCalls(u"creator"_s);
        app->tools.forgetCalls(u"sniffer"_s);
    }
    void letConverter(const QList<QStringList> &steps) { app->tools.setSteps(u"creator"_s, steps); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

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
            app->answerAlert();
        }
    }

    void theSheetFollowsTheConverter()
    {
        open();
        letConverter({{u"progress"_s, u"150"_s, u"frame=1 time=00:00:02.50 bitrate=1\r"_s,
                       u"frame=2 time=00:00:05.00 bitrate=1\r"_s, u"frame=2 time=N/A bitrate=1\r"_s,
                       u"frame=3 time=00:00:15.00 bitrate=1\r"_s},
                      {u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        QCOMPARE(app->delegate.progressTitle->text(), u"Resizing Video..."_s);
        QVERIFY(app->delegate.progressCancel->isVisible());
        QTRY_COMPARE(app->delegate.progressBar->doubleValue(), 25.0);
        QTRY_COMPARE(app->delegate.progressBar->doubleValue(), 50.0);
        QTRY_COMPARE(app->delegate.progressBar->doubleValue(), 150.0); // not clamped
        QTRY_VERIFY(app->alert());
        QCOMPARE(app->delegate.progressBar->doubleValue(), 0.0);
        QVERIFY(app->delegate.progressCancel->isHidden());
    }

    void anInputWithoutDurationIsDrawnAsBusy()
    {
        app->letProberReport(640, 360, u"0"_s);
        app->drop(app->makeFile(u"clip.mov"_s));
        letConverter({{u"progress"_s, u"400"_s, u"time=00:00:01.00 \r"_s}, {u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(std::isinf(app->delegate.progressBar->doubleValue()));
        QCOMPARE(app->delegate.progressBar->maximum(), 0);
        QVERIFY(app->delegate.progressDetail->text().isEmpty());
        QTRY_VERIFY(app->alert());
    }

    void cancelWaitsForTheChildAndDeletesTheOutput_data()
    {
        QTest::addColumn<bool>("byEscape");
        QTest::newRow("by mouse") << false;
        QTest::newRow("by Escape") << true;
    }
    void cancelWaitsForTheChildAndDeletesTheOutput()
    {
        QFETCH(bool, byEscape);
        open();
        letConverter({{u"write-output"_s, u"half"_s}, {u"slow-flush"_s, u"300"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        QTRY_VERIFY(QFile::exists(output()));
        for (int i = 0; i < 2; ++i) { // twice is once
            if (byEscape)
                QTest::keyClick(app->delegate.progressWindow.get(), Qt::Key_Escape);
            else
                QTest::mouseClick(app->delegate.progressCancel.get(), Qt::LeftButton);
        }
        QVERIFY(isConverting());
        QVERIFY(!app->tools.runningProcesses(u"creator"_s).isEmpty());
        QTRY_VERIFY(!isConverting());
        QTRY_VERIFY(!QFile::exists(output()));
        QVERIFY(app->tools.runningProcesses(u"creator"_s).isEmpty());
        QCOMPARE(app->delegate.isProcessCancelledByUser, std::optional(true));
        QCOMPARE(app->tools.calls(u"sniffer"_s).size(), 1);
        QCoreApplication::processEvents();
        QVERIFY(!app->alert());
    }

    void cancelBeforeTheChildRuns()
    {
        open();
        letConverter({{u"write-output"_s, u"video"_s}});
        app->delegate.saveResponse(1, output());
        app->delegate.closeBTNInsideProgressWindowClicked(nullptr);
        QTRY_COMPARE(app->tools.calls(u"sniffer"_s).size(), 1);
        QTRY_VERIFY(!isConverting());
        QVERIFY(!QFile::exists(output()));
        QVERIFY(!app->alert());
    }

    void aCancelledJobIsForgottenByTheNext()
    {
        open();
        letConverter({{u"slow-flush"_s, u"10"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        QTest::mouseClick(app->delegate.progressCancel.get(), Qt::LeftButton);
        QTRY_VERIFY(!isConverting());
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QCOMPARE(app->delegate.isProcessCancelledByUser, std::optional(false));
        QVERIFY(QFile::exists(output()));
    }

    void theInputIsNeverTheOutput_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("the same path") << u"clip.mov.mp4"_s;
        QTest::newRow("through a symbolic link") << u"symbolic.mp4"_s;
        QTest::newRow("through a hard link") << u"hard.mp4"_s;
    }
    void theInputIsNeverTheOutput()
    {
        QFETCH(QString, path);
        app->letProberReport(640, 360);
        const QString input = app->makeFile(u"clip.mov.mp4"_s);
        QFile::link(input, app->folder.filePath(u"symbolic.mp4"_s));
        QCOMPARE(::link(qPrintable(input), qPrintable(app->folder.filePath(u"hard.mp4"_s))), 0);
        app->drop(input);
        app->tools.forgetCalls(u"creator"_s);
        app->delegate.saveResponse(1, app->folder.filePath(path));
        QTRY_VERIFY(app->alert());
        QCOMPARE(app->alertText(), u"Input file name is same as the output file name!\n"
                                   "Please specify a different file to save."_s);
        QCOMPARE(app->alertButtons(), QStringList{u"OK"_s});
        QVERIFY(app->tools.calls(u"creator"_s).isEmpty());
        QVERIFY(!app->delegate.isProcessCancelledByUser);
    }

    void theSameNameInAnotherFolderIsAccepted()
    {
        open();
        QDir(app->folder.path()).mkdir(u"other"_s);
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(app->folder.filePath(u"other/clip.mov"_s));
        QTRY_VERIFY(app->alert());
        QVERIFY(QFile::exists(app->folder.filePath(u"other/clip.mov.mp4"_s)));
    }

    void anOpenEditIsCommittedFirst()
    {
        open();
        letConverter({{u"write-output"_s, u"video"_s}});
        app->type(app->delegate.widthTF.get(), u"321"_s);
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QVERIFY(app->tools.calls(u"creator"_s).last().contains(u"scale=320:180,setsar=1:1"_s));
    }

    void aCancelledPanelDoesNothing()
    {
        open();
        QTest::keyClick(&app->window, Qt::Key_S, Qt::ControlModifier);
        QTRY_VERIFY(app->panel());
        QCOMPARE(app->panel()->directory().absolutePath(), app->folder.path());
        QCOMPARE(app->panel()->findChild<QLineEdit *>(u"fileNameEdit"_s)->text().section(u'.', 0, 0),
                 u"Resized"_s);
        QTest::keyClick(app->panel(), Qt::Key_Escape);
        QTRY_VERIFY(!app->panel());
        QVERIFY(!app->delegate.isProcessCancelledByUser);
    }

    void withoutAPathOfTheInputNothingHappens()
    {
        open();
        app->delegate.globalFP = std::make_shared<const FileProbe>();
        app->delegate.saveResponse(1, output());
        QVERIFY(!app->delegate.isProcessCancelledByUser);
        QVERIFY(!app->alert());
    }

    void aFailedJobIsReported_data()
    {
        QTest::addColumn<QList<QStringList>>("steps");
        QTest::addColumn<QString>("said");
        QTest::newRow("nothing was written") << QList<QStringList>{{u"exit"_s, u"0"_s}} << QString();
        QTest::newRow("ended with an error")
            << QList<QStringList>{{u"write-output"_s, u"half"_s},
                                  {u"complain"_s,
                                   u"av_interleaved_write_frame(): No space left on device\n"_s},
                                  {u"exit"_s, u"1"_s}}
            << u"full"_s;
        QTest::newRow("crashed") << QList<QStringList>{{u"write-output"_s, u"half"_s}, {u"crash"_s}}
                                 << QString();
    }
    void aFailedJobIsReported()
    {
        QFETCH(QList<QStringList>, steps);
        QFETCH(QString, said);
        open();
        letConverter(steps);
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QVERIFY2(failure().startsWith("Video could not be resized.\n"_L1), qPrintable(failure()));
        QVERIFY2(failure().size() > 30 && failure().contains(said), qPrintable(failure()));
        QCOMPARE(app->alertButtons(), QStringList{u"OK"_s});
        QVERIFY(!QFile::exists(output()));
        app->answerAlert();
        QVERIFY(app->delegate.saveBTN->isEnabled()); // the window can be used again
    }

    void anOutputWithoutPicturesIsAFailure()
    {
        open();
        app->letProberReport(R"({"streams": [{"codec_type": "audio"}], "format": {}})");
        letConverter({{u"write-output"_s, u"sound"_s}});
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QVERIFY(failure().startsWith("Video could not be resized."_L1));
        QVERIFY(!QFile::exists(output()));
    }

    void aMissingConverterIsAFailure()
    {
        open();
        app->tools.remove(u"creator"_s);
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        QVERIFY(failure().startsWith("Video could not be resized."_L1));
    }

    void aFileThatTheJobNeverTouchedStays()
    {
        open();
        QFile old(output());
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("mine") == 4);
        old.close();
        letConverter({{u"complain"_s, u"Unknown decoder\n"_s}, {u"exit"_s, u"1"_s}});
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->alert());
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.readAll(), QByteArray("mine"));
    }

    void aShorterOutputIsSaidInTheStatusLine()
    {
        open();
        app->letProberReport(640, 360, u"5"_s);
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
        QVERIFY(!app->find<QStatusBar>("statusBar")->currentMessage().isEmpty());
    }

    void menuAndToolBarAskForTheSameName()
    {
        open();
        for (const auto entry : {&AppDelegate::saveMenuBTNClicked, &AppDelegate::saveBTNClicked}) {
            // The answer of the panel before comes when that has already gone.
            QTRY_VERIFY(((app->delegate.*entry)(nullptr), app->panel()));
            QCOMPARE(app->panel()->acceptMode(), QFileDialog::AcceptSave);
            QTest::keyClick(app->panel(), Qt::Key_Escape);
            QTRY_VERIFY(!app->panel());
        }
        QVERIFY(!isConverting()); // an answer without a name starts nothing
    }

    void aDropAndSaveWhileAJobRunsAreRefused()
    {
        open();
        letConverter({{u"pause"_s, u"300"_s}, {u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        app->drop(app->makeFile(u"other.mp4"_s));
        app->delegate.saveBTNClicked(nullptr);
        app->delegate.openMenuBTNClicked(nullptr);
        QVERIFY(!app->panel());
        QCOMPARE(*app->delegate.globalFP->fileFullPath, app->folder.filePath(u"clip.mov"_s));
        QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
    }

    void theEndOfTheProgramStopsTheJobAndCleansUp()
    {
        open();
        letConverter({{u"write-output"_s, u"half"_s}, {u"slow-flush"_s, u"50"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        QTRY_VERIFY(QFile::exists(output()));
        app->delegate.applicationWillTerminate(nullptr);
        QVERIFY(!QFile::exists(output()));
        QVERIFY(app->tools.runningProcesses(u"creator"_s).isEmpty());
    }
};

TESSALY_GUI_TEST_MAIN(TestResize)
#include "resize_test.moc"
