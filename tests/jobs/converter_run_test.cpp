#include "background_run.h"
#include "jobs/converter_run.h"
#include "jobs/progress.h"
#include "platform/child_process.h"
#include "support/fake_tools.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <unistd.h>

using namespace tessaly;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using End = RunOutcome::End;

namespace {

const auto creator = u"creator"_s;
constexpr int patience = 30000; // milliseconds that a step may take on a busy machine

// The sanitizer holds freed memory back, so it takes a larger flood to see that memory is given back.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 floodSize = 1'000'000'000; // bytes
constexpr qint64 allowedGrowth = 600;       // megabytes
#else
constexpr qint64 floodSize = 250'000'000;
constexpr qint64 allowedGrowth = 32;
#endif

qint64 residentMegabytes()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly)) return -1;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) / 1'000'000;
}

// As the system names it: 'T' is stopped.
char stateOfProcess(qint64 process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly)) return '-';
    const QByteArray text = file.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1).front();
}

class TestConverterRun : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void convertsForReal();
    void cancelsForReal();
    void givesEachChunkAlone();
    void inheritsStandardOutput();
    void hasNoTerminal();
    void hasAProcessGroupOfItsOwn();
    void tellsTheEndOnce_data();
    void tellsTheEndOnce();
    void tellsWhoKilledIt();
    void tellsWhyItDidNotStart_data();
    void tellsWhyItDidNotStart();
    void doesNotWaitForWhatTheConverterLeftBehind();
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
    void staysSmallInAFlood_data();
    void staysSmallInAFlood();
};

void TestConverterRun::cleanup()
{
    letRunsStart();
}

void TestConverterRun::convertsForReal()
{
    test::FakeTools tools;
    tools.useRealTool(creator);
    const QTemporaryDir folder;
    const QString output = folder.filePath(u"out.mp4"_s);
    QByteArray text;
    double last = 0;
    const RunOutcome outcome = ConverterRun().run(
        {u"-i"_s, QStringLiteral(TESSALY_MEDIA_FOLDER "/plain.mp4"), u"-vf"_s, u"scale=160:90"_s, output},
        [&](const QByteArray &chunk) {
            text += chunk;
            last = percentOfChunk(chunk, 2).value_or(last);
        });
    QCOMPARE(outcome.end, End::ended);
    QCOMPARE(outcome.code, 0);
    QCOMPARE(outcome.lastText, text);
    QVERIFY(text.contains("time="));
    QVERIFY2(last > 95 && last < 110, text.constData());
    QVERIFY(QFileInfo(output).size() > 1000);
}

void TestConverterRun::cancelsForReal()
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

void TestConverterRun::givesEachChunkAlone()
{
    test::FakeTools tools;
    const QStringList said{u"one\r"_s, u"two\rthr"_s, u"ee\n"_s, u"é"_s};
    tools.setBehaviour(creator, u"progress"_s, QStringList(u"120"_s) + said);
    test::BackgroundRun job;
    const RunOutcome outcome = job.outcome();
    QCOMPARE(job.chunks(), (QByteArrayList{"one\r", "two\rthr", "ee\n", "\xC3\xA9"}));
    QCOMPARE(outcome.lastText, "one\rtwo\rthree\n\xC3\xA9");
}

void TestConverterRun::inheritsStandardOutput()
{
    test::FakeTools tools;
    tools.setSteps(creator, {{u"print"_s, u"a line\n"_s}, {u"complain"_s, u"an error"_s}});
    RunOutcome outcome;
    QCOMPARE(test::writtenTo(STDOUT_FILENO, [&] { outcome = ConverterRun().run({}); }), "a line\n");
    QCOMPARE(outcome.lastText, "an error");
}

void TestConverterRun::hasNoTerminal()
{
    test::FakeTools tools;
    tools.setBehaviour(creator, u"print-input-kind"_s);
    QCOMPARE(test::writtenTo(STDOUT_FILENO, [] { ConverterRun().run({}); }), "null device");
}

void TestConverterRun::hasAProcessGroupOfItsOwn()
{
    test::FakeTools tools;
    tools.setBehaviour(creator, u"hang"_s);
    test::BackgroundRun job;
    QTRY_COMPARE_WITH_TIMEOUT(tools.runningProcesses(creator).size(), 1, patience);
    const auto child = static_cast<pid_t>(tools.runningProcesses(creator).first());
    QCOMPARE(getpgid(child), child);
}

void TestConverterRun::tellsTheEndOnce_data()
{
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<QStringList>("parameters");
    QTest::addColumn<End>("end");
    QTest::addColumn<int>("code");
    QTest::newRow("good") << u"complain"_s << QStringList(u"x"_s) << End::ended << 0;
    QTest::newRow("silent") << u"exit"_s << QStringList(u"0"_s) << End::ended << 0;
    QTest::newRow("failed") << u"exit"_s << QStringList(u"69"_s) << End::ended << 69;
    QTest::newRow("the code of a cancelled converter, but nobody cancelled")
        << u"exit"_s << QStringList(u"255"_s) << End::ended << 255;
    QTest::newRow("crashed") << u"crash"_s << QStringList() << End::crashed << SIGSEGV;
}

void TestConverterRun::tellsTheEndOnce()
{
    QFETCH(QString, behaviour);
    QFETCH(QStringList, parameters);
    test::FakeTools tools;
    tools.setBehaviour(creator, behaviour, parameters);
    const RunOutcome outcome = ConverterRun().run({u"-i"_s, u"/a b.mp4"_s});
    QTEST(outcome.end, "end");
    QTEST(outcome.code, "code");
    QCOMPARE(outcome.reason, QString());
    QCOMPARE(tools.calls(creator), QList<QStringList>{QStringList({u"-i"_s, u"/a b.mp4"_s})});
}

