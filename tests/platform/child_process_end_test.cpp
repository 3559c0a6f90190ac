#include "platform/child_process.h"
#include "platform/waiting_modes.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;
using End = tessaly::ProcessOutcome::End;

namespace tessaly::test {

namespace {

const QString tool = u"creator"_s;

// Also when nobody has asked for how it ended.
bool hasEnded(const QByteArray &process)
{
    QFile status("/proc/"_L1 + QString::fromLatin1(process) + "/stat"_L1);
    return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
}

} // namespace

class ChildProcessEndTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { letRunsStart(); }

    void endAllRunsEndsThemEverywhere_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::newRow("waiting plainly") << Waiting::plainly;
        QTest::newRow("waiting in an event loop") << Waiting::inEventLoop;
        QTest::newRow("waiting in a pool thread") << Waiting::inPoolThread;
    }

    void endAllRunsEndsThemEverywhere()
    {
        QFETCH(Waiting, waiting);
        FakeTools tools;
        tools.setSteps(tool, {{u"ignore-terminate"_s}, {u"print"_s, u"begun"_s}, {u"hang"_s}});
        CapturedRun run;
        QElapsedTimer clock;
        clock.start();
        std::jthread ender([&] {
            while (tools.calls(tool).isEmpty() && clock.elapsed() < waitLimit)
                std::this_thread::yield();
            endAllRuns();
        });
        inWaitingMode(waiting, [&] { run = runCapturingOutput(tools.path(tool), {}); });
        QCOMPARE(run.outcome.end, End::stopped);
        QVERIFY(!run.outcome.succeeded());
        QVERIFY(clock.elapsed() < waitLimit);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
    }

    void whatAChildLeavesEndsWithItsRun_data()
    {
        QTest::addColumn<Waiting>("waiting");
        for (const auto &[name, waiting] : waitingModes)
            QTest::newRow(name) << waiting;
    }

    void whatAChildLeavesEndsWithItsRun()
    {
        QFETCH(Waiting, waiting);
        const QString leave = u"sleep 1000 >/dev/null 2>&1 & echo $!"_s;
        CapturedRun run;
        inWaitingMode(waiting, [&] { run = runCapturingOutput(u"/bin/sh"_s, {u"-c"_s, leave}); });
        QVERIFY(run.outcome.succeeded());
        QVERIFY(run.output.toInt() > 0);
        QTRY_VERIFY(hasEnded(run.output.trimmed()));
    }

    void nothingStartsAfterwards()
    {
        FakeTools tools;
        QVERIFY(!runsAreEnding());
        endAllRuns();
        QVERIFY(runsAreEnding());
        QCOMPARE(runToEnd(tools.path(tool), {}).end, End::stopped);
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).outcome.end, End::stopped);
        QVERIFY(tools.calls(tool).isEmpty());
        letRunsStart();
        QVERIFY(runToEnd(tools.path(tool), {}).succeeded());
    }

    void toldToQuitWhileTheMainThreadWaits()
    {
        FakeTools tools;
        tools.setSteps(tool, {{u"ignore-terminate"_s}, {u"hang"_s}});
        QProcess application;
        application.start(QStringLiteral(TESSALY_PLATFORM_HELPER), {u"quit-during"_s, tools.path(tool)});
        QVERIFY(application.waitForFinished(tessaly::test::waitLimit));
        QCOMPARE(application.exitStatus(), QProcess::NormalExit);
        QCOMPARE(application.exitCode(), 0);
        QCOMPARE(tools.calls(tool).size(), 1);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
        QCOMPARE(application.readAllStandardError(), QByteArray());
    }

    void noChildOutlivesTheProgram_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("reading");
        for (const QString &way : {u"return"_s, u"exit"_s, u"kill"_s}) {
            for (const QString &reading : {u"nothing"_s, u"output"_s, u"errors"_s})
                QTest::addRow("%s, reading %s", qPrintable(way), qPrintable(reading)) << way << reading;
        }
    }

    void noChildOutlivesTheProgram()
    {
        QFETCH(QString, way);
        QFETCH(QString, reading);
        FakeTools tools;
        tools.setSteps(tool, {{u"ignore-terminate"_s}, {u"hang"_s}});
        QProcess program;
        program.start(QStringLiteral(TESSALY_PLATFORM_HELPER),
                      {u"die-during"_s, way, reading, tools.path(tool)});
        QVERIFY(program.waitForFinished(tessaly::test::waitLimit));
        QCOMPARE(program.exitStatus(), way == u"kill" ? QProcess::CrashExit : QProcess::NormalExit);
        QCOMPARE(program.readAllStandardError(), QByteArray());
        QCOMPARE(tools.calls(tool).size(), 1);
        QTRY_COMPARE(tools.runningProcesses(tool), QList<qint64>());
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::ChildProcessEndTest)
#include "child_process_end_test.moc"
