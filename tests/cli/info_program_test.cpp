#include "platform/confinement.h"
#include "support/fake_tools.h"
#include "support/test_case.h"
#include "json/json.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::FakeTools;

namespace {

const QString builtProgram = QStringLiteral(TESSALY_PROGRAM_FOLDER) + u"/tessaly-cli"_s;

struct Result
{
    int exitCode = -1; // -1: it did not end, or not by itself
    QByteArray output;
    QByteArray errors;
};

} // namespace

class InfoProgramTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void exitCodes_data();
    void exitCodes();
    void help();
    void version();
    void wrongUsageIsOneLine();
    void oneBlockAFile();
    void oneJsonLineAFile();
    void pathsAreMadeAbsolute();
    void namesWithALeadingDash();
    void diagnosticsOnlyWhenAskedFor();
    void nameThatIsNotUtf8();
    void nameThatIsNotUtf8AmongOthers();
    void namesCannotDriveTheTerminal();
    void plainLocale_data();
    void plainLocale();
    void whyAFileIsNoMedia();
    void proberThatIsMissing();
    void proberIsFoundBesideTheProgram();
    void standardInputIsNotRead();
    void outputThatCannotBeWritten_data();
    void outputThatCannotBeWritten();
    void noProberIsLeftBehind_data();
    void noProberIsLeftBehind();

private:
    Result run(const QStringList &words, const QString &program = builtProgram,
               const QString &locale = u"C.UTF-8"_s);
    Result runShell(const QString &line);
    static JSON line(const QByteArray &output, int index);

    QTemporaryDir m_folder;
};

void InfoProgramTest::initTestCase()
{
    for (const QString &name :
         {u"plain.mp4"_s, u"-video-.mp4"_s, u"--json"_s, u"🎬 é.mp4"_s, u"a\n\x1B[31m.mp4"_s})
        QVERIFY(QFile::copy(QStringLiteral(TESSALY_MEDIA_FOLDER "/plain.mp4"), m_folder.filePath(name)));
    QFile text(m_folder.filePath(u"text.mp4"_s));
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("no film\n");
}

Result InfoProgramTest::run(const QStringList &words, const QString &program, const QString &locale)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, locale);
    QProcess process;
    process.setWorkingDirectory(m_folder.path());
    process.setProcessEnvironment(environment);
    process.start(program, words);
    const bool ended = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput(), process.readAllStandardError()};
}

// $0 is the program.
Result InfoProgramTest::runShell(const QString &line)
{
    return run({u"-c"_s, line, builtProgram}, u"/bin/sh"_s);
}

JSON InfoProgramTest::line(const QByteArray &output, int index)
{
    return JSON::fromBytes(output.split('\n').at(index).toStdString());
}

void InfoProgramTest::exitCodes_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("valid") << QStringList{u"info"_s, u"plain.mp4"_s} << 0;
    QTest::newRow("two valid ones") << QStringList{u"info"_s, u"plain.mp4"_s, u"plain.mp4"_s} << 0;
    QTest::newRow("invalid") << QStringList{u"info"_s, u"text.mp4"_s} << 1;
    QTest::newRow("invalid, then valid") << QStringList{u"info"_s, u"text.mp4"_s, u"plain.mp4"_s} << 1;
    QTest::newRow("valid, then invalid") << QStringList{u"info"_s, u"plain.mp4"_s, u"text.mp4"_s} << 1;
    QTest::newRow("invalid, as JSON") << QStringList{u"info"_s, u"--json"_s, u"text.mp4"_s} << 1;
    QTest::newRow("missing") << QStringList{u"info"_s, u"gone.mp4"_s} << 1;
    QTest::newRow("folder") << QStringList{u"info"_s, u"."_s} << 1;
    QTest::newRow("wrong usage") << QStringList{u"info"_s} << 2;
    QTest::newRow("unknown option") << QStringList{u"info"_s, u"--xml"_s, u"plain.mp4"_s} << 2;
    QTest::newRow("no command") << QStringList{} << 2;
}

void InfoProgramTest::exitCodes()
{
    QFETCH(QStringList, words);
    QTEST(run(words).exitCode, "exitCode");
}

