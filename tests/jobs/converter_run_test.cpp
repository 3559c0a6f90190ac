// The converter as a child: its channels, its text, its end.
#include "background_run.h"
#include "jobs/converter_run.h"
#include "jobs/progress.h"
#include "support/fake_tools.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QTemporaryDir>

#include <csignal>
#include <unistd.h>

using namespace tessaly;
using namespace Qt::StringLiterals;
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

class TestConverterRun : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void convertsForReal();
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
    void staysSmallInAFlood_data();
    void staysSmallInAFlood();
};

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
