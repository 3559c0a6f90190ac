// Whether a job failed, and what is said of it.
#include "captured_text.h"
#include "ended_job.h"
#include "jobs/converter_text.h"
#include "support/test_case.h"

#include <cmath>
#include <csignal>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;
using End = RunOutcome::End;

namespace {

FileProbe videoFile()
{
    FileProbe probe;
    probe.fileFullPath = written;
    probe.isValidMediaFile = true;
    probe.hasVideoTrack = true;
    return probe;
}

class TestFailureReport : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void judgesTheEnd_data();
    void judgesTheEnd();
    void judgesTheFile_data();
    void judgesTheFile();
    void aStopIsNoFailure();
    void detailsAreTheLastLines();
    void detailsAreFitToBeShown();
    void tellsWhenTheVideoIsShorter_data();
    void tellsWhenTheVideoIsShorter();
};

void TestFailureReport::judgesTheEnd_data()
{
    QTest::addColumn<RunOutcome>("outcome");
    QTest::addColumn<QString>("sentence"); // empty: no failure
    QTest::newRow("good") << RunOutcome{End::ended, 0, {}, "x"} << QString();
    QTest::newRow("error although a video is there")
        << RunOutcome{End::ended, 69, {}, ""} << u"The converter ended with error 69 and said nothing."_s;
    QTest::newRow("the code of a cancelled converter, but nobody cancelled")
        << RunOutcome{End::ended, 255, {}, "Exiting normally, received signal 15.\n"}
        << u"The converter ended with error 255 and said nothing."_s;
    QTest::newRow("not started") << RunOutcome{End::failedToStart,
                                               0,
                                               u"The converter \"creator\" is missing."_s,
                                               {}}
                                 << u"The converter \"creator\" is missing."_s;
    QTest::newRow("killed") << RunOutcome{End::crashed, SIGKILL, {}, "x"}
                            << u"The converter was killed by the system or by another program."_s;
    QTest::newRow("crashed") << RunOutcome{End::crashed, SIGSEGV, {}, "x"}
                             << u"The converter crashed (signal 11)."_s;
    QTest::newRow("stopped") << RunOutcome{End::stopped, 255, {}, "x"} << QString();
}

void TestFailureReport::judgesTheEnd()
{
    QFETCH(RunOutcome, outcome);
    QFETCH(QString, sentence);
    JobEnd end = endedWith(0);
    end.outcome = outcome;
    const auto failure = failureOfJob(end, videoFile());
    QCOMPARE(failure.has_value(), !sentence.isEmpty());
    if (failure) QCOMPARE(failure->sentence, sentence);
}

void TestFailureReport::judgesTheFile_data()
{
    QTest::addColumn<bool>("touched");
    QTest::addColumn<FileProbe>("output");
    QTest::addColumn<QString>("sentence");
    FileProbe soundOnly = videoFile();
    soundOnly.hasVideoTrack = false;
    FileProbe unchecked;
    unchecked.proberFailure = u"The program \"sniffer\" is missing."_s;
    QTest::newRow("no file") << false << FileProbe()
                             << u"The converter ended without writing the new video."_s;
    QTest::newRow("an older video that was not touched")
        << false << videoFile() << u"The converter ended without writing the new video."_s;
    QTest::newRow("a file that is none") << true << FileProbe() << u"The new file holds no video."_s;
    QTest::newRow("sound only") << true << soundOnly << u"The new file holds no video."_s;
    QTest::newRow("no prober")
        << true << unchecked << u"The new video could not be checked. The program \"sniffer\" is missing."_s;
}

void TestFailureReport::judgesTheFile()
{
    QFETCH(bool, touched);
    QFETCH(FileProbe, output);
    JobEnd end = endedWith(0, "last words\n");
    end.targetTouched = touched;
    const auto failure = failureOfJob(end, output);
    QVERIFY(failure);
    QTEST(failure->sentence, "sentence");
    QCOMPARE(failure->details, u"last words"_s);
}

void TestFailureReport::aStopIsNoFailure()
{
    JobEnd end = endedWith(255, "last words\n");
    end.outcome.end = End::stopped;
    end.targetTouched = false;
    QVERIFY(!failureOfJob(end, FileProbe()));
}

// Errors are seen although the encoder talks on for twenty lines.
void TestFailureReport::detailsAreTheLastLines()
{
    const auto failure = failureOfJob(endedWith(1, test::capturedText("5.1-disk_full")), FileProbe());
    const QStringList lines = failure.value().details.split(u'\n');
    QVERIFY2(lines.size() <= 30, qPrintable(failure->details));
    QCOMPARE(lines.last(), u"Conversion failed!"_s);
    QVERIFY(lines.contains(u"Error closing file /videos/small/out.mp4: No space left on device"_s));
    QVERIFY2(lines.filter(u"frame="_s).isEmpty(), qPrintable(failure->details));
    QVERIFY2(lines.filter(u"mb P"_s).isEmpty(), qPrintable(failure->details));
}

void TestFailureReport::detailsAreFitToBeShown()
{
    const QByteArray text = "\xFF one\r\n\n  \n\x1B[31mtwo\x1B[0m\a\x01\tx" + QByteArray(1, '\0') + "y\r" +
                            QByteArray(1000, 'z') + "\nlast";
    const QStringList lines = converterLines(text);
    QCOMPARE(lines, (QStringList{u"\uFFFD one"_s, u"two\txy"_s, QString(1000, u'z'), u"last"_s}));
    QCOMPARE(lastConverterLines(lines), u"\uFFFD one\ntwo\txy\n"_s + QString(400, u'z') + u"…\nlast"_s);

    QStringList many;
    for (int i = 0; i < 100; ++i)
        many += QString::number(i);
    QCOMPARE(lastConverterLines(many), many.last(30).join(u'\n'));
}

void TestFailureReport::tellsWhenTheVideoIsShorter_data()
{
    QTest::addColumn<double>("input");
    QTest::addColumn<double>("output");
    QTest::addColumn<QString>("sentence");
    const auto said = u"The new video is shorter than the original says: "_s;
    QTest::newRow("cut short") << 30.0 << 4.96 << said + u"00:00:04.96 instead of 00:00:30.00."_s;
    QTest::newRow("as long") << 30.0 << 30.0 << QString();
    QTest::newRow("longer") << 30.0 << 40.0 << QString();
    QTest::newRow("a second less of many") << 100.0 << 98.9 << QString();
    QTest::newRow("two percent and more") << 100.0 << 97.9 << said + u"00:01:37.90 instead of 00:01:40.00."_s;
    QTest::newRow("half of a short one") << 2.0 << 1.0 << QString();
    QTest::newRow("more than a second of a short one")
        << 2.5 << 1.4 << said + u"00:00:01.40 instead of 00:00:02.50."_s;
    QTest::newRow("input unknown") << 0.0 << 10.0 << QString();
    QTest::newRow("output unknown") << 10.0 << 0.0 << QString();
    QTest::newRow("input infinite") << HUGE_VAL << 10.0 << QString();
    QTest::newRow("input not a number") << std::nan("") << 10.0 << QString();
    QTest::newRow("output not a number") << 10.0 << std::nan("") << QString();
}

void TestFailureReport::tellsWhenTheVideoIsShorter()
{
    QFETCH(double, input);
    QFETCH(double, output);
    QTEST(shorterThanInput(input, output).value_or(QString()), "sentence");
}

} // namespace

TESSALY_TEST_MAIN(TestFailureReport)
#include "failure_report_test.moc"
