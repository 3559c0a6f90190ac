// How the prober is run, and what becomes of a file when it cannot be or does not end.
#include "platform/child_process.h"
#include "probe/probe_stage.h"

#include <functional>

using namespace Qt::StringLiterals;
using Steps = QList<QStringList>;
using namespace tessaly;
using namespace tessaly::test;

class ProberRunTest : public TestCase, private ProbeStage
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { makeFilm(); }
    void callsTheProber_data();
    void callsTheProber();
    void looksUpTheProberAfresh();
    void outputThatIsNoReport_data();
    void outputThatIsNoReport();
    void outputThatCounts_data();
    void outputThatCounts();
    void proberThatCannotRun_data();
    void proberThatCannotRun();
    void proberThatHasToBeStopped_data();
    void proberThatHasToBeStopped();
    void proberOfAProgramThatIsEnding();
    void errorsOfTheProberAreInherited();
};

void ProberRunTest::callsTheProber_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("plain") << u"/videos/film.mp4"_s;
    QTest::newRow("spaces") << u"/videos/a film.mp4"_s;
    QTest::newRow("line break") << u"/videos/a\nfilm.mp4"_s;
    QTest::newRow("quotes") << u"/videos/\"a\" 'film'`x`.mp4"_s;
    QTest::newRow("markup") << u"/videos/<b>a</b>&amp;.mp4"_s;
    QTest::newRow("shell signs") << u"/videos/$HOME; exit 1 | * ? \\.mp4"_s;
    QTest::newRow("pattern") << u"/videos/%d %1 100%.mp4"_s;
    QTest::newRow("emoji") << u"/videos/🎬é漢.mp4"_s;
    QTest::newRow("not normalised") << u"/videos/e\u0301.mp4"_s;
    QTest::newRow("255 bytes") << u"/videos/"_s + QString(251, u'x') + u".mp4"_s;
    QTest::newRow("point at the end") << u"/videos/film."_s;
    QTest::newRow("dots are not resolved") << u"/videos/./a/../film.mp4"_s;
    QTest::newRow("colon") << u"/videos/a:b.mp4"_s;
    QTest::newRow("leading dash") << u"/videos/-film.mp4"_s;
    QTest::newRow("relative, leading dash") << u"-film.mp4"_s;
    QTest::newRow("relative") << u"film.mp4"_s;
    QTest::newRow("empty") << QString();
}

void ProberRunTest::callsTheProber()
{
    QFETCH(QString, path);
    FakeTools tools;
    probe(path);
    const QStringList arguments{u"-v"_s,
                                u"quiet"_s,
                                u"-print_format"_s,
                                u"json"_s,
                                u"-show_format"_s,
                                u"-show_streams"_s,
                                u"-show_chapters"_s,
                                u"-show_error"_s,
                                path};
    QCOMPARE(tools.calls(prober), QList<QStringList>{arguments});
    QVERIFY(tools.calls(u"creator"_s).isEmpty());
    QCOMPARE(m_probe.fileFullPath, std::optional(path));
}

void ProberRunTest::looksUpTheProberAfresh()
{
    FakeTools tools;
    tools.remove(prober);
    probe(m_film);
    QVERIFY(m_probe.proberFailure);
    tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(goodReport)});
    probe(m_film);
    QVERIFY(!m_probe.proberFailure);
    QVERIFY(m_probe.isValidMediaFile);
}

void ProberRunTest::outputThatIsNoReport_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<QByteArray>("printed");
    const auto row = [](const char *name, const Steps &steps, const QByteArray &text,
                        const QByteArray &index = {}) {
        const QByteArray position = index.isEmpty() ? "" : ", NSJSONSerializationErrorIndex=" + index;
        QTest::newRow(name) << steps
                            << "Error Domain=NSCocoaErrorDomain Code=3840 \"" + text +
                                   "\" UserInfo={NSDebugDescription=" + text + position + "}\n";
    };
    const QByteArray noStart =
        "JSON text did not start with array or object and option to allow fragments not set.";
    const auto startingWrong = [&noStart](int column) {
        return noStart + " around line 1, column " + QByteArray::number(column) + ".";
    };
    row("nothing", {}, "Unable to parse empty data.");
    row("nothing, and a failure", {{u"exit"_s, u"1"_s}}, "Unable to parse empty data.");
    row("blanks", {{u"print"_s, u" \n"_s}}, "Unable to parse empty data.");
    row("rubbish", {{u"rubbish"_s}}, startingWrong(0), "0");
    row("an opening brace", {{u"open-brace"_s}}, "Unexpected end of file around line 2, column 0.", "2");
    row("bytes that are no text", {{u"invalid-utf8"_s}}, "Invalid value around line 1, column 18.", "18");
    row("a crash in the middle", {{u"print"_s, u"{\"streams\": ["_s}, {u"crash"_s}},
        "Unexpected end of file around line 1, column 13.", "13");
    row("null alone", {{u"print"_s, u"null"_s}}, startingWrong(0), "0");
    row("two reports", {{u"print"_s, u"{}{}"_s}}, "Garbage at end around line 1, column 2.", "2");
    row("10 MB of rubbish", {{u"flood-stdout"_s, u"10000000"_s}}, startingWrong(0), "0");
}

void ProberRunTest::outputThatIsNoReport()
{
    QFETCH(Steps, steps);
    FakeTools tools;
    tools.setSteps(prober, steps);
    QTEST(probe(m_film), "printed");
    QVERIFY(isUntouched(m_probe));
    QVERIFY(!m_probe.proberFailure); // it ran, and had nothing to say
}

