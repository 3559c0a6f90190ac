// tessaly-cli resize, run as people run it, with the real tools.
#include "e2e/small_disk.h"
#include "platform/landlock.h"
#include "support/test_case.h"
#include "support/unconfined.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestRun = 10 * tessaly::test::waitLimit;

struct Result
{
    int exitCode = -1;
    QString out;
    QString error;
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class ResizeProgramTest : public tessaly::test::TestCase
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    const QString m_programFolder = QStringLiteral(TESSALY_PROGRAM_FOLDER "/");
    const QString m_program = m_programFolder + u"tessaly-cli"_s;
    const QString m_media = QStringLiteral(TESSALY_MEDIA_FOLDER "/");

    QString path(const QString &name) const { return m_folder.filePath(name); }

    Result run(const QStringList &words, const QString &program = {},
               const std::function<void()> &setUp = {}) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.setChildProcessModifier(setUp);
        process.start(program.isEmpty() ? m_program : program, QStringList{u"resize"_s} + words);
        if (!process.waitForFinished(longestRun)) return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    // $0 is the program, $1 the folder of the clips.
    Result runShell(const QString &line) const
    {
        QProcess shell;
        shell.setWorkingDirectory(m_folder.path());
        shell.start(u"/bin/sh"_s, {u"-c"_s, line, m_program, m_media});
        if (!shell.waitForFinished(longestRun)) return {};
        return {shell.exitCode(), QString::fromUtf8(shell.readAllStandardOutput()),
                QString::fromUtf8(shell.readAllStandardError())};
    }

