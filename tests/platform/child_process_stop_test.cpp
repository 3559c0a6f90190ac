#include "platform/child_process.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QFile>
#include <csignal>
#include <future>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using End = tessaly::ProcessOutcome::End;
using Steps = QList<QStringList>;

namespace tessaly::test {

namespace {

const QString tool = u"creator"_s;
const QStringList ready{u"complain"_s, u"ready"_s};

// A run on another thread, watched from that of the test.
class BackgroundRun
{
public:
    explicit BackgroundRun(const FakeTools &tools, ProcessLimits limits = {})
        : m_outcome(std::async(std::launch::async, [this, program = tools.path(tool), limits] {
              return process.run(
                  program, {}, Reading::standardError, [this](const QByteArray &) { m_hasSpoken = true; },
                  limits);
          }))
    {}
    ~BackgroundRun() { process.requestStop(0ms); } // a test that failed in the middle must not hang
    BackgroundRun(const BackgroundRun &) = delete;
    BackgroundRun &operator=(const BackgroundRun &) = delete;

    bool hasSpoken() const { return m_hasSpoken; }
    bool isOver() const { return m_outcome.wait_for(0s) == std::future_status::ready; }
    ProcessOutcome outcome() { return m_outcome.get(); } // waits; once

    ChildProcess process;

private:
    std::atomic_bool m_hasSpoken = false;
    std::future<ProcessOutcome> m_outcome;
};

// As the system names it: 'T' is stopped.
char stateOfProcess(qint64 process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly)) return '-';
    const QByteArray text = file.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1).front();
}

} // namespace

class ChildProcessStopTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aRequestBeforeTheStartStartsNothing()
    {
        FakeTools tools;
        ChildProcess process;
        QVERIFY(!process.stopIsRequested());
        process.requestStop(5s);
        QVERIFY(process.stopIsRequested());
        QCOMPARE(process.run(tools.path(tool), {}).end, End::stopped);
        QCOMPARE(tools.calls(tool), QList<QStringList>());
    }

    void isAskedToEnd_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<int>("code");
        QTest::newRow("dies of the signal") << Steps{ready, {u"hang"_s}} << SIGTERM;
        QTest::newRow("flushes, then ends with a code of its own")
            << Steps{ready, {u"slow-flush"_s, u"300"_s}} << 255;
        QTest::newRow("ends as if all were well") << Steps{ready, {u"slow-flush"_s, u"0"_s, u"0"_s}} << 0;
    }

    void isAskedToEnd()
    {
        QFETCH(Steps, steps);
        FakeTools tools;
        tools.setSteps(tool, steps);
        BackgroundRun run(tools);
        QTRY_VERIFY(run.hasSpoken());
        run.process.requestStop(60s);
        QTRY_VERIFY(run.isOver());
        const ProcessOutcome outcome = run.outcome();
        QCOMPARE(outcome.end, End::stopped);
        QTEST(outcome.code, "code");
    }

    void isKilledWhenTheFirstLimitIsOver_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<QList<int>>("limits"); // milliseconds
        QTest::addColumn<int>("first");
        const Steps stubborn{{u"ignore-terminate"_s}, ready, {u"hang"_s}};
        QTest::newRow("one") << stubborn << QList<int>{400} << 400;
        QTest::newRow("a shorter one later") << stubborn << QList<int>{600000, 400} << 400;
        QTest::newRow("a longer one later") << stubborn << QList<int>{400, 600000} << 400;
        QTest::newRow("none is left: it is not even asked")
            << Steps{ready, {u"slow-flush"_s, u"0"_s}} << QList<int>{0} << 0;
    }

    void isKilledWhenTheFirstLimitIsOver()
    {
        QFETCH(Steps, steps);
        QFETCH(QList<int>, limits);
        QFETCH(int, first);
        FakeTools tools;
        tools.setSteps(tool, steps);
        BackgroundRun run(tools);
        QTRY_VERIFY(run.hasSpoken());
        QElapsedTimer clock;
        clock.start();
        for (const int milliseconds : limits)
            run.process.requestStop(std::chrono::milliseconds(milliseconds));
        QTRY_VERIFY(run.isOver());
        QVERIFY2(clock.elapsed() >= first, qPrintable(QString::number(clock.elapsed())));
        const ProcessOutcome outcome = run.outcome();
        QCOMPARE(outcome.end, End::stopped);
        QCOMPARE(outcome.code, SIGKILL);
    }

    void aSuspendedChildIsKilled()
    {
        FakeTools tools;
        tools.setSteps(tool, {ready, {u"hang"_s}});
        BackgroundRun run(tools);
        QTRY_VERIFY(run.hasSpoken());
        const qint64 child = run.process.processId();
        QCOMPARE(tools.runningProcesses(tool), QList<qint64>{child});
        ::kill(static_cast<pid_t>(child), SIGSTOP);
        QTRY_COMPARE(stateOfProcess(child), 'T');
        run.process.requestStop(300ms);
        QTRY_VERIFY(run.isOver());
        QCOMPARE(run.outcome().code, SIGKILL);
    }

    // As where the tool is a script that starts the real one.
    void whatTheChildStartedEndsWithIt_data()
    {
        QTest::addColumn<int>("stopLimit"); // milliseconds; -1: not requested
        QTest::addColumn<int>("timeLimit"); // milliseconds; 0: none
        QTest::newRow("asked to end") << 60000 << 0;
        QTest::newRow("stopped at once") << 0 << 0;
        QTest::newRow("time limit") << -1 << 3000;
    }

    void whatTheChildStartedEndsWithIt()
    {
        QFETCH(int, stopLimit);
        QFETCH(int, timeLimit);
        FakeTools tools;
        tools.setSteps(tool, {{u"leave-behind"_s, u"600000"_s}, ready, {u"hang"_s}});
        BackgroundRun run(tools, {.time = std::chrono::milliseconds(timeLimit)});
        QTRY_VERIFY(run.hasSpoken() && tools.runningProcesses(tool).size() == 2);
        if (stopLimit >= 0) run.process.requestStop(std::chrono::milliseconds(stopLimit));
        QTRY_VERIFY(run.isOver());
        QCOMPARE(run.outcome().end, timeLimit > 0 ? End::timedOut : End::stopped);
        QTRY_COMPARE(tools.runningProcesses(tool), QList<qint64>());
    }

    void takesRequestsFromAnywhereAtAnyTime()
    {
        FakeTools tools;
        tools.setBehaviour(tool, u"hang"_s);
        for (int round = 0; round < 20; ++round) {
            BackgroundRun run(tools); // the requests come before, during and after its start
            {
                std::vector<std::jthread> threads;
                for (int i = 0; i < 4; ++i)
                    threads.emplace_back([&run] { run.process.requestStop(60s); });
            }
            QTRY_VERIFY(run.isOver());
            QCOMPARE(run.outcome().end, End::stopped);
            run.process.requestStop(0ms);
        }
        QCOMPARE(tools.runningProcesses(tool), QList<qint64>());
    }

    void aRequestAfterTheEndChangesNothing()
    {
        FakeTools tools;
        ChildProcess process;
        const ProcessOutcome outcome = process.run(tools.path(tool), {});
        process.requestStop(0ms);
        QVERIFY(outcome.succeeded());
        QCOMPARE(process.processId(), 0);
    }

    void theEndOfTheProgramGivesItsLimit_data()
    {
        QTest::addColumn<int>("limit"); // milliseconds
        QTest::addColumn<int>("code");
        QTest::newRow("time to flush") << 60000 << 255;
        QTest::newRow("none") << 0 << SIGKILL;
    }

    void theEndOfTheProgramGivesItsLimit()
    {
        QFETCH(int, limit);
        FakeTools tools;
        tools.setSteps(tool, {ready, {u"slow-flush"_s, u"100"_s}});
        BackgroundRun run(tools, {.whenProgramEnds = std::chrono::milliseconds(limit)});
        QTRY_VERIFY(run.hasSpoken());
        endAllRuns();
        QTRY_VERIFY(run.isOver());
        letRunsStart();
        const ProcessOutcome outcome = run.outcome();
        QCOMPARE(outcome.end, End::stopped);
        QTEST(outcome.code, "code");
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::ChildProcessStopTest)
#include "child_process_stop_test.moc"
