#include "platform/child_process.h"
#include "platform/waiting_modes.h"
#include "support/fake_tools.h"
#include "support/memory.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using End = tessaly::ProcessOutcome::End;
using Steps = QList<QStringList>;

Q_DECLARE_METATYPE(tessaly::ProcessOutcome::End)

namespace tessaly::test {

namespace {

const QString tool = u"sniffer"_s;

// The sanitizer holds freed memory back, so it takes a larger flood to see that memory is given back.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 floodSize = 1'000'000'000; // bytes
constexpr qint64 allowedGrowth = 600;       // megabytes
#else
constexpr qint64 floodSize = 250'000'000;
constexpr qint64 allowedGrowth = 32;
#endif

void killAll(const FakeTools &tools)
{
    for (const qint64 process : tools.runningProcesses(tool))
        ::kill(static_cast<pid_t>(process), SIGKILL);
}

// Counts the input events that reach it.
class Target : public QObject
{
public:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) ++inputs;
        return QObject::event(event);
    }
    int inputs = 0;
};

} // namespace

// How long a run may take, how much it may say, and what goes on meanwhile.
class ChildProcessWaitTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void limits_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<int>("milliseconds");
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<End>("end");
        QTest::addColumn<qint64>("captured");
        const Steps stubborn{{u"ignore-terminate"_s}, {u"print"_s, u"abc"_s}, {u"hang"_s}};
        addRows("never ends", Steps{{u"hang"_s}}, 3000, qint64(0), End::timedOut, qint64(0));
        addRows("never ends and ignores being terminated", stubborn, 3000, qint64(0), End::timedOut,
                qint64(3));
        addRows("ends in time", Steps{{u"pause"_s, u"20"_s}}, waitLimit, qint64(0), End::exited, qint64(0));
        addRows("floods", Steps{{u"flood-stdout"_s, u"1000000000000"_s}}, waitLimit, qint64(1000),
                End::tooMuchOutput, qint64(1000));
        addRows("one byte too much", Steps{{u"print"_s, u"abcd"_s}, {u"hang"_s}}, waitLimit, qint64(3),
                End::tooMuchOutput, qint64(3));
        addRows("as much as is allowed", Steps{{u"print"_s, u"abcd"_s}}, waitLimit, qint64(4), End::exited,
                qint64(4));
    }

    void limits()
    {
        QFETCH(Waiting, waiting);
        QFETCH(Steps, steps);
        QFETCH(int, milliseconds);
        QFETCH(qint64, bytes);
        QFETCH(End, end);
        QFETCH(qint64, captured);
        FakeTools tools;
        tools.setSteps(tool, steps);
        CapturedRun run;
        // On a busy machine a child may not even come to its first word before a short limit: then it gets a
        // longer one.
        for (;; milliseconds *= 4) {
            tools.forgetCalls(tool);
            QElapsedTimer clock;
            clock.start();
            inWaitingMode(waiting, [&] {
                run = runCapturingOutput(tools.path(tool), {},
                                         {std::chrono::milliseconds(milliseconds), bytes});
            });
            if (end == End::timedOut) QVERIFY(clock.elapsed() >= milliseconds);
            QCOMPARE(run.outcome.end, end);
            QVERIFY(tools.runningProcesses(tool).isEmpty());
            const bool hasBegun = tools.calls(tool).size() == 1 && run.output.size() >= captured;
            if (hasBegun || milliseconds > waitLimit) break;
        }
        QCOMPARE(run.output.size(), captured);
        QCOMPARE(tools.calls(tool).size(), 1);
    }

    void theTimeLimitHoldsWithoutAPipeToo()
    {
        FakeTools tools;
        tools.setBehaviour(tool, u"hang"_s);
        QCOMPARE(runToEnd(tools.path(tool), {}, {150ms}).end, End::timedOut);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
    }

    // What another process adds after the child's end belongs to the output, too.
    void standardOutputIsReadToTheEndOfThePipe_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<int>("milliseconds"); // the limit; 0: none
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<int>("code");
        const auto leave = [](const char *time, const char *words) {
            return QStringList{u"leave-behind"_s, QString::fromLatin1(time), QString::fromLatin1(words)};
        };
        const QStringList print{u"print"_s, u"done"_s};
        addRows("the other one ends soon", Steps{leave("300", ", later"), print}, 0, "done, later"_ba, 0);
        addRows("the other one ends soon, the child failed",
                Steps{leave("300", ", later"), print, {u"exit"_s, u"3"_s}}, 60000, "done, later"_ba, 3);
        addRows("the other one stays", Steps{leave("60000", ", never"), print}, 3000, "done"_ba, 0);
    }

    void standardOutputIsReadToTheEndOfThePipe()
    {
        QFETCH(Waiting, waiting);
        QFETCH(Steps, steps);
        QFETCH(int, milliseconds);
        FakeTools tools;
        tools.setSteps(tool, steps);
        CapturedRun run;
        const ProcessLimits limits{.time = std::chrono::milliseconds(milliseconds)};
        inWaitingMode(waiting, [&] { run = runCapturingOutput(tools.path(tool), {}, limits); });
        killAll(tools);
        QCOMPARE(run.outcome.end, End::exited);
        QTEST(run.outcome.code, "code");
        QTEST(run.output, "output");
    }

    void standardErrorEndsWithTheChild()
    {
        FakeTools tools;
        constexpr int othersTime = 10 * waitLimit; // in which that one still has the pipe
        tools.setSteps(tool, {{u"leave-behind"_s, QString::number(othersTime)}, {u"complain"_s, u"done"_s}});
        for (const auto &[name, mode] : waitingModes) {
            ProcessOutcome outcome;
            QByteArray text;
            QElapsedTimer clock;
            clock.start();
            inWaitingMode(mode, [&] {
                outcome = ChildProcess().run(tools.path(tool), {}, Reading::standardError,
                                             [&](const QByteArray &chunk) { text += chunk; });
            });
            QVERIFY2(clock.elapsed() < othersTime, name);
            QTRY_VERIFY2(tools.runningProcesses(tool).isEmpty(), name);
            QVERIFY2(outcome.succeeded(), name);
            QCOMPARE(text, "done"_ba);
        }
    }

    // The child goes on when the last piece has been handed on, so that none can come together.
    void chunksAreGivenAsTheyWereRead()
    {
        for (const auto &[name, mode] : waitingModes) {
            FakeTools tools;
            const QStringList said{u"one\r"_s, u"two\rthr"_s, u"ee\n"_s, u"é"_s};
            Steps steps;
            for (const QString &words : said)
                steps += {{u"complain"_s, words},
                          {u"wait-for-file"_s, tools.path(QString::number(steps.size() / 2 + 1))}};
            tools.setSteps(tool, steps);
            QByteArrayList chunks;
            inWaitingMode(mode, [&] {
                (void)ChildProcess().run(tools.path(tool), {}, Reading::standardError, [&](auto &chunk) {
                    chunks += chunk;
                    QFile file(tools.path(QString::number(chunks.size())));
                    QVERIFY(file.open(QIODevice::WriteOnly));
                });
            });
            QVERIFY2((chunks == QByteArrayList{"one\r", "two\rthr", "ee\n", "\xC3\xA9"}), name);
        }
    }

    void staysSmallInAFlood()
    {
        FakeTools tools;
        tools.setSteps(tool,
                       {{u"flood-stderr"_s, QString::number(floodSize)}, {u"complain"_s, u"the end"_s}});
        qint64 received = 0;
        qint64 largest = 0;
        QByteArray last;
        const qint64 before = residentMegabytes();
        const auto outcome =
            ChildProcess().run(tools.path(tool), {}, Reading::standardError, [&](auto &chunk) {
                received += chunk.size();
                largest = qMax(largest, residentMegabytes());
                last = chunk;
            });
        QVERIFY(outcome.succeeded());
        QCOMPARE(received, floodSize + 7);
        QVERIFY(last.endsWith("the end"));
        QVERIFY2(largest - before < allowedGrowth,
                 qPrintable(u"%1 MB, then %2 MB"_s.arg(before).arg(largest)));
    }

    void waitingInAnEventLoopFiresTimersAndThrowsInputAway()
    {
        FakeTools tools;
        const QString enough = tools.path(u"enough"_s);
        tools.setBehaviour(tool, u"wait-for-file"_s, {enough});
        Target target;
        int ticks = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &target, [&] {
            QFile file(enough);
            if (++ticks < 5) QCoreApplication::postEvent(&target, new QEvent(QEvent::KeyPress));
            if (ticks == 5) QVERIFY(file.open(QIODevice::WriteOnly)); // now the child may end
        });
        inWaitingMode(Waiting::inEventLoop, [&] {
            timer.start(1);
            QCoreApplication::postEvent(&target, new QEvent(QEvent::MouseButtonPress));
            (void)runToEnd(tools.path(tool), {});
            timer.stop();
        });
        QVERIFY(ticks >= 5);
        QCoreApplication::processEvents();
        QCOMPARE(target.inputs, 0);
        QCoreApplication::postEvent(&target, new QEvent(QEvent::KeyPress));
        QTRY_COMPARE(target.inputs, 1);
    }

    void waitingElsewhereDispatchesNothing()
    {
        FakeTools tools;
        tools.setBehaviour(tool, u"pause"_s, {u"300"_s});
        Target target;
        bool ticked = false;
        QTimer::singleShot(0, &target, [&] { ticked = true; });
        QCoreApplication::postEvent(&target, new QEvent(QEvent::KeyPress));
        QVERIFY(runToEnd(tools.path(tool), {}).succeeded());
        QVERIFY(!ticked);
        QCOMPARE(target.inputs, 0);
        QTRY_VERIFY(ticked);
        QCOMPARE(target.inputs, 1); // nothing was busy: the key is kept
    }

    void aRunMayBeginDuringAnother()
    {
        FakeTools tools;
        tools.setSteps(tool, {{u"pause"_s, u"100"_s}, {u"print"_s, u"outer"_s}});
        tools.setSteps(u"creator"_s, {{u"pause"_s, u"300"_s}, {u"print"_s, u"inner"_s}});
        CapturedRun outer;
        CapturedRun inner;
        inWaitingMode(Waiting::inEventLoop, [&] {
            QTimer::singleShot(0, this, [&] { inner = runCapturingOutput(tools.path(u"creator"_s), {}); });
            outer = runCapturingOutput(tools.path(tool), {});
        });
        QCOMPARE(outer.output, "outer"_ba);
        QCOMPARE(inner.output, "inner"_ba);
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::ChildProcessWaitTest)
#include "child_process_wait_test.moc"
