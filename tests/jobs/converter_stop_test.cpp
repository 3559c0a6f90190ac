// How a converter is stopped, by a person or with the program.
#include "background_run.h"
#include "jobs/converter_run.h"
#include "platform/child_process.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

using namespace tessaly;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using End = RunOutcome::End;

namespace {

const auto creator = u"creator"_s;
constexpr int patience = 30000; // milliseconds that a step may take on a busy machine

// As the system names it: 'T' is stopped.
char stateOfProcess(qint64 process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly)) return '-';
    const QByteArray text = file.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1).front();
}

class TestConverterStop : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void cancelsForReal();
    void stopsBeforeItStarts();
    void stops_data();
    void stops();
    void stopsASuspendedConverter();
    void killsWhenTheShortestPatienceIsOver_data();
    void killsWhenTheShortestPatienceIsOver();
    void takesRequestsFromAnywhereAtAnyTime();
    void endsWithTheProgram();
    void startsNothingWhenTheProgramIsEnding();
    void doesNotOutliveTheProgram_data();
    void doesNotOutliveTheProgram();
};

void TestConverterStop::cleanup()
{
    letRunsStart();
}

void TestConverterStop::cancelsForReal()
{
    test::FakeTools tools;
    tools.useRealTool(creator);
    const QTemporaryDir folder;
    test::BackgroundRun job(
        {u"-i"_s, QStringLiteral(TESSALY_MEDIA_FOLDER "/long.mp4"), folder.filePath(u"out.mp4"_s)});
    QTRY_VERIFY_WITH_TIMEOUT(job.chunks().join().contains("time="), patience);
    job.run.requestStop();
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QCOMPARE(job.outcome().end, End::stopped);
}

void TestConverterStop::stopsBeforeItStarts()
{
    test::FakeTools tools;
    ConverterRun run;
    run.requestStop();
    QCOMPARE(run.run({}).end, End::stopped);
    QCOMPARE(tools.calls(creator), QList<QStringList>());
}

void TestConverterStop::stops_data()
{
    QTest::addColumn<QList<QStringList>>("steps");
    QTest::addColumn<int>("code");
    const QStringList ready{u"complain"_s, u"ready"_s};
    QTest::newRow("dies of the signal") << QList<QStringList>{ready, {u"hang"_s}} << int(SIGTERM);
    QTest::newRow("flushes, then ends with the converter's own code")
        << QList<QStringList>{ready, {u"slow-flush"_s, u"300"_s}} << 255;
    QTest::newRow("ends as if all were well")
        << QList<QStringList>{ready, {u"slow-flush"_s, u"0"_s, u"0"_s}} << 0;
}

void TestConverterStop::stops()
{
    QFETCH(QList<QStringList>, steps);
    test::FakeTools tools;
    tools.setSteps(creator, steps);
    test::BackgroundRun job;
    QTRY_COMPARE_WITH_TIMEOUT(job.chunks().join(), "ready", patience);
    QElapsedTimer clock;
    clock.start();
    job.run.requestStop();
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QVERIFY2(clock.elapsed() < 8000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(job.outcome().end, End::stopped);
    QTEST(job.outcome().code, "code");
}

void TestConverterStop::stopsASuspendedConverter()
{
    test::FakeTools tools;
    tools.setSteps(creator, {{u"complain"_s, u"ready"_s}, {u"hang"_s}});
    test::BackgroundRun job;
    QTRY_COMPARE_WITH_TIMEOUT(job.chunks().join(), "ready", patience);
    const qint64 child = tools.runningProcesses(creator).value(0);
    ::kill(static_cast<pid_t>(child), SIGSTOP);
    QTRY_COMPARE_WITH_TIMEOUT(stateOfProcess(child), 'T', patience);
    job.run.requestStop(300ms);
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QCOMPARE(job.outcome().end, End::stopped);
    QCOMPARE(job.outcome().code, SIGKILL);
}

void TestConverterStop::killsWhenTheShortestPatienceIsOver_data()
{
    QTest::addColumn<QList<int>>("patiences"); // milliseconds
    QTest::newRow("one") << QList<int>{400};
    QTest::newRow("a shorter one later") << QList<int>{60000, 400};
    QTest::newRow("a longer one later") << QList<int>{400, 60000};
}

void TestConverterStop::killsWhenTheShortestPatienceIsOver()
{
    QFETCH(QList<int>, patiences);
    test::FakeTools tools;
    tools.setSteps(creator, {{u"ignore-terminate"_s}, {u"complain"_s, u"ready"_s}, {u"hang"_s}});
    test::BackgroundRun job;
    QTRY_COMPARE_WITH_TIMEOUT(job.chunks().join(), "ready", patience);
    QElapsedTimer clock;
    clock.start();
    for (const int milliseconds : patiences)
        job.run.requestStop(std::chrono::milliseconds(milliseconds));
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QVERIFY2(clock.elapsed() >= 400, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(job.outcome().end, End::stopped);
    QCOMPARE(job.outcome().code, SIGKILL);
}

void TestConverterStop::takesRequestsFromAnywhereAtAnyTime()
{
    test::FakeTools tools;
    tools.setBehaviour(creator, u"hang"_s);
    for (int round = 0; round < 20; ++round) {
        test::BackgroundRun job; // the requests come before, during and after its start
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&job] { job.run.requestStop(5s); });
        for (std::thread &thread : threads)
            thread.join();
        QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
        QCOMPARE(job.outcome().end, End::stopped);
        job.run.requestStop();
    }
    QCOMPARE(tools.runningProcesses(creator), QList<qint64>());
}

void TestConverterStop::endsWithTheProgram()
{
    test::FakeTools tools;
    tools.setSteps(creator, {{u"complain"_s, u"ready"_s}, {u"slow-flush"_s, u"100"_s}});
    test::BackgroundRun job;
    QTRY_COMPARE_WITH_TIMEOUT(job.chunks().join(), "ready", patience);
    endAllRuns();
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QCOMPARE(job.outcome().end, End::stopped);
    QCOMPARE(job.outcome().code, 255); // it had the time to flush
}

void TestConverterStop::startsNothingWhenTheProgramIsEnding()
{
    test::FakeTools tools;
    endAllRuns();
    QCOMPARE(ConverterRun().run({}).end, End::stopped);
    QCOMPARE(tools.calls(creator), QList<QStringList>());
}

void TestConverterStop::doesNotOutliveTheProgram_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("ordinary return") << u"return"_s;
    QTest::newRow("sudden exit") << u"exit"_s;
    QTest::newRow("killed") << u"kill"_s;
}

void TestConverterStop::doesNotOutliveTheProgram()
{
    QFETCH(QString, way);
    test::FakeTools tools;
    tools.setSteps(creator, {{u"complain"_s, u"ready"_s}, {u"hang"_s}});
    QProcess program;
    program.start(QStringLiteral(TESSALY_ENDING_PROGRAM), {tools.folder(), way});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), way == u"kill" ? QProcess::CrashExit : QProcess::NormalExit);
    QCOMPARE(tools.calls(creator).size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(tools.runningProcesses(creator), QList<qint64>(), patience);
}

} // namespace

TESSALY_TEST_MAIN(TestConverterStop)
#include "converter_stop_test.moc"