void InfoProgramTest::help()
{
    const Result result = run({u"--help"_s});
    QCOMPARE(result.exitCode, 0);
    for (const char *word : {"Usage: tessaly-cli info", "--json", "--verbose", "--help", "--version"})
        QVERIFY2(result.output.contains(word), word);
    for (const QByteArray &line : result.output.split('\n'))
        QVERIFY2(line.size() <= 100, line.constData());
    QCOMPARE(result.errors, QByteArray());
}

void InfoProgramTest::version()
{
    const Result result = run({u"--version"_s});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QByteArray("tessaly-cli " TESSALY_VERSION "\n"));
    QCOMPARE(result.errors, QByteArray());
    const Result verbose = run({u"--version"_s, u"--verbose"_s});
    QCOMPARE(verbose.output,
             result.output + "Confinement of the tools: " + confinementInForce().toUtf8() + '\n');
}

void InfoProgramTest::wrongUsageIsOneLine()
{
    const Result result = run({u"pl\nay\x1B"_s});
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(result.errors, QByteArray("tessaly-cli: There is no command \"pl\\u{0A}ay\\u{1B}\". "
                                       "See tessaly-cli --help.\n"));
}

void InfoProgramTest::oneBlockAFile()
{
    const Result result = run({u"info"_s, u"plain.mp4"_s, u"text.mp4"_s});
    QCOMPARE(result.errors, QByteArray());
    const QList<QByteArray> lines = result.output.split('\n');
    QCOMPARE(lines.first(), QByteArray("plain.mp4"));
    QVERIFY(lines.contains("  Size          640 x 360"));
    const qsizetype gap = lines.indexOf("");
    QCOMPARE(lines.at(gap + 1), QByteArray("text.mp4"));
    QCOMPARE(lines.count(""), 2); // between the blocks, and behind the last line break
    QCOMPARE(lines.last(), QByteArray());
}

void InfoProgramTest::oneJsonLineAFile()
{
    const Result result = run({u"info"_s, u"--json"_s, u"plain.mp4"_s, u"text.mp4"_s, u"gone.mp4"_s});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(result.output.count('\n'), 3);
    QVERIFY(result.output.endsWith('\n'));
    const JSON plain = line(result.output, 0);
    QCOMPARE(plain["videoWidth"].intValue(), 640);
    QCOMPARE(plain["videoHeight"].intValue(), 360);
    QCOMPARE(plain["tracksInfo"].count(), std::size_t{2});
    QCOMPARE(plain["metadata"].count(), std::size_t{12});
    const JSON text = line(result.output, 1);
    QVERIFY(text["isValidMediaFile"].bool_() == false);
    QVERIFY(text["videoWidth"].type() == Type::null && !text["videoWidth"].error());
    QCOMPARE(text["fileSize"].intValue(), 8);
    const JSON gone = line(result.output, 2);
    QVERIFY(gone["fileSize"].type() == Type::null && !gone["fileSize"].error());
    QCOMPARE(gone["fileSizeHuman"].stringValue(), std::string("Unknown File Size"));
}

void InfoProgramTest::pathsAreMadeAbsolute()
{
    const QString folder = QFileInfo(m_folder.path()).canonicalFilePath();
    const Result result = run({u"info"_s, u"--json"_s, u"plain.mp4"_s, folder + u"/plain.mp4"_s});
    const std::string expected = (folder + u"/plain.mp4"_s).toStdString();
    for (const int index : {0, 1}) {
        const JSON facts = line(result.output, index);
        QCOMPARE(facts["fileFullPath"].stringValue(), expected);
        QCOMPARE(facts["fileFullURL"].stringValue(), "file://" + expected);
        QCOMPARE(facts["tracksInfo"][0]["trackPresentInfile"].stringValue(), expected);
    }
}

void InfoProgramTest::namesWithALeadingDash()
{
    const Result result = run({u"info"_s, u"--"_s, u"-video-.mp4"_s, u"--json"_s});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.output.startsWith("-video-.mp4\n"));
    QVERIFY(result.output.contains("\n--json\n"));
    QCOMPARE(run({u"info"_s, u"-video-.mp4"_s}).exitCode, 2);
}