void ProberRunTest::outputThatCounts_data()
{
    QTest::addColumn<Steps>("steps");
    const QString report = QString::fromUtf8(goodReport);
    const QString half = report.first(report.size() / 2);
    const QString rest = report.sliced(report.size() / 2);
    QTest::newRow("exit 0") << Steps{{u"print"_s, report}};
    QTest::newRow("exit 1") << Steps{{u"print"_s, report}, {u"exit"_s, u"1"_s}};
    QTest::newRow("a crash behind the report") << Steps{{u"print"_s, report}, {u"crash"_s}};
    QTest::newRow("in two parts") << Steps{{u"print"_s, half}, {u"pause"_s, u"30"_s}, {u"print"_s, rest}};
    QTest::newRow("with blanks around") << Steps{{u"print"_s, u"\n "_s + report + u"\r\n"_s}};
    const QString blanks(4'000'000, u' ');
    QTest::newRow("much more than a pipe holds") << Steps{{u"print"_s, blanks + report + blanks}};
}

void ProberRunTest::outputThatCounts()
{
    QFETCH(Steps, steps);
    FakeTools tools;
    tools.setSteps(prober, steps);
    QCOMPARE(probe(m_film), QByteArray());
    QVERIFY(m_probe.isValidMediaFile);
    QCOMPARE(m_probe.numberOfStreams, 4);
}

void ProberRunTest::proberThatCannotRun_data()
{
    using Change = std::function<void(FakeTools &)>;
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("reason"); // %1: the prober's path
    const QString missing = u"ffprobe is missing among the resources of this program."_s;
    QTest::newRow("missing") << Change([](FakeTools &tools) { tools.remove(prober); }) << missing;
    QTest::newRow("a link that leads nowhere")
        << Change([](FakeTools &tools) { tools.replaceByBrokenLink(prober); }) << missing;
    QTest::newRow("a folder") << Change([](FakeTools &tools) { tools.replaceByFolder(prober); })
                              << u"\"%1\" is a folder, not a program."_s;
    QTest::newRow("not executable") << Change([](FakeTools &tools) { tools.replaceByPlainFile(prober); })
                                    << u"The program \"%1\" is not marked as executable."_s;
    QTest::newRow("no program") << Change([](FakeTools &tools) {
        tools.replaceByPlainFile(prober);
        QFile::setPermissions(tools.path(prober), QFile::ReadOwner | QFile::ExeOwner);
    }) << u"The program \"%1\" cannot be run on this computer (Exec format error)."_s;
}

void ProberRunTest::proberThatCannotRun()
{
    QFETCH(std::function<void(FakeTools &)>, change);
    QFETCH(QString, reason);
    FakeTools tools;
    change(tools);
    const QByteArray printed = probe(m_film);
    QVERIFY(m_probe.proberFailure);
    QCOMPARE(*m_probe.proberFailure, reason.contains("%1"_L1) ? reason.arg(tools.path(prober)) : reason);
    QCOMPARE(printed, m_probe.proberFailure->toUtf8() + '\n');
    QVERIFY(isUntouched(m_probe));
    QCOMPARE(m_probe.fileSize, std::optional<quint64>(1'234'567));
}

void ProberRunTest::proberThatHasToBeStopped_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<QString>("reason");
    const QString late = u"ffprobe did not end within 0.25 seconds."_s;
    QTest::newRow("never ends") << Steps{{u"hang"_s}} << 250 << late;
    QTest::newRow("ignores being terminated") << Steps{{u"ignore-terminate"_s}, {u"hang"_s}} << 250 << late;
    QTest::newRow("never ends behind a good report")
        << Steps{{u"print"_s, QString::fromUtf8(goodReport)}, {u"hang"_s}} << 250 << late;
    QTest::newRow("never stops writing") << Steps{{u"flood-stdout"_s, u"1000000000000"_s}} << 10 * waitLimit
                                         << u"ffprobe reported more than 16 MiB about the file."_s;
}

void ProberRunTest::proberThatHasToBeStopped()
{
    QFETCH(Steps, steps);
    QFETCH(int, milliseconds);
    FakeTools tools;
    tools.setSteps(prober, steps);
    const QByteArray printed = probe(m_film, std::chrono::milliseconds(milliseconds));
    QTEST(m_probe.proberFailure.value_or(QString()), "reason");
    QCOMPARE(printed, m_probe.proberFailure->toUtf8() + '\n');
    QVERIFY(isUntouched(m_probe));
    QVERIFY(tools.runningProcesses(prober).isEmpty());
}

void ProberRunTest::proberOfAProgramThatIsEnding()
{
    FakeTools tools;
    tools.setBehaviour(prober, u"print"_s, {QString::fromUtf8(goodReport)});
    endAllRuns();
    probe(m_film);
    letRunsStart();
    QVERIFY(isUntouched(m_probe));
    QCOMPARE(m_probe.proberFailure, std::optional(u"ffprobe was stopped because the program is ending."_s));
    QVERIFY(tools.calls(prober).isEmpty());
}

void ProberRunTest::errorsOfTheProberAreInherited()
{
    FakeTools tools;
    tools.setSteps(prober, {{u"complain"_s, u"trouble\n"_s}, {u"print"_s, QString::fromUtf8(goodReport)}});
    QByteArray output;
    QCOMPARE(writtenTo(STDERR_FILENO, [&] { output = probe(m_film); }), QByteArray("trouble\n"));
    QCOMPARE(output, QByteArray());
    QVERIFY(m_probe.isValidMediaFile);
}

TESSALY_TEST_MAIN(ProberRunTest)
#include "prober_run_test.moc"