    // A program in a folder of its own, with a script in the place of one tool. In it "$real" is the tool.
    QString programWith(const QString &tool, const QByteArray &script) const
    {
        const QString folder = path(u"program of "_s + QString::fromLatin1(QTest::currentTestFunction()) +
                                    QString::fromLatin1(QTest::currentDataTag()));
        QDir().mkpath(folder);
        QFile::copy(m_program, folder + u"/tessaly-cli"_s);
        for (const QString &name : {u"creator"_s, u"sniffer"_s}) {
            const QString real = QFile::symLinkTarget(m_programFolder + name);
            QFile file(folder + u'/' + name);
            if (name != tool) {
                QFile::link(real, file.fileName());
            } else if (file.open(QIODevice::WriteOnly)) {
                file.write("#!/bin/sh\nreal='" + real.toUtf8() + "'\n" + script);
                file.setPermissions(file.permissions() | QFile::ExeOwner);
            }
        }
        return folder + u"/tessaly-cli"_s;
    }

    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    // "320x180" of the first picture stream, as the prober tells.
    static QString sizeOf(const QString &file)
    {
        QProcess prober;
        prober.start(QStringLiteral(TESSALY_PROGRAM_FOLDER "/sniffer"),
                     {u"-v"_s, u"error"_s, u"-select_streams"_s, u"v:0"_s, u"-show_entries"_s,
                      u"stream=width,height"_s, u"-of"_s, u"csv=p=0:s=x"_s, file});
        prober.waitForFinished();
        return QString::fromUtf8(prober.readAllStandardOutput()).trimmed();
    }

private Q_SLOTS:
    void sizes_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("size");
        QTest::newRow("half") << u"plain.mp4"_s << QStringList{u"--scale"_s, u"50"_s} << u"320x180"_s;
        QTest::newRow("width") << u"plain.mp4"_s << QStringList{u"--width"_s, u"201"_s} << u"200x112"_s;
        QTest::newRow("height") << u"plain.mp4"_s << QStringList{u"--height=100"_s} << u"178x100"_s;
        QTest::newRow("both") << u"plain.mp4"_s << QStringList{u"--height=100"_s, u"--width=100"_s}
                              << u"100x100"_s;
        QTest::newRow("an odd input as it is") << u"odd.mkv"_s << QStringList{} << u"854x480"_s;
        QTest::newRow("a phone held upright")
            << u"portrait.mp4"_s << QStringList{u"--scale"_s, u"50"_s} << u"180x320"_s;
    }
    void sizes()
    {
        QFETCH(QString, input);
        QFETCH(QStringList, words);
        QFETCH(QString, size);
        const QByteArray before = contentOf(m_media + input);
        const QString output = path(QString::fromLatin1(QTest::currentDataTag()) + u".mp4"_s);
        const Result result = run(QStringList{m_media + input, u"-o"_s, output} + words);
        QVERIFY2(result.exitCode == 0, qPrintable(result.error));
        QCOMPARE(sizeOf(output), size);
        const QStringList lines = result.out.split(u'\n');
        QCOMPARE(lines.size(), 4);
        QVERIFY2(
            QRegularExpression(u"^Input Resolution: \\d+ x \\d+ \\([^)]+\\)$"_s).match(lines[0]).hasMatch(),
            qPrintable(result.out));
        const QString told = QString(size).replace(u"x"_s, u" x "_s);
        QVERIFY2(lines[1].startsWith(u"Output Resolution: "_s + told + u" ("_s), qPrintable(result.out));
        QCOMPARE(lines[2], u"Wrote "_s + output);
        QVERIFY(contentOf(m_media + input) == before);
    }

    void tellsWhereItWrote()
    {
        const Result result = run({m_media + u"plain.mp4"_s, u"-o"_s, u"small\x1B[31m"_s});
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.out.endsWith("\nWrote small\\u{1B}[31m.mp4\n"_L1), qPrintable(result.out));
        QCOMPARE(sizeOf(path(u"small\x1B[31m.mp4"_s)), u"640x360"_s);
    }

    void progressIsLinesWhereThereIsNoTerminal()
    {
        const Result result = run({m_media + u"long.mp4"_s, u"-o"_s, u"lines"_s});
        QVERIFY2(QRegularExpression(u"^(\\d+ %\n)+$"_s).match(result.error).hasMatch(),
                 qPrintable(result.error));
    }

    void quietSaysNothing()
    {
        const Result result = run({m_media + u"plain.mp4"_s, u"-o"_s, u"quiet"_s, u"--quiet"_s});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out + result.error, QString());
    }

    void diagnosticsAreForVerbose()
    {
        const Result result =
            run({m_media + u"plain.mp4"_s, u"-o"_s, u"verbose"_s, u"--quiet"_s, u"--verbose"_s});
        QVERIFY2(result.error.startsWith("[\"-i\", \""_L1), qPrintable(result.error));
        QCOMPARE(result.out, QString());
    }

    void theWordsOfAFailedConverterAreForVerbose()
    {
        const QStringList words{m_media + u"plain.mp4"_s, u"-o"_s, u"none/new.mp4"_s, u"--quiet"_s};
        const auto said = u"none/new.mp4: No such file or directory"_s;
        const Result quiet = run(words);
        const Result verbose = run(words + QStringList{u"--verbose"_s});
        QCOMPARE(quiet.exitCode, 1);
        QVERIFY2(!quiet.error.contains(said), qPrintable(quiet.error));
        QVERIFY2(verbose.error.contains(said), qPrintable(verbose.error));
        QVERIFY2(verbose.error.endsWith(quiet.error), qPrintable(verbose.error));
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QStringList>("more");
        QTest::addColumn<QString>("said");
        QTest::newRow("an existing file") << u"in.mp4"_s << u"taken.mp4"_s << QStringList{} << u"--force"_s;
        QTest::newRow("a link that leads nowhere")
            << u"in.mp4"_s << u"dangling.mp4"_s << QStringList{} << u"--force"_s;
        QTest::newRow("the input") << u"in.mp4"_s << u"in.mp4"_s << QStringList{u"--force"_s}
                                   << u"the input itself"_s;
        QTest::newRow("the input by a symbolic link")
            << u"in.mp4"_s << u"symbolic.mp4"_s << QStringList{u"--force"_s} << u"the input itself"_s;
        QTest::newRow("the input by a hard link")
            << u"in.mp4"_s << u"hard.mp4"_s << QStringList{u"--force"_s} << u"the input itself"_s;
        const auto row = [](const char *name, const QString &input, const QString &output, const char *more,
                            const QString &said) {
            const QStringList words = QString::fromLatin1(more).split(u' ', Qt::SkipEmptyParts);
            QTest::newRow(name) << input << output << words << said;
        };
        const auto in = u"in.mp4"_s;
        const auto made = u"new.mp4"_s;
        row("a folder", in, u"folder"_s, "--force", u"folder/small.mp4"_s);
        row("a folder's name without the extension", in, u"films"_s, "--force", u"films.mp4 is a folder."_s);
        row("standard output", in, u"-"_s, "--force", u"name a file"_s);
        row("a device", in, u"/dev/null"_s, "--force", u"name a file"_s);
        row("another container", in, u"new.mov"_s, "", u"name it new.mp4."_s);
        row("no such input", u"gone.mp4"_s, made, "", u"gone.mp4: No such file or directory"_s);
        row("a folder as input", u"films.mp4"_s, made, "", u"films.mp4: Is a directory"_s);
        row("no video", u"taken.mp4"_s, made, "", u"unsupported"_s);
        row("a DVD file", u"in.vob"_s, made, "", u"VOB"_s);
        row("no such folder", in, u"none/new.mp4"_s, "", u"folder"_s);
        row("no percentage left", in, u"taken.mp4"_s, "--force --scale=0.01", u"at least 2 x 2."_s);
        row("far too much", in, u"taken.mp4"_s, "--force --scale=1000000000", u"too large"_s);
        row("wider than can be made", in, u"taken.mp4"_s, "--force --width=99999 --height=50000",
            u"A video of 99998 x 50000 is too large to be made: choose a smaller size."_s);
        row("more than ffmpeg can count", in, u"taken.mp4"_s, "--force --width=4294967296 --height=2",
            u"too large"_s);
        row("a side that cannot be computed", in, u"taken.mp4"_s, "--force --height=9223372036854775807",
            u"No size can be computed for this video."_s);
    }
    void refusals()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(QStringList, more);
        QFETCH(QString, said);
        for (const QString &folder : {u"folder"_s, u"folder.mp4"_s, u"films.mp4"_s})
            QDir(m_folder.path()).mkdir(folder);
        QFile::copy(m_media + u"plain.mp4"_s, path(u"in.mp4"_s));
        QFile::copy(m_media + u"plain.mp4"_s, path(u"in.vob"_s));
        QFile::link(path(u"in.mp4"_s), path(u"symbolic.mp4"_s));
        QFile::link(path(u"new.mp4"_s), path(u"dangling.mp4"_s));
        ::link(qPrintable(path(u"in.mp4"_s)), qPrintable(path(u"hard.mp4"_s)));
        write(u"taken.mp4"_s, "mine");

        const Result result = run(QStringList{input, u"-o"_s, output} + more);
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.startsWith("tessaly-cli: "_L1) && result.error.contains(said) &&
                     result.error.count(u'\n') == 1,
                 qPrintable(result.error));
        QCOMPARE(contentOf(path(u"taken.mp4"_s)), QByteArray("mine"));
        QVERIFY(contentOf(path(u"in.mp4"_s)) == contentOf(m_media + u"plain.mp4"_s));
        for (const QString &name : {u"new.mp4"_s, u"new.mov.mp4"_s, u"-.mp4"_s})
            QVERIFY(!QFile::exists(path(name)));
    }

    void anUnreadableInput()
    {
        QVERIFY(QFile::copy(m_media + u"plain.mp4"_s, path(u"hidden.mp4"_s)));
        QCOMPARE(::chmod(qPrintable(path(u"hidden.mp4"_s)), 0), 0);
        QCOMPARE(::chmod(qPrintable(m_folder.path()), 0755), 0);
        const auto becomeOrdinary = [] { // root may read everything
            if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(99);
        };
        // A copy: the build may lie where that user cannot look.
        const Result result =
            run({u"hidden.mp4"_s, u"-o"_s, u"new.mp4"_s}, programWith({}, {}), becomeOrdinary);
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.endsWith("hidden.mp4: Permission denied\n"_L1), qPrintable(result.error));
    }

    void aTargetThatAppearsMeanwhileStays()
    {
        const tessaly::test::Unconfined unconfined;
        const QString program =
            programWith(u"sniffer"_s, "printf theirs >appeared.mp4\nexec \"$real\" \"$@\"\n");
        const QStringList words{m_media + u"plain.mp4"_s, u"-o"_s, u"appeared"_s, u"--quiet"_s};
        const Result result = run(words, program);
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.contains(u"appeared.mp4 exists already"_s), qPrintable(result.error));
        QCOMPARE(contentOf(path(u"appeared.mp4"_s)), QByteArray("theirs"));
    }

    void namesThatAreNotUtf8_data()
    {
        QTest::addColumn<QString>("call");
        QTest::newRow("input") << u"\"$0\" resize \"$(printf 'b\\377d.mp4')\" -o new"_s;
        QTest::newRow("output") << u"\"$0\" resize in.mp4 -o \"$(printf 'b\\377d.mp4')\""_s;
    }
    void namesThatAreNotUtf8()
    {
        QFETCH(QString, call);
        const Result result = runShell(u"exec "_s + call);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error,
                 u"tessaly-cli: b\uFFFDd.mp4: the name is not valid UTF-8, so it cannot be used.\n"_s);
    }

    void forceReplaces()
    {
        write(u"old.mp4"_s, {});
        QCOMPARE(run({m_media + u"plain.mp4"_s, u"-o"_s, u"old.mp4"_s, u"--force"_s, u"--quiet"_s}).exitCode,
                 0);
        QCOMPARE(sizeOf(path(u"old.mp4"_s)), u"640x360"_s);
    }

    void wrongUsageIsOneLine()
    {
        const Result result = run({u"a"_s, u"-o"_s, u"b"_s, u"--width=1"_s});
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.error.count(u'\n'), 1);
    }

    void aSignalCancelsAndRemovesThePartialFile_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("terminate") << SIGTERM;
        QTest::newRow("hang up") << SIGHUP;
        QTest::newRow("quit") << SIGQUIT;
    }
    void aSignalCancelsAndRemovesThePartialFile()
    {
        QFETCH(int, signal);
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(m_program,
                      {u"resize"_s, m_media + u"long.mp4"_s, u"-o"_s, u"partial"_s, u"--scale"_s, u"200"_s});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(QFile::exists(path(u"partial.mp4"_s)));
        ::kill(static_cast<pid_t>(process.processId()), SIGPIPE); // ends nothing
        ::kill(static_cast<pid_t>(process.processId()), signal);
        QVERIFY(process.waitForFinished(tessaly::test::waitLimit));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 130);
        QVERIFY(!QFile::exists(path(u"partial.mp4"_s)));
    }

    // The readers of what it says go away at once; the video is made all the same.
    void aReaderThatGoesAwayDoesNotHarmTheVideo_data()
    {
        QTest::addColumn<QString>("line");
        const auto resize = u"\"$0\" resize \"$1long.mp4\" -o unread --force --width 160 "_s;
        QTest::newRow("both channels") << u"{ "_s + resize + u"; echo $? >code; } 2>&1 | head -n 1"_s;
        QTest::newRow("a full standard output") << resize + u">/dev/full; echo $? >code"_s;
    }
    void aReaderThatGoesAwayDoesNotHarmTheVideo()
    {
        QFETCH(QString, line);
        (void)runShell(line);
        QTRY_COMPARE(contentOf(path(u"code"_s)), QByteArray("1\n"));
        QCOMPARE(sizeOf(path(u"unread.mp4"_s)), u"160x90"_s);
        QVERIFY(QFile::remove(path(u"code"_s)));
    }

    // The converter ends with 0 although its last words found no space.
    void aDiskThatIsFullAtTheEnd()
    {
        const tessaly::e2e::SmallDisk disk(path(u"disk"_s));
        if (!disk.isMounted()) QSKIP("Nothing can be mounted here.");
        const QString program = programWith(
            u"creator"_s,
            "for output; do :; done\ndd if=/dev/zero of=\"$output\" bs=4096 2>/dev/null\nexit 0\n");
        const Result result =
            run({m_media + u"plain.mp4"_s, u"-o"_s, disk.output(), u"--quiet"_s}, program, disk.mounting());
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error,
                 u"tessaly-cli: Video could not be resized. The disk is full: there is no space left for the "
                 "new video.\n"_s);
    }

    void aVideoThatCannotBeCheckedIsKept()
    {
        // The second time it is gone.
        const tessaly::test::Unconfined unconfined;
        const QString program = programWith(u"sniffer"_s, "rm \"$0\"\nexec \"$real\" \"$@\"\n");
        const Result result =
            run({m_media + u"plain.mp4"_s, u"-o"_s, u"unchecked"_s, u"--width"_s, u"160"_s}, program);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, u"Wrote unchecked.mp4\n"_s);
        QVERIFY2(result.error.contains(u"tessaly-cli: The new video could not be checked. "_s),
                 qPrintable(result.error));
        QCOMPARE(sizeOf(path(u"unchecked.mp4"_s)), u"160x90"_s);
    }

    void remarksAreTold()
    {
        const QString program = programWith(
            u"creator"_s, "echo '[h264 @ 0x1] concealing 9 DC, 9 AC, 9 MV errors in P frame' >&2\n"
                          "exec \"$real\" \"$@\"\n");
        const Result result = run({m_media + u"plain.mp4"_s, u"-o"_s, u"damaged"_s, u"--quiet"_s}, program);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.error,
                 u"tessaly-cli: 1 error while reading the input: the picture may be damaged.\n"_s);
    }

    void theToolsWriteNowhereElse_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("stray");
        QTest::addColumn<bool>("isWritten");
        QTest::newRow("prober") << u"sniffer"_s << u"out/stray"_s << false;
        QTest::newRow("converter, outside") << u"creator"_s << u"stray"_s << false;
        QTest::newRow("converter, beside its output") << u"creator"_s << u"out/stray"_s << true;
    }

    void theToolsWriteNowhereElse()
    {
        if (tessaly::landlockLevel() < 1) QSKIP("This kernel has no Landlock.");
        QFETCH(QString, tool);
        QFETCH(QString, stray);
        QDir(m_folder.path()).mkpath(u"out"_s);
        const QString program =
            programWith(tool, "{ echo stray >" + stray.toUtf8() + "; } 2>/dev/null\nexec \"$real\" \"$@\"\n");
        const Result result = run({m_media + u"plain.mp4"_s, u"-o"_s, u"out/small"_s, u"--width"_s, u"160"_s,
                                   u"--quiet"_s, u"--force"_s},
                                  program);
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(sizeOf(path(u"out/small.mp4"_s)), u"160x90"_s);
        QTEST(QFile::exists(path(stray)), "isWritten");
    }

    void interruptWhileTheNewFileIsCheckedCancels()
    {
        const tessaly::test::Unconfined unconfined;
        const QString program =
            programWith(u"sniffer"_s, "case \"$*\" in *checked.mp4) touch checking; exec sleep 60 ;; esac\n"
                                      "exec \"$real\" \"$@\"\n");

        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(program, {u"resize"_s, m_media + u"plain.mp4"_s, u"-o"_s, u"checked"_s, u"--quiet"_s});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(QFile::exists(path(u"checking"_s)));
        QVERIFY(QFile::exists(path(u"checked.mp4"_s)));
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        QVERIFY(process.waitForFinished(tessaly::test::waitLimit));
        QCOMPARE(process.exitCode(), 130);
        QCOMPARE(process.readAllStandardError(), QByteArray("tessaly-cli: Cancelled.\n"));
        QVERIFY(!QFile::exists(path(u"checked.mp4"_s)));
    }

    void whatAToolSaysIsNotAmongTheObjects()
    {
        const QString program = programWith(
            u"creator"_s, "echo '{\"input\": \"forged\"}'\n: >/dev/fd/1\nexec \"$real\" \"$@\"\n");
        const Result result = run({m_media + u"plain.mp4"_s, u"-o"_s, u"told"_s, u"--json"_s}, program);
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.error.contains("forged"_L1), qPrintable(result.error));
        QCOMPARE(result.out.count(u'\n'), 1);
        QVERIFY2(result.out.contains("told.mp4"_L1) && !result.out.contains("forged"_L1),
                 qPrintable(result.out));
    }

    void relativeNamesInAFolderThatIsGone()
    {
        for (const QString &words : {u"-o /nowhere/new.mp4 gone.mp4"_s, u"-o new.mp4 /nowhere/gone.mp4"_s}) {
            const Result result =
                runShell(u"mkdir gone && cd gone && rmdir ../gone && exec \"$0\" resize "_s + words);
            QCOMPARE(result.exitCode, 2);
            QVERIFY2(result.error.contains("current folder"_L1), qPrintable(result.error));
        }
    }

    void aHangUpThatIsIgnoredStaysIgnored()
    {
        QProcess process; // as under nohup
        process.setWorkingDirectory(m_folder.path());
        process.setChildProcessModifier([] { ::signal(SIGHUP, SIG_IGN); });
        process.start(m_program,
                      {u"resize"_s, m_media + u"plain.mp4"_s, u"-o"_s, u"ignored"_s, u"--quiet"_s});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(QFile::exists(path(u"ignored.mp4"_s)));
        ::kill(static_cast<pid_t>(process.processId()), SIGHUP);
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 0);
        QVERIFY(QFile::exists(path(u"ignored.mp4"_s)));
    }
};

TESSALY_TEST_MAIN(ResizeProgramTest)
#include "resize_program_test.moc"