void InfoProgramTest::diagnosticsOnlyWhenAskedFor()
{
    const Result quiet = run({u"info"_s, u"gone.mp4"_s});
    QCOMPARE(quiet.exitCode, 1);
    QCOMPARE(quiet.output,
             QByteArray("gone.mp4\n  Kind          not a media file (No such file or directory)\n"));
    QCOMPARE(quiet.errors, QByteArray());

    const Result verbose = run({u"info"_s, u"--verbose"_s, u"gone.mp4"_s});
    QCOMPARE(verbose.exitCode, 1);
    QCOMPARE(verbose.output, quiet.output);
    QCOMPARE(verbose.errors.count("Failed to get file attributes for local path: "), 2);
    QCOMPARE(verbose.errors.count('\n'), 2);
}

void InfoProgramTest::nameThatIsNotUtf8()
{
    const Result result = runShell(u"exec \"$0\" info \"$(printf 'b\\377d.mp4')\""_s);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.errors, QByteArray("tessaly-cli: b\xEF\xBF\xBD"
                                       "d.mp4: The name is not valid UTF-8, so the "
                                       "file cannot be opened.\n"));
    QCOMPARE(result.output, QByteArray("b\xEF\xBF\xBD"
                                       "d.mp4\n  Kind          unknown (The name is not valid UTF-8, so the "
                                       "file cannot be opened)\n"));
}

void InfoProgramTest::nameThatIsNotUtf8AmongOthers()
{
    const Result result = runShell(u"exec \"$0\" info --json plain.mp4 \"$(printf '\\377')\" plain.mp4"_s);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.output.count('\n'), 3);
    QVERIFY(line(result.output, 0)["isValidMediaFile"].boolValue());
    QVERIFY(line(result.output, 1)["fileFullPath"].type() == Type::null);
    QVERIFY(line(result.output, 2)["isValidMediaFile"].boolValue());
    QCOMPARE(result.errors.count('\n'), 1);
}

void InfoProgramTest::namesCannotDriveTheTerminal()
{
    const Result result = run({u"info"_s, u"a\n\x1B[31m.mp4"_s});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.output.startsWith("a\\u{0A}\\u{1B}[31m.mp4\n"));
    QVERIFY(!result.output.contains('\x1B'));
}

void InfoProgramTest::plainLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("C") << u"C"_s;
    QTest::newRow("POSIX") << u"POSIX"_s;
    QTest::newRow("one that is not installed") << u"xx_YY.ISO-8859-1"_s;
    QTest::newRow("UTF-8") << u"C.UTF-8"_s;
}

void InfoProgramTest::plainLocale()
{
    QFETCH(QString, locale);
    const Result result = run({u"info"_s, u"🎬 é.mp4"_s}, builtProgram, locale);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.errors, QByteArray());
    QVERIFY(result.output.startsWith("🎬 é.mp4\n  Kind          video\n"));
}

void InfoProgramTest::whyAFileIsNoMedia()
{
    const Result result = run({u"info"_s, u"--json"_s, u"gone.mp4"_s, u"."_s, u"text.mp4"_s, u"plain.mp4"_s});
    QCOMPARE(result.errors, QByteArray());
    QCOMPARE(line(result.output, 0)["failure"].stringValue(), std::string("No such file or directory"));
    QCOMPARE(line(result.output, 1)["failure"].stringValue(), std::string("Is a directory"));
    QCOMPARE(line(result.output, 2)["failure"].stringValue(),
             std::string("Invalid data found when processing input"));
    QVERIFY(line(result.output, 3)["failure"].type() == Type::null);
}

void InfoProgramTest::proberThatIsMissing()
{
    const QTemporaryDir folder; // the program without its resources
    const QString program = folder.filePath(u"tessaly-cli"_s);
    QVERIFY(QFile::copy(builtProgram, program));
    const Result result = run({u"info"_s, u"--json"_s, u"plain.mp4"_s}, program);
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.errors,
             QByteArray("tessaly-cli: plain.mp4: ffprobe is missing among the resources of this program.\n"));
    QVERIFY(line(result.output, 0)["isValidMediaFile"].bool_() == false);
    QVERIFY(line(result.output, 0)["fileSize"].intValue() > 0);
    const Result text = run({u"info"_s, u"plain.mp4"_s}, program);
    QVERIFY2(
        text.output.startsWith(
            "plain.mp4\n  Kind          unknown (ffprobe is missing among the resources of this program)\n"),
        text.output.constData());
}

