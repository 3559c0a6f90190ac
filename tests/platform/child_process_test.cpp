#include "platform/child_process.h"
#include "platform/waiting_modes.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSet>

#include <csignal>

using namespace Qt::StringLiterals;
using End = tessaly::ProcessOutcome::End;
using Steps = QList<QStringList>;

Q_DECLARE_METATYPE(tessaly::ProcessOutcome::End)
Q_DECLARE_METATYPE(tessaly::Reading)

namespace tessaly::test {

namespace {

const QString tool = u"sniffer"_s;

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
            QVERIFY(outcome.failure.isEmpty());
        }
    }

    void cannotStart_data()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("failure");
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
                u"The program \"%1\" is missing."_s.arg(QDir::current().filePath(u"true"_s)));
    }

    void cannotStart()
    {
        QFETCH(Waiting, waiting);
        QFETCH(QString, kind);
        QFETCH(QString, failure);
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
            QCOMPARE(outcome.failure, failure.contains("%1"_L1) ? failure.arg(program) : failure);
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

    void passesArgumentsAsTheyAre()
    {
        const QStringList arguments{u"-v"_s,          u""_s,    u"a b"_s,        u"\"q'\\ $HOME `x` *"_s,
                                    u"line\nbreak"_s, u"%d"_s,  u"Fünf 🎬.mp4"_s, u"-leading"_s,
                                    u"; exit 1"_s,    u"<b>&"_s};
        FakeTools tools;
        QVERIFY(runCapturingOutput(tools.path(tool), arguments).outcome.succeeded());
        QVERIFY(runToEnd(tools.path(tool), {}).succeeded());
        QCOMPARE(tools.calls(tool), (QList<QStringList>{arguments, {}}));
    }

    void handsOnTheEnvironment_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::newRow("with settings of malloc that suit large frames") << QByteArray();
        QTest::newRow("as it is, where the person has some") << "glibc.malloc.check=1"_ba;
    }

    void handsOnTheEnvironment()
    {
        QFETCH(QByteArray, before);
        const char *variable = "GLIBC_TUNABLES";
        if (!before.isEmpty()) qputenv(variable, before);
        const auto clean = qScopeGuard([variable] { qunsetenv(variable); });
        const QStringList expected = QProcessEnvironment::systemEnvironment().toStringList();
        const CapturedRun run = runCapturingOutput(u"/usr/bin/env"_s, {});
        QVERIFY(run.outcome.succeeded());
        QStringList lines = QString::fromLocal8Bit(run.output).split(u'\n', Qt::SkipEmptyParts);
        if (before.isEmpty()) {
            const QStringList settings =
                lines.filter(QRegularExpression(u"^GLIBC_TUNABLES=(.*:)?glibc.malloc.hugetlb=1(:|$)"_s));
            QCOMPARE(settings.size(), 1);
            lines.removeOne(settings.first());
        }
        QCOMPARE(QSet<QString>(lines.cbegin(), lines.cend()),
                 QSet<QString>(expected.cbegin(), expected.cend()));
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
        QVERIFY(helper.waitForFinished(waitLimit));
        QCOMPARE(helper.exitCode(), 0);
        QCOMPARE(helper.readAllStandardOutput(), output);
        QCOMPARE(helper.readAllStandardError(), "trouble"_ba);
    }

    void howAChildStandsToThisProgram_data()
    {
        QTest::addColumn<Reading>("reading");
        QTest::newRow("nothing is read") << Reading::nothing;
        QTest::newRow("standard output is read") << Reading::standardOutput;
        QTest::newRow("standard error is read") << Reading::standardError;
    }

    void howAChildStandsToThisProgram()
    {
        QFETCH(Reading, reading);
        FakeTools tools;
        const QString notes = tools.path(u"notes"_s);
        tools.setBehaviour(tool, u"note-treatment"_s, {notes});
        const auto formerTreatment = std::signal(SIGPIPE, SIG_IGN);
        sigset_t blocked;
        sigset_t before;
        ::sigemptyset(&blocked);
        ::sigaddset(&blocked, SIGTERM);
        ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
        const ProcessOutcome outcome = ChildProcess().run(tools.path(tool), {}, reading);
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        std::signal(SIGPIPE, formerTreatment);

        QVERIFY(outcome.succeeded());
        QFile file(notes);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(),
                 "a group of its own\nSigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n"_ba);
    }

    // Nothing hangs where the system is out of descriptors, however few are missing.
    void withoutDescriptors()
    {
#if defined(__SANITIZE_ADDRESS__)
        QSKIP("The sanitizer itself needs descriptors to look at memory.");
#endif
        FakeTools tools;
        tools.setBehaviour(tool, u"print"_s, {u"run"_s});
        QProcess helper;
        helper.start(QStringLiteral(TESSALY_PLATFORM_HELPER), {u"starve"_s, tools.path(tool)});
        QVERIFY(helper.waitForFinished(20000));
        QCOMPARE(helper.exitCode(), 0);
        QByteArrayList ends = helper.readAllStandardOutput().trimmed().split('\n');
        QCOMPARE(ends.takeLast(), "run"_ba);
        QVERIFY(ends.size() > 2);
        const QString failure = u"The program \"%1\" cannot be run on this computer"_s.arg(tools.path(tool));
        for (const QByteArray &end : ends)
            QVERIFY2(end.startsWith(failure.toUtf8()), end.constData());
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::ChildProcessTest)
#include "child_process_test.moc"
