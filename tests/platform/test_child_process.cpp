#include "platform/child_process.h"
#include "platform/waiting_modes.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using End = tessaly::ProcessOutcome::End;
using Steps = QList<QStringList>;

Q_DECLARE_METATYPE(tessaly::ProcessOutcome::End)

namespace tessaly::test {

namespace {

const QString tool = u"sniffer"_s;
const std::pair<const char *, Waiting> modes[] = {{"plainly", Waiting::plainly},
                                                  {"in an event loop", Waiting::inEventLoop},
                                                  {"in a pool thread", Waiting::inPoolThread}};

template<class... Values>
void addRows(const char *name, const Values &...values)
{
    for (const auto &[modeName, mode] : modes) {
        QTestData &row = QTest::addRow("%s, waiting %s", name, modeName) << mode;
        ((row << values), ...);
    }
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

class ChildProcessTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void howItEnded_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<End>("end");
        QTest::addColumn<int>("code");
        addRows("good", Steps{}, End::exited, 0);
        addRows("status 3", Steps{{u"exit"_s, u"3"_s}}, End::exited, 3);
        addRows("status 255", Steps{{u"exit"_s, u"255"_s}}, End::exited, 255);
        addRows("a crash", Steps{{u"crash"_s}}, End::signalled, SIGSEGV);
        addRows("after a while", Steps{{u"pause"_s, u"250"_s}, {u"exit"_s, u"4"_s}}, End::exited, 4);
    }

    void howItEnded()
    {
        QFETCH(Waiting, waiting);
        QFETCH(Steps, steps);
        QFETCH(End, end);
        QFETCH(int, code);
        FakeTools tools;
        tools.setSteps(tool, steps);
        ProcessOutcome captured;
        ProcessOutcome inherited;
        inWaitingMode(waiting, [&] { captured = runCapturingOutput(tools.path(tool), {}).outcome; });
        inWaitingMode(waiting, [&] { inherited = runToEnd(tools.path(tool), {}); });
        for (const ProcessOutcome &outcome : {captured, inherited}) {
            QCOMPARE(outcome.end, end);
            QCOMPARE(outcome.code, code);
            QCOMPARE(outcome.succeeded(), end == End::exited && code == 0);
            QVERIFY(outcome.reason.isEmpty());
        }
    }

    void cannotStart_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("reason");
        addRows("missing", u"missing"_s, u"The program \"%1\" is missing."_s);
        addRows("a broken link", u"broken link"_s, u"The program \"%1\" is missing."_s);
        addRows("a folder", u"folder"_s, u"\"%1\" is a folder, not a program."_s);
        addRows("not executable", u"plain"_s, u"The program \"%1\" is not marked as executable."_s);
        addRows("no program", u"text"_s,
                u"The program \"%1\" cannot be run on this computer (Exec format error)."_s);
        addRows("an interpreter that is missing", u"script"_s,
                u"The program \"%1\" cannot be run on this computer (No such file or directory)."_s);
        addRows("no name", u"no name"_s, u"A program is missing."_s);
        addRows("a name that only the search path knows", u"search path"_s,
                u"The program \"true\" is missing."_s);
    }

    void cannotStart()
    {
        QFETCH(Waiting, waiting);
        QFETCH(QString, kind);
        QFETCH(QString, reason);
        FakeTools tools;
        if (kind == "missing"_L1) tools.remove(tool);
        if (kind == "broken link"_L1) tools.replaceByBrokenLink(tool);
        if (kind == "folder"_L1) tools.replaceByFolder(tool);
        if (kind == "plain"_L1) tools.replaceByPlainFile(tool);
        if (kind == "text"_L1 || kind == "script"_L1) {
            tools.replaceByPlainFile(tool, kind == "script"_L1 ? "#!/nowhere/sh\n" : "no program\n");
            QVERIFY(QFile::setPermissions(tools.path(tool), QFile::ReadOwner | QFile::ExeOwner));
        }
        QString program = tools.path(tool);
        if (kind == "no name"_L1) program.clear();
        if (kind == "search path"_L1) program = u"true"_s;
        ProcessOutcome captured;
        ProcessOutcome inherited;
        inWaitingMode(waiting, [&] { captured = runCapturingOutput(program, {}).outcome; });
        inWaitingMode(waiting, [&] { inherited = runToEnd(program, {}); });
        for (const ProcessOutcome &outcome : {captured, inherited}) {
            QCOMPARE(outcome.end, End::failedToStart);
            QCOMPARE(outcome.reason, reason.contains("%1"_L1) ? reason.arg(program) : reason);
            QVERIFY(!outcome.succeeded());
        }
    }

    void capturesWhateverComes_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<QByteArray>("output");
        QByteArray lines;
        while (lines.size() < 50'000'000)
            lines += QByteArray(79, 'x') + '\n';
        addRows("nothing", Steps{}, QByteArray());
        addRows("text", Steps{{u"print"_s, u"a\r\nb\\"_s}}, QByteArray("a\r\nb\\"));
        addRows("in two parts, then a failure",
                Steps{{u"print"_s, u"a"_s}, {u"pause"_s, u"50"_s}, {u"print"_s, u"b"_s}, {u"crash"_s}},
                QByteArray("ab"));
        addRows("bytes that are no text", Steps{{u"invalid-utf8"_s}},
                QByteArray("{\"format\": {\"a\": \"\xff\xfe\"}}\n"));
        addRows("much more than a pipe holds", Steps{{u"flood-stdout"_s, u"50000000"_s}}, lines);
    }

    void capturesWhateverComes()
    {
        QFETCH(Waiting, waiting);
        QFETCH(Steps, steps);
        QFETCH(QByteArray, output);
        FakeTools tools;
        tools.setSteps(tool, steps);
        CapturedRun run;
        inWaitingMode(waiting, [&] { run = runCapturingOutput(tools.path(tool), {}); });
        QVERIFY(run.output == output);
    }

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
        for (const auto &[name, mode] : modes) {
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

    void passesArgumentsAsTheyAre()
    {
        const QStringList arguments{u"-v"_s,          u""_s,    u"a b"_s,        u"\"q'\\ $HOME `x` *"_s,
                                    u"line\nbreak"_s, u"%d"_s,  u"Fünf 🎬.mp4"_s, u"-leading"_s,
                                    u"; exit 1"_s,    u"<b>&"_s};
        FakeTools tools;
        runCapturingOutput(tools.path(tool), arguments);
        runToEnd(tools.path(tool), {});
        QCOMPARE(tools.calls(tool), (QList<QStringList>{arguments, {}}));
    }

    // Another process with channels of its own, its standard input open and never ended.
    void channels_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("captured output, inherited errors") << u"capture"_s << "[null device]"_ba;
        QTest::newRow("both inherited") << u"run"_s << "null device"_ba;
    }

    void channels()
    {
        QFETCH(QString, mode);
        QFETCH(QByteArray, output);
        FakeTools tools;
        tools.setSteps(tool, {{u"print-input-kind"_s}, {u"complain"_s, u"trouble"_s}});
        QProcess helper;
        helper.start(QStringLiteral(TESSALY_PLATFORM_HELPER), {mode, tools.path(tool)});
        QVERIFY(helper.waitForFinished(20000));
        QCOMPARE(helper.exitCode(), 0);
        QCOMPARE(helper.readAllStandardOutput(), output);
        QCOMPARE(helper.readAllStandardError(), "trouble"_ba);
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

TESSALY_TEST_MAIN(tessaly::test::ChildProcessTest)
#include "test_child_process.moc"
