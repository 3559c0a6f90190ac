// Jobs that fail, are cancelled, or end with the program.
#include "app/resize_stage.h"
#include "platform/busy_input.h"

#include <QEventLoop>
#include <QStatusBar>
#include <QTimer>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestFailedJob : public TestCase, private ResizeStage
{
    Q_OBJECT

private:
    QString failure() const { return app->alertText(); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setUp();
    }
    void cleanup() { tearDown(); }

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

    void aShorterOutputIsSaid()
    {
        open();
        const auto *status = app->find<QStatusBar>("statusBar");
        const QString facts = status->currentMessage();
        app->letProberReport(640, 360, u"5"_s);
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
        QVERIFY2(status->currentMessage().contains("shorter"_L1), qPrintable(status->currentMessage()));
        app->answerAlertWithoutWaiting(1000);
        // Half of it is missing: that is not left to the status line.
        QTRY_COMPARE(app->alertText(),
                     u"The new video may not be what you expect.\nThe new video is shorter than the "
                     "original says: 00:00:05.00 instead of 00:00:10.00."_s);
        app->answerAlert();
        app->letProberReport(640, 360, u"12"_s); // the next one is not
        letConverter({{u"write-output"_s, u"video"_s}});
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
        QCOMPARE(status->currentMessage(), facts);
    }

    void theEndOfTheProgramDuringTheLastProbeIsNoFailure()
    {
        open();
        letConverter({{u"write-output"_s, u"video"_s}});
        app->tools.setBehaviour(u"sniffer"_s, u"hang"_s);
        QEventLoop loop; // a probe lets timers fire only where one runs
        QTimer check;
        connect(&check, &QTimer::timeout, &loop, [this, &loop] {
            if (!app->tools.calls(u"sniffer"_s).isEmpty()) endAllRuns();
            if (runsAreEnding() && !BusyInput::isBusy()) loop.quit();
        });
        check.start(10);
        app->delegate.saveResponse(1, output());
        loop.exec();
        QVERIFY2(!app->alert(), qPrintable(app->alertText()));
        app->delegate.applicationWillTerminate(nullptr);
        QVERIFY(!QFile::exists(output()));
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
};

TESSALY_GUI_TEST_MAIN(TestFailedJob)
#include "failed_job_test.moc"
