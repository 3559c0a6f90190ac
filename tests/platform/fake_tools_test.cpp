#include "platform/bundle.h"
#include "platform/child_process.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>

using namespace Qt::StringLiterals;
using Steps = QList<QStringList>;

namespace tessaly::test {

namespace {

const QString tool = u"creator"_s;

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "no file"_ba;
}

} // namespace

// The fake tool does what its list of steps says: other tests stand on it.
class FakeToolsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void bothToolsAreResourcesWhileItLives()
    {
        {
            const FakeTools tools;
            QCOMPARE(pathForResource(u"sniffer"_s), tools.path(u"sniffer"_s));
            QCOMPARE(pathForResource(u"creator"_s), tools.path(u"creator"_s));
            QVERIFY(runToEnd(tools.path(u"sniffer"_s), {}).succeeded());
        }
        QVERIFY(!pathForResource(u"sniffer"_s));
    }

    void steps_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QByteArray>("errors");
        const QString file = place.filePath(u"clip"_s);
        QFile clip(file);
        QVERIFY(clip.open(QIODevice::WriteOnly) && clip.write("\r\n\0x", 4) == 4);
        QTest::newRow("nothing") << Steps{} << 0 << ""_ba
                                 << ""_ba;
        QTest::newRow("print") << Steps{{u"print"_s, u"a\\b\n\tc\r"_s}} << 0 << "a\\b\n\tc\r"_ba
                               << ""_ba;
        QTest::newRow("print-file") << Steps{{u"print-file"_s, file}} << 0 << QByteArray("\r\n\0x", 4)
                                    << ""_ba;
        QTest::newRow("rubbish") << Steps{{u"rubbish"_s}} << 0 << "no JSON at all\n"_ba
                                 << ""_ba;
        QTest::newRow("invalid-utf8")
            << Steps{{u"invalid-utf8"_s}} << 0 << "{\"format\": {\"a\": \"\xff\xfe\"}}\n"_ba
            << ""_ba;
        QTest::newRow("open-brace") << Steps{{u"open-brace"_s}} << 0 << "{\n"_ba
                                    << ""_ba;
        QTest::newRow("print-input-kind") << Steps{{u"print-input-kind"_s}} << 0 << "ended"_ba
                                          << ""_ba;
        QTest::newRow("complain") << Steps{{u"complain"_s, u"no"_s}} << 0 << ""_ba
                                  << "no"_ba;
        QTest::newRow("complain-file")
            << Steps{{u"complain-file"_s, file}} << 0 << ""_ba << QByteArray("\r\n\0x", 4);
        QTest::newRow("progress") << Steps{{u"progress"_s, u"1"_s, u"time=1\r"_s, u"time=2\r"_s}} << 0
                                  << ""_ba
                                  << "time=1\rtime=2\r"_ba;
        QTest::newRow("flood-stdout") << Steps{{u"flood-stdout"_s, u"3"_s}} << 0 << "xxx"_ba
                                      << ""_ba;
        QTest::newRow("flood-stderr") << Steps{{u"flood-stderr"_s, u"200000"_s}} << 0 << ""_ba
                                      << (QByteArray(79, 'x') + '\n').repeated(2500);
        QTest::newRow("pause") << Steps{{u"pause"_s, u"1"_s}, {u"print"_s, u"a"_s}} << 0 << "a"_ba
                               << ""_ba;
        QTest::newRow("exit, nothing after it")
            << Steps{{u"exit"_s, u"69"_s}, {u"print"_s, u"a"_s}} << 69 << ""_ba
            << ""_ba;
        QTest::newRow("become") << Steps{{u"become"_s, u"/bin/echo"_s}} << 0 << "in out\n"_ba
                                << ""_ba;
        QTest::newRow("an unknown step") << Steps{{u"dance"_s}} << 99 << ""_ba
                                         << "fake tool: no behaviour is called dance\n"_ba;
        QTest::newRow("a missing parameter") << Steps{{u"exit"_s}} << 99 << ""_ba
                                             << "fake tool: a parameter is missing or wrong\n"_ba;
    }

    void steps()
    {
        QFETCH(Steps, steps);
        QFETCH(int, status);
        QFETCH(QByteArray, output);
        QFETCH(QByteArray, errors);
        FakeTools tools;
        tools.setSteps(tool, steps);
        QProcess process;
        process.start(tools.path(tool), {u"in"_s, u"out"_s});
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished(waitLimit));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), status);
        QCOMPARE(process.readAllStandardOutput(), output);
        QCOMPARE(process.readAllStandardError(), errors);
    }

    void signals_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<int>("sent");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("signal");
        const QStringList ready{u"print"_s, u"ready"_s};
        QTest::newRow("crash") << Steps{ready, {u"crash"_s}} << 0 << 0 << SIGSEGV;
        QTest::newRow("hang, terminated") << Steps{ready, {u"hang"_s}} << SIGTERM << 0 << SIGTERM;
        QTest::newRow("hang, terminated in vain, then killed")
            << Steps{{u"ignore-terminate"_s}, ready, {u"hang"_s}} << SIGKILL << 0 << SIGKILL;
        QTest::newRow("slow-flush") << Steps{ready, {u"slow-flush"_s, u"50"_s}} << SIGTERM << 255 << 0;
        QTest::newRow("slow-flush with a status of its own")
            << Steps{ready, {u"slow-flush"_s, u"50"_s, u"7"_s}} << SIGTERM << 7 << 0;
    }

    void signals()
    {
        QFETCH(Steps, steps);
        QFETCH(int, sent);
        QFETCH(int, status);
        QFETCH(int, signal);
        FakeTools tools;
        tools.setSteps(tool, steps);
        QProcess process;
        process.start(tools.path(tool), {});
        QVERIFY(process.waitForReadyRead(waitLimit));
        const pid_t id = static_cast<pid_t>(process.processId());
        if (sent == SIGKILL) {
            ::kill(id, SIGTERM);
            QVERIFY(!process.waitForFinished(100));
        }
        if (sent != 0) ::kill(id, sent);
        QVERIFY(process.waitForFinished(waitLimit));
        QCOMPARE(process.exitStatus(), signal != 0 ? QProcess::CrashExit : QProcess::NormalExit);
        QCOMPARE(process.exitCode(), signal != 0 ? signal : status);
        QVERIFY(tools.runningProcesses(tool).isEmpty());
    }

    void output_data()
    {
        QTest::addColumn<Steps>("steps");
        QTest::addColumn<QByteArray>("bytes");
        const QString file = place.filePath(u"source"_s);
        QFile source(file);
        QVERIFY(source.open(QIODevice::WriteOnly) && source.write("\0film", 5) == 5);
        QTest::newRow("none") << Steps{} << "no file"_ba;
        QTest::newRow("an empty file") << Steps{{u"write-output"_s, u""_s}} << ""_ba;
        QTest::newRow("half a file, then a failure")
            << Steps{{u"write-output"_s, u"half"_s}, {u"exit"_s, u"1"_s}} << "half"_ba;
        QTest::newRow("a text, held") << Steps{{u"hold-output"_s, u"film"_s}} << "film"_ba;
        QTest::newRow("a copy") << Steps{{u"copy-to-output"_s, file}} << QByteArray("\0film", 5);
    }

    void output()
    {
        QFETCH(Steps, steps);
        QFETCH(QByteArray, bytes);
        FakeTools tools;
        tools.setSteps(tool, steps);
        const QString path = place.filePath(u"output"_s);
        QFile::remove(path);
        (void)runToEnd(tools.path(tool), {u"-i"_s, u"in"_s, path});
        QCOMPARE(contents(path), bytes);
    }

    void failsAtTheCallThatIsNamed()
    {
        FakeTools tools;
        tools.setSteps(tool, {{u"fail-at-call"_s, u"2"_s, u"5"_s}, {u"print"_s, u"fine"_s}});
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).output, "fine"_ba);
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).outcome.code, 5);
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).output, "fine"_ba);
        tools.forgetCalls(tool);
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).output, "fine"_ba);
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).outcome.code, 5);
    }

    void waitsForItsTurn()
    {
        FakeTools tools;
        tools.setSteps(tool, {{u"wait-for-turn"_s, place.filePath(u"turn"_s)}, {u"print"_s, u"done"_s}});
        QVERIFY(QFile(place.filePath(u"turn2"_s)).open(QIODevice::WriteOnly));
        QProcess first;
        first.start(tools.path(tool), {});
        QTRY_COMPARE(tools.calls(tool).size(), 1);
        QCOMPARE(runCapturingOutput(tools.path(tool), {}).output, "done"_ba);
        QVERIFY(!first.waitForFinished(100));
        QVERIFY(QFile(place.filePath(u"turn1"_s)).open(QIODevice::WriteOnly));
        QVERIFY(first.waitForFinished(waitLimit));
    }

    void notesEachCall()
    {
        FakeTools tools;
        QVERIFY(tools.calls(tool).isEmpty());
        (void)runToEnd(tools.path(tool), {});
        (void)runToEnd(tools.path(tool), {u""_s, u"a\nb"_s, u"3"_s});
        QCOMPARE(tools.calls(tool), (Steps{{}, {u""_s, u"a\nb"_s, u"3"_s}}));
        QVERIFY(tools.calls(u"sniffer"_s).isEmpty());
        tools.forgetCalls(tool);
        QVERIFY(tools.calls(tool).isEmpty());
    }

    void theRealToolsCanBeUsed_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("beginning");
        QTest::newRow("the prober") << u"sniffer"_s << "ffprobe version"_ba;
        QTest::newRow("the converter") << u"creator"_s << "ffmpeg version"_ba;
    }

    void theRealToolsCanBeUsed()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, beginning);
        FakeTools tools;
        tools.useRealTool(name);
        const CapturedRun run = runCapturingOutput(*pathForResource(name), {u"-version"_s});
        QVERIFY(run.outcome.succeeded());
        QVERIFY(run.output.startsWith(beginning));
        tools.setBehaviour(name, u"print"_s, {u"fake again"_s});
        QCOMPARE(runCapturingOutput(*pathForResource(name), {}).output, "fake again"_ba);
    }

    void toolsCanBeMissingOrSomethingElse()
    {
        FakeTools tools;
        tools.remove(tool);
        QVERIFY(!pathForResource(tool));
        tools.replaceByFolder(tool);
        QVERIFY(QFileInfo(tools.path(tool)).isDir());
        tools.replaceByPlainFile(tool);
        QVERIFY(QFileInfo(tools.path(tool)).isFile() && !QFileInfo(tools.path(tool)).isExecutable());
        tools.replaceByBrokenLink(tool);
        QVERIFY(QFileInfo(tools.path(tool)).isSymLink() && !pathForResource(tool));
        tools.setSteps(tool, {});
        QVERIFY(runToEnd(*pathForResource(tool), {}).succeeded());
    }

private:
    QTemporaryDir place;
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::FakeToolsTest)
#include "fake_tools_test.moc"