void InfoProgramTest::proberIsFoundBesideTheProgram()
{
    FakeTools tools;
    tools.setSteps(u"sniffer"_s, {{u"complain"_s, u"trouble\n"_s}, {u"open-brace"_s}});
    const QString program = tools.path(u"tessaly-cli"_s);
    QVERIFY(QFile::copy(builtProgram, program));
    const Result quiet = run({u"info"_s, u"plain.mp4"_s}, program);
    QCOMPARE(quiet.exitCode, 1);
    QVERIFY(quiet.output.startsWith("plain.mp4\n  Kind          not a media file\n"));
    QCOMPARE(quiet.errors, QByteArray("trouble\n")); // the prober's own is inherited

    const Result verbose = run({u"info"_s, u"--verbose"_s, u"plain.mp4"_s}, program);
    QCOMPARE(verbose.output, quiet.output);
    QVERIFY2(verbose.errors.startsWith("trouble\nError Domain=NSCocoaErrorDomain Code=3840 "),
             verbose.errors.constData());
    QCOMPARE(tools.calls(u"sniffer"_s).size(), 2);
    QCOMPARE(tools.calls(u"sniffer"_s).last().last(),
             QFileInfo(m_folder.path()).canonicalFilePath() + u"/plain.mp4"_s);
}

void InfoProgramTest::standardInputIsNotRead()
{
    const Result result = runShell(uR"sh(printf 'left' | { "$0" info plain.mp4 >&2; cat; })sh"_s);
    QCOMPARE(result.output, QByteArray("left"));
    QVERIFY(result.errors.startsWith("plain.mp4\n"));
}

void InfoProgramTest::outputThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("words");
    QTest::newRow("info") << u"info plain.mp4 plain.mp4"_s;
    QTest::newRow("help") << u"--help"_s;
    QTest::newRow("version") << u"--version"_s;
}

void InfoProgramTest::outputThatCannotBeWritten()
{
    QFETCH(QString, words);
    const Result result = runShell(uR"sh(exec "$0" %1 >/dev/full)sh"_s.arg(words));
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.errors, QByteArray("tessaly-cli: Standard output cannot be written.\n"));
}

// Children of a process, as the system lists them.
static QByteArrayList childrenOf(qint64 process)
{
    QFile list(u"/proc/%1/task/%1/children"_s.arg(process));
    const QByteArray text = list.open(QIODevice::ReadOnly) ? list.readAll().simplified() : QByteArray();
    return text.isEmpty() ? QByteArrayList() : text.split(' ');
}

// A prober that reads a pipe nobody writes would stay for ever.
void InfoProgramTest::noProberIsLeftBehind_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("kill") << SIGKILL;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("hang up") << SIGHUP;
}

void InfoProgramTest::noProberIsLeftBehind()
{
    QFETCH(int, signal);
    QTemporaryDir folder;
    const QString pipe = folder.filePath(u"pipe.mp4"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QProcess program;
    program.start(builtProgram, {u"info"_s, pipe});
    QVERIFY(program.waitForStarted());
    const auto commandOf = [](const QByteArray &process) {
        QFile words(u"/proc/"_s + QString::fromLatin1(process) + u"/cmdline"_s);
        return words.open(QIODevice::ReadOnly) ? words.readAll() : QByteArray();
    };
    QByteArray prober;
    const auto findProber = [&] {
        for (const QByteArray &child : childrenOf(program.processId())) {
            if (commandOf(child).contains("-show_streams")) prober = child;
        }
        return !prober.isEmpty();
    };
    QTRY_VERIFY_WITH_TIMEOUT(findProber(), 30000);
    ::kill(static_cast<pid_t>(program.processId()), signal);
    QVERIFY(program.waitForFinished());
    QTRY_COMPARE_WITH_TIMEOUT(commandOf(prober), QByteArray(), 20000);
}

TESSALY_TEST_MAIN(InfoProgramTest)
#include "info_program_test.moc"