void TestConverterRun::tellsWhoKilledIt()
{
    test::FakeTools tools;
    tools.setSteps(creator, {{u"complain"_s, u"last words"_s}, {u"hang"_s}});
    test::BackgroundRun job;
    QTRY_COMPARE_WITH_TIMEOUT(job.chunks().join(), "last words", patience);
    ::kill(static_cast<pid_t>(tools.runningProcesses(creator).value(0)), SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QCOMPARE(job.outcome().end, End::crashed);
    QCOMPARE(job.outcome().code, SIGKILL);
    QCOMPARE(job.outcome().lastText, "last words");
}

using Breaking = std::function<void(test::FakeTools &)>;

void TestConverterRun::tellsWhyItDidNotStart_data()
{
    QTest::addColumn<Breaking>("breakTool");
    QTest::addColumn<QString>("reason");
    const auto missing = u"The converter \"creator\" is missing."_s;
    const auto row = [](const char *name, const Breaking &breakTool, const QString &reason) {
        QTest::newRow(name) << breakTool << reason;
    };
    row(
        "missing", [](auto &tools) { tools.remove(creator); }, missing);
    row(
        "broken link", [](auto &tools) { tools.replaceByBrokenLink(creator); }, missing);
    row(
        "folder", [](auto &tools) { tools.replaceByFolder(creator); },
        u"creator\" is a folder, not a program."_s);
    row(
        "not executable", [](auto &tools) { tools.replaceByPlainFile(creator); },
        u"creator\" is not marked as executable."_s);
}

void TestConverterRun::tellsWhyItDidNotStart()
{
    QFETCH(Breaking, breakTool);
    QFETCH(QString, reason);
    test::FakeTools tools;
    breakTool(tools);
    const RunOutcome outcome = ConverterRun().run({});
    QCOMPARE(outcome.end, End::failedToStart);
    QVERIFY2(outcome.reason.endsWith(reason), qPrintable(outcome.reason));
    QCOMPARE(outcome.lastText, "");
}

void TestConverterRun::doesNotWaitForWhatTheConverterLeftBehind()
{
    test::FakeTools tools;
    tools.setSteps(creator, {{u"leave-behind"_s, u"60000"_s}, {u"complain"_s, u"the end"_s}});
    test::BackgroundRun job;
    QTRY_VERIFY_WITH_TIMEOUT(job.isOver(), patience);
    QCOMPARE(job.outcome().end, End::ended);
    QCOMPARE(job.outcome().lastText, "the end");
    for (const qint64 process : tools.runningProcesses(creator))
        ::kill(static_cast<pid_t>(process), SIGKILL);
}

void TestConverterRun::stopsBeforeItStarts()
{
    test::FakeTools tools;
    ConverterRun run;
    run.requestStop();
    QCOMPARE(run.run({}).end, End::stopped);
    QCOMPARE(tools.calls(creator), QList<QStringList>());
}

void TestConverterRun::stops_data()
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

void TestConverterRun::stops()
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

void TestConverterRun::stopsASuspendedConverter()
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

void TestConverterRun::killsWhenTheShortestPatienceIsOver_data()
{
    QTest::addColumn<QList<int>>("patiences"); // milliseconds
    QTest::newRow("one") << QList<int>{400};
    QTest::newRow("a shorter one later") << QList<int>{60000, 400};
    QTest::newRow("a longer one later") << QList<int>{400, 60000};
}

void TestConverterRun::killsWhenTheShortestPatienceIsOver()
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

void TestConverterRun::takesRequestsFromAnywhereAtAnyTime()
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

void TestConverterRun::endsWithTheProgram()
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

void TestConverterRun::startsNothingWhenTheProgramIsEnding()
{
    test::FakeTools tools;
    endAllRuns();
    QCOMPARE(ConverterRun().run({}).end, End::stopped);
    QCOMPARE(tools.calls(creator), QList<QStringList>());
}

void TestConverterRun::doesNotOutliveTheProgram_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("ordinary return") << u"return"_s;
    QTest::newRow("sudden exit") << u"exit"_s;
    QTest::newRow("killed") << u"kill"_s;
}

void TestConverterRun::doesNotOutliveTheProgram()
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

void TestConverterRun::staysSmallInAFlood_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("less than is kept") << ConverterRun::keptText - qint64(10);
    QTest::newRow("far more than may be kept") << floodSize;
}

void TestConverterRun::staysSmallInAFlood()
{
    QFETCH(qint64, bytes);
    test::FakeTools tools;
    tools.setSteps(creator, {{u"flood-stderr"_s, QString::number(bytes)}, {u"complain"_s, u"the end"_s}});
    qint64 received = 0;
    qint64 largest = 0;
    const qint64 before = residentMegabytes();
    const RunOutcome outcome = ConverterRun().run({}, [&](const QByteArray &chunk) {
        received += chunk.size();
        largest = qMax(largest, residentMegabytes());
    });
    QCOMPARE(received, bytes + 7);
    QCOMPARE(outcome.lastText.size(), qMin<qint64>(ConverterRun::keptText, bytes + 7));
    QVERIFY(outcome.lastText.endsWith("the end"));
    QVERIFY2(largest - before < allowedGrowth, qPrintable(u"%1 MB, then %2 MB"_s.arg(before).arg(largest)));
}

} // namespace

TESSALY_TEST_MAIN(TestConverterRun)
#include "converter_run_test.moc"
