#include "platform/child_process.h"
#include "platform/waiting_modes.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using End = tessaly::ProcessOutcome::End;
using Steps = QList<QStringList>;

Q_DECLARE_METATYPE(tessaly::ProcessOutcome::End)

namespace tessaly::test {

namespace {

const QString tool = u"sniffer"_s;

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
        addRows("never ends", Steps{{u"hang"_s}}, 150, qint64(0), End::timedOut, qint64(0));
        addRows("never ends and ignores being terminated", stubborn, 500, qint64(0), End::timedOut,
                qint64(3));
        addRows("ends in time", Steps{{u"pause"_s, u"20"_s}}, 20000, qint64(0), End::exited, qint64(0));
        addRows("floods", Steps{{u"flood-stdout"_s, u"1000000000000"_s}}, 20000, qint64(1000),
                End::tooMuchOutput, qint64(1000));
        addRows("one byte too much", Steps{{u"print"_s, u"abcd"_s}, {u"hang"_s}}, 20000, qint64(3),
                End::tooMuchOutput, qint64(3));
        addRows("as much as is allowed", Steps{{u"print"_s, u"abcd"_s}}, 20000, qint64(4), End::exited,
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
        QElapsedTimer clock;
        clock.start();
        CapturedRun run;
        inWaitingMode(waiting, [&] {
            run = runCapturingOutput(tools.path(tool), {}, {std::chrono::milliseconds(milliseconds), bytes});
        });
        QVERIFY2(clock.elapsed() < 10000, "a limit of the run, not of its patience, ended it");
        if (end == End::timedOut) QVERIFY(clock.elapsed() >= milliseconds);
        QCOMPARE(run.outcome.end, end);
        QCOMPARE(run.output.size(), captured);
        QCOMPARE(tools.calls(tool).size(), 1);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
    }

    void theTimeLimitHoldsWithoutAPipeToo()
    {
        FakeTools tools;
        tools.setBehaviour(tool, u"hang"_s);
        QCOMPARE(runToEnd(tools.path(tool), {}, {150ms}).end, End::timedOut);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
    }

    void isOverWithTheChildNotWithItsOffspring()
    {
        FakeTools tools;
        tools.setSteps(tool, {{u"leave-behind"_s, u"60000"_s}, {u"print"_s, u"done"_s}});
        for (const auto &[name, mode] : waitingModes) {
            QElapsedTimer clock;
            clock.start();
            CapturedRun run;
            inWaitingMode(mode, [&] { run = runCapturingOutput(tools.path(tool), {}); });
            QVERIFY2(clock.elapsed() < 10000, name);
            QVERIFY(run.outcome.succeeded());
            QCOMPARE(run.output, "done"_ba);
        }
        for (const qint64 process : tools.runningProcesses(tool))
            ::kill(static_cast<pid_t>(process), SIGKILL);
    }

    void waitingInAnEventLoopFiresTimersAndThrowsInputAway()
    {
        FakeTools tools;
        tools.setBehaviour(tool, u"pause"_s, {u"300"_s});
        Target target;
        int ticks = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &target, [&] {
            ++ticks;
            QCoreApplication::postEvent(&target, new QEvent(QEvent::KeyPress));
        });
        inWaitingMode(Waiting::inEventLoop, [&] {
            timer.start(10);
            QCoreApplication::postEvent(&target, new QEvent(QEvent::MouseButtonPress));
            runToEnd(tools.path(tool), {});
            timer.stop();
        });
        QVERIFY2(ticks >= 5, qPrintable(QString::number(ticks)));
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
