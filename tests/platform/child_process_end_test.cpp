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
constexpr qint64 patience = 10000; // milliseconds

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
            while (tools.calls(tool).isEmpty() && clock.elapsed() < patience)
                std::this_thread::yield();
            endAllRuns();
        });
        inWaitingMode(waiting, [&] { run = runCapturingOutput(tools.path(tool), {}); });
        QCOMPARE(run.outcome.end, End::stopped);
        QVERIFY(!run.outcome.succeeded());
        QVERIFY(clock.elapsed() < patience);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
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

    void noChildOutlivesTheApplication_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::newRow("told to quit while the main thread waits") << u"quit-during"_s;
        QTest::newRow("main() is left while a pool thread waits") << u"end-with-pool"_s;
    }

    void noChildOutlivesTheApplication()
    {
        QFETCH(QString, mode);
        FakeTools tools;
        tools.setSteps(tool, {{u"ignore-terminate"_s}, {u"hang"_s}});
        QProcess application;
        application.start(QStringLiteral(TESSALY_PLATFORM_HELPER), {mode, tools.path(tool)});
        QVERIFY(application.waitForFinished(patience));
        QCOMPARE(application.exitStatus(), QProcess::NormalExit);
        QCOMPARE(application.exitCode(), 0);
        QCOMPARE(tools.calls(tool).size(), 1);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
        QCOMPARE(application.readAllStandardError(), QByteArray());
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::ChildProcessEndTest)
#include "child_process_end_test.moc"
