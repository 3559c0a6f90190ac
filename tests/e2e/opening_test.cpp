// Opening by the panel, with the real prober and converter.
#include "e2e/end_to_end_case.h"
#include "e2e/processes.h"
#include "e2e/tasks.h"
#include "support/seen.h"

#include <QElapsedTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;

class OpeningTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void opensATypedPath();
    void refusesWhatIsNoVideo();
    void takesNoKeysWhileAnalyzing();
    void endsSoonWhenAskedToWhileAnalyzing();
    void copiesKeepTheirOwnFrames();
    void nextLaunchRemovesWhatAKilledCopyLeft();
};

void OpeningTest::opensATypedPath()
{
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    QCOMPARE(tessaly.fieldText(u"Output width"_s), u"640"_s);
    QCOMPARE(tessaly.fieldText(u"Output height"_s), u"360"_s);
    QCOMPARE(tessaly.find(Role::slider, u"Size in percent of the input"_s)->value(), 100.0);
    QVERIFY(!tessaly.shows(Role::alert));
    QVERIFY(!tessaly.shows(Role::label, u"Analyzing Video..."_s));
    QCOMPARE(posterFrames().size(), 11);
    QVERIFY(runningMediaTools().isEmpty());
    QCOMPARE(tessaly.standardOutput() + tessaly.standardError(), QString());
}

void OpeningTest::refusesWhatIsNoVideo()
{
    QFile text(file(u"text.mp4"_s));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("Not a video at all.\n") > 0);
    text.close();
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    QVERIFY(chooseVideo(tessaly, text.fileName()));
    const QStringList refusal{u"Seems to be an unsupported file.\nDoes the video play in a video player?"_s,
                              u"Please try opening some other file or contact : support@tessaly.example"_s};
    QCOMPARE(waitForAlert(tessaly), refusal);
    QVERIFY(tessaly.click(Role::button, u"OK"_s));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.shows(Role::label, u"Input: 0 x 0"_s));
    QVERIFY(!tessaly.isEnabled(Role::button, u"Save"_s));
    QVERIFY(!tessaly.isEnabled(Role::field, u"Output width"_s));
}

// The sheet has no Cancel, Escape does not take it away, and no key is kept for later.
void OpeningTest::takesNoKeysWhileAnalyzing()
{
    Program &tessaly = launch();
    QVERIFY(chooseVideo(tessaly, clip(u"long.mp4"_s)));
    QTRY_VERIFY_WITH_TIMEOUT(suspendConverter(), workTime);
    QTRY_VERIFY(tessaly.shows(Role::label, u"Analyzing Video..."_s));
    QVERIFY(!tessaly.shows(Role::button, u"Cancel"_s));
    QVERIFY(tessaly.press({u"Escape"_s, u"ctrl+o"_s, u"F1"_s, u"ctrl+q"_s}));
    QVERIFY(tessaly.shows(Role::label, u"Analyzing Video..."_s));
    resumeConverters();
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 1280 x 720"_s), workTime);
    QVERIFY(!tessaly.shows(Role::alert));
    QVERIFY(!tessaly.shows(Role::field, u"File name:"_s));
    QCOMPARE(posterFrames().size(), 11);
    // What comes now is the answer to this key, not to one of the earlier ones.
    QVERIFY(tessaly.press({u"F1"_s}));
    QCOMPARE(waitForAlert(tessaly).value(0), u"Questions?"_s);
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
}

void OpeningTest::endsSoonWhenAskedToWhileAnalyzing()
{
    Program &tessaly = launch();
    QVERIFY(chooseVideo(tessaly, clip(u"long.mp4"_s)));
    QTRY_VERIFY_WITH_TIMEOUT(!posterFrames().isEmpty() && suspendConverter(), workTime);
    QVERIFY(tessaly.shows(Role::label, u"Analyzing Video..."_s));
    tessaly.send(SIGTERM);
    QElapsedTimer clock;
    clock.start();
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.hasEnded(), workTime);
    seen(u"ended after %1 ms with status %2, %3 children left, %4 temporary files"_s.arg(clock.elapsed())
             .arg(tessaly.exitStatus())
             .arg(runningMediaTools().size())
             .arg(temporaryFiles().size()));
    QVERIFY(runningMediaTools().isEmpty());
    QCOMPARE(temporaryFiles(), QStringList());
}

void OpeningTest::copiesKeepTheirOwnFrames()
{
    Program &first = launch();
    QVERIFY(openVideo(first, clip(u"plain.mp4"_s), u"640 x 360"_s));
    const QStringList framesOfFirst = posterFrames();
    QCOMPARE(framesOfFirst.size(), 11);

    Program &second = launch();
    QVERIFY(openVideo(second, clip(u"portrait.mp4"_s), u"360 x 640"_s));
    const qsizetype framesOfBoth = posterFrames().size();
    QCOMPARE(framesOfBoth, 22);
    QVERIFY(second.press({u"ctrl+q"_s}));
    QTRY_VERIFY(second.hasEnded());
    seen(u"%1 frames of both, %2 when the second had ended"_s.arg(framesOfBoth).arg(posterFrames().size()));
    QCOMPARE(posterFrames(), framesOfFirst);
}

void OpeningTest::nextLaunchRemovesWhatAKilledCopyLeft()
{
    Program &killed = launch();
    QVERIFY(openVideo(killed, clip(u"plain.mp4"_s), u"640 x 360"_s));
    killed.send(SIGKILL);
    QTRY_VERIFY(killed.hasEnded());
    const qsizetype left = posterFrames().size();
    QCOMPARE(left, 11);

    launch();
    QTRY_COMPARE(posterFrames(), QStringList());
    seen(u"%1 frames left by the killed copy, %2 after the next launch"_s.arg(left).arg(
        posterFrames().size()));
}

TESSALY_TEST_MAIN(OpeningTest)
#include "opening_test.moc"
