// Ends of a conversion before its time.
#include "e2e/end_to_end_case.h"
#include "e2e/processes.h"
#include "e2e/screen_reader.h"
#include "e2e/tasks.h"
#include "support/seen.h"

#include <QElapsedTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;

class CancellingTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void cancelsInTheMiddle_data();
    void cancelsInTheMiddle();
    void endsSoonWhenAskedToWhileConverting_data();
    void endsSoonWhenAskedToWhileConverting();
    void tellsThatTheConverterWasKilled();
    void tellsScreenReadersOfTheProgress();

private:
    // A launched copy in the middle of a conversion to that file.
    Program &convertingTo(const QString &output);
    static bool isInTheMiddle(const Program &tessaly, const QString &output);
};

Program &CancellingTest::convertingTo(const QString &output)
{
    Program &tessaly = launch();
    (void)(openVideo(tessaly, clip(u"long.mp4"_s), u"1280 x 720"_s) && chooseOutput(tessaly, output) &&
           QTest::qWaitFor([&] { return isInTheMiddle(tessaly, output); }, workTime));
    return tessaly;
}

bool CancellingTest::isInTheMiddle(const Program &tessaly, const QString &output)
{
    const std::optional<Control> bar = tessaly.find(Role::progressBar, u"Resizing Video..."_s);
    return bar && bar->value() > 0 && bar->value() < 100 && runningMediaTools().size() == 1 &&
           QFile::exists(output);
}

void CancellingTest::cancelsInTheMiddle_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("by its button") << false;
    QTest::newRow("by Escape") << true;
}

void CancellingTest::cancelsInTheMiddle()
{
    QFETCH(bool, byKey);
    const QString output = file(u"cancelled.mp4"_s);
    Program &tessaly = convertingTo(output);
    QVERIFY(isInTheMiddle(tessaly, output));
    QVERIFY(byKey ? tessaly.press({u"Escape"_s}) : tessaly.click(Role::button, u"Cancel"_s));
    QTRY_VERIFY_WITH_TIMEOUT(!tessaly.shows(Role::label, u"Resizing Video..."_s), workTime);
    QTRY_VERIFY(!QFile::exists(output));
    seen(u"%1 children left, output %2, %3"_s.arg(runningMediaTools().size())
             .arg(QFile::exists(output) ? u"there"_s : u"gone"_s,
                  tessaly.shows(Role::alert) ? tessaly.labelsIn(Role::alert).join(u' ') : u"no alert"_s));
    QVERIFY(runningMediaTools().isEmpty());
    // The next sheet is the one that was asked for, and no other.
    QVERIFY(tessaly.press({u"F1"_s}));
    QCOMPARE(waitForAlert(tessaly).value(0), u"Questions?"_s);
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
    QVERIFY(tessaly.shows(Role::label, u"Input: 1280 x 720"_s));
}

void CancellingTest::endsSoonWhenAskedToWhileConverting_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP; // the end of a login session
}

void CancellingTest::endsSoonWhenAskedToWhileConverting()
{
    QFETCH(int, signal);
    const QString output = file(u"interrupted.mp4"_s);
    Program &tessaly = convertingTo(output);
    QVERIFY(isInTheMiddle(tessaly, output));
    tessaly.send(signal);
    QElapsedTimer clock;
    clock.start();
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.hasEnded(), workTime);
    seen(u"ended after %1 ms with status %2, %3 children left, output %4, %5 temporary files"_s
             .arg(clock.elapsed())
             .arg(tessaly.exitStatus())
             .arg(runningMediaTools().size())
             .arg(QFile::exists(output) ? u"there"_s : u"gone"_s)
             .arg(temporaryFiles().size()));
    QVERIFY(runningMediaTools().isEmpty());
    QVERIFY(!QFile::exists(output));
    QCOMPARE(temporaryFiles(), QStringList());
}

void CancellingTest::tellsThatTheConverterWasKilled()
{
    const QString output = file(u"killed.mp4"_s);
    Program &tessaly = convertingTo(output);
    QVERIFY(isInTheMiddle(tessaly, output));
    ::kill(static_cast<pid_t>(runningMediaTools().constFirst().id), SIGKILL);
    const QStringList labels = waitForAlert(tessaly);
    QCOMPARE(labels.value(0), u"Video could not be resized."_s);
    QVERIFY(!labels.value(1).isEmpty());
    QVERIFY(!QFile::exists(output));
    QVERIFY(tessaly.click(Role::button, u"OK"_s));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
}

void CancellingTest::tellsScreenReadersOfTheProgress()
{
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"long.mp4"_s), u"1280 x 720"_s));
    QVERIFY(setPercent(tessaly, 200)); // takes long enough on every machine
    const ScreenReader reader(desktop().accessibilityBus());
    QVERIFY(chooseOutput(tessaly, file(u"told.mp4"_s)));
    const QList<Announcement> &told = reader.announcements();
    QTRY_VERIFY_WITH_TIMEOUT(!told.isEmpty(), workTime);
    QCOMPARE(told.at(0).teller, u"Resizing Video..."_s);
    QVERIFY(told.at(0).value >= 0 && told.at(0).value < 100);
    QVERIFY(told.size() < 4); // not each of the steps until then: some seconds lie between two
    QVERIFY(tessaly.press({u"Escape"_s}));
    QTRY_VERIFY_WITH_TIMEOUT(!tessaly.shows(Role::label, u"Resizing Video..."_s), workTime);
}

TESSALY_TEST_MAIN(CancellingTest)
#include "cancelling_test.moc"
