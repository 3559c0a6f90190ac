// tessaly-cli resize with several inputs and with folders, and for programs, run with the real tools.
#include "support/test_case.h"
#include "json/json.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using tessaly::JSON;

namespace {

struct Result
{
    int exitCode = -1; // -1: it did not end, or not by itself
    QString out;
    QString error;
};

Result resultOf(QProcess &process)
{
    const bool ended =
        process.waitForFinished(tessaly::test::waitLimit) && process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

// One word for each object: its value of that member, or "-".
QString eachOf(const QString &lines, const char *member)
{
    QStringList values;
    for (const QString &line : lines.split(u'\n', Qt::SkipEmptyParts)) {
        const std::string value = JSON::fromBytes(line.toStdString())[member].stringValue();
        values += value.empty() ? u"-"_s : QString::fromStdString(value);
    }
    return values.join(u' ');
}

} // namespace

// Every test starts in a folder of its own with "clips" in it: b.mp4, a.mkv, damaged.mov, notes.txt,
// sound.m4a and a cover picture called b.png.
class ResizeManyTest : public tessaly::test::TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    const QString m_program = QStringLiteral(TESSALY_PROGRAM_FOLDER "/tessaly-cli");
    const QString m_media = QStringLiteral(TESSALY_MEDIA_FOLDER "/");

    QString path(const QString &name) const { return m_folder->filePath(name); }
    QStringList filesIn(const QString &folder) const { return QDir(path(folder)).entryList(QDir::Files); }

    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QByteArray contentOf(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    void start(QProcess &process, const QStringList &words) const
    {
        process.setWorkingDirectory(m_folder->path());
        process.start(m_program, QStringList{u"resize"_s} + words);
    }

    Result run(const QStringList &words) const
    {
        QProcess process;
        start(process, words);
        return resultOf(process);
    }

    QString sizeOf(const QString &name) const
    {
        QProcess prober;
        prober.start(QStringLiteral(TESSALY_PROGRAM_FOLDER "/sniffer"),
                     {u"-v"_s, u"error"_s, u"-select_streams"_s, u"v:0"_s, u"-show_entries"_s,
                      u"stream=width,height"_s, u"-of"_s, u"csv=p=0:s=x"_s, path(name)});
        return resultOf(prober).out.trimmed();
    }

protected Q_SLOTS:
    void init()
    {
        TestCase::init();
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_folder->path()).mkpath(u"clips/deeper"_s));
        for (const auto &[clip, name] :
             {std::pair(u"plain.mp4"_s, u"clips/b.mp4"_s), std::pair(u"odd.mkv"_s, u"clips/a.mkv"_s),
              std::pair(u"sound.m4a"_s, u"clips/sound.m4a"_s), std::pair(u"cover.png"_s, u"clips/b.png"_s),
              std::pair(u"plain.mp4"_s, u"clips/deeper/c.mp4"_s)})
            QVERIFY(QFile::copy(m_media + clip, path(name)));
        write(u"clips/notes.txt"_s, "no film\n");
        write(u"clips/damaged.mov"_s, "no film\n");
        write(u"clips/.hidden.mp4"_s, "no film\n");
    }

private Q_SLOTS:
    void whatFailsDoesNotStopTheRest()
    {
        const Result result = run({u"gone.mp4"_s, u"clips/b.mp4"_s, u"clips/a.mkv"_s, u"-o"_s, u"small"_s,
                                   u"--fit"_s, u"320x320"_s});
        QCOMPARE(result.exitCode, 1);
        const QStringList lines = result.out.split(u'\n');
        QCOMPARE(lines.size(), 5);
        QCOMPARE(lines[0], u"Made the folder small"_s);
        QVERIFY2(lines[1].startsWith("Wrote small/b.mp4: 320 x 180 ("_L1), qPrintable(lines[1]));
        QVERIFY2(lines[1].contains("), from 640 x 360 ("_L1), qPrintable(lines[1]));
        QVERIFY2(lines[2].startsWith("Wrote small/a.mp4: 320 x 180 ("_L1), qPrintable(lines[2]));
        QCOMPARE(lines[3], u"2 resized, 1 failed"_s);
        const QString complaint = u"tessaly-cli: %1: No such file or directory\n"_s.arg(path(u"gone.mp4"_s));
        QVERIFY2(result.error.startsWith(complaint), qPrintable(result.error));
        QCOMPARE(sizeOf(u"small/a.mp4"_s), u"320x180"_s);
        QCOMPARE(sizeOf(u"small/b.mp4"_s), u"320x180"_s);
    }

    void theProgressTellsThePlace()
    {
        const Result result = run({u"gone.mp4"_s, m_media + u"long.mp4"_s, u"-o"_s, u"."_s, u"--width=64"_s});
        QVERIFY2(QRegularExpression(u"\n(2 of 2: \\d+ %\n)+$"_s).match(result.error).hasMatch(),
                 qPrintable(result.error));
    }

    void aFolderMeansTheVideosInIt()
    {
        const Result result = run({u"clips/"_s, u"-o"_s, u"small/"_s, u"--scale"_s, u"50%"_s});
        QCOMPARE(result.exitCode, 1); // a video that cannot be read may be one all the same
        const QStringList lines = result.out.split(u'\n');
        QCOMPARE(lines.size(), 8);
        QVERIFY2(lines[1].startsWith("Wrote small/a.mp4: 426 x 240 ("_L1), qPrintable(lines[1]));
        QVERIFY2(lines[2].startsWith("Wrote small/b.mp4: 320 x 180 ("_L1), qPrintable(lines[2]));
        QCOMPARE(lines[3], u"Skipped clips/b.png: it is a picture."_s);
        QCOMPARE(lines[4], u"Skipped clips/notes.txt: no video was found in it."_s);
        QCOMPARE(lines[5], u"Skipped clips/sound.m4a: no video was found in it."_s);
        QCOMPARE(lines[6], u"2 resized, 1 failed, 3 skipped"_s);
        QVERIFY2(result.error.contains(path(u"clips/damaged.mov"_s) + u": this seems to be"_s),
                 qPrintable(result.error));
        QCOMPARE(filesIn(u"small"_s), (QStringList{u"a.mp4"_s, u"b.mp4"_s}));
    }

    void aSlashAtTheEndMeansAFolderForOneVideo()
    {
        const Result result = run({u"clips/a.mkv"_s, u"-o"_s, u"small/"_s, u"--scale"_s, u"50%"_s});
        QVERIFY2(result.exitCode == 0, qPrintable(result.error));
        QCOMPARE(filesIn(u"small"_s), QStringList{u"a.mp4"_s});
    }

    void whatIsSkippedIsNoFailure()
    {
        QVERIFY(QFile::remove(path(u"clips/damaged.mov"_s)));
        const Result result = run({u"clips"_s, u"-o"_s, u"small"_s, u"--width=64"_s, u"--verbose"_s});
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(
            result.out.contains(
                "\nSkipped clips/notes.txt: no video was found in it. (Invalid data found when processing input)\n"_L1),
            qPrintable(result.out));
        QVERIFY2(result.out.endsWith("\n2 resized, 3 skipped\n"_L1), qPrintable(result.out));
    }

    void quietTellsOnlyWhatIsWrong()
    {
        const Result result = run({u"clips"_s, u"-o"_s, u"small"_s, u"--width=64"_s, u"--quiet"_s});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.out, QString());
        QCOMPARE(result.error.count(u'\n'), 1);
        QVERIFY2(result.error.contains("damaged.mov"_L1), qPrintable(result.error));
    }

    void anEmptyFolder()
    {
        QVERIFY(QDir(m_folder->path()).mkdir(u"empty"_s));
        const Result result = run({u"empty"_s, u"-o"_s, u"."_s});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.out, u"0 resized\n"_s);
    }

    void namesThatMeetAreRefusedBeforeAnythingIsTouched()
    {
        QVERIFY(QFile::copy(m_media + u"odd.mkv"_s, path(u"clips/b.mkv"_s)));
        const Result result = run({u"clips"_s, u"-o"_s, u"small"_s, u"--force"_s});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.out, QString());
        QCOMPARE(result.error,
                 u"tessaly-cli: clips/b.mkv and clips/b.mp4 would both become small/b.mp4: please "
                 "resize them into different folders.\n"_s);
        QVERIFY(!QFile::exists(path(u"small"_s)));
    }

    void aFolderIsNotMadeBelowAFolderThatIsMissing()
    {
        const Result result = run({u"clips"_s, u"-o"_s, u"mistyped/small"_s});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error, u"tessaly-cli: mistyped/small: this folder could not be made.\n"_s);
        QVERIFY(!QFile::exists(path(u"mistyped"_s)));
    }

    void onlyForceReplaces()
    {
        QVERIFY(QDir(m_folder->path()).mkdir(u"small"_s));
        write(u"small/b.mp4"_s, "mine");
        const QStringList words{u"clips/b.mp4"_s, u"clips/a.mkv"_s, u"-o"_s, u"small"_s, u"--width=64"_s};
        const Result careful = run(words);
        QCOMPARE(careful.exitCode, 1);
        QVERIFY2(careful.error.contains(u"tessaly-cli: clips/b.mp4: "_s + path(u"small/b.mp4"_s) +
                                        u" exists already; --force replaces it.\n"_s),
                 qPrintable(careful.error));
        QVERIFY2(careful.out.endsWith("1 resized, 1 failed\n"_L1), qPrintable(careful.out));
        QCOMPARE(contentOf(u"small/b.mp4"_s), QByteArray("mine"));
        const Result forced = run(words + QStringList{u"--force"_s});
        QCOMPARE(forced.exitCode, 0);
        QVERIFY(!forced.out.contains("Made"_L1));
        QCOMPARE(sizeOf(u"small/b.mp4"_s), u"64x36"_s);
    }

    void theFolderOfTheInputs()
    {
        const QByteArray before = contentOf(u"clips/b.mp4"_s);
        const Result result = run({u"clips/a.mkv"_s, u"clips/b.mp4"_s, u"-o"_s, u"clips"_s, u"--force"_s});
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.contains("clips/b.mp4: The output is the input itself"_L1),
                 qPrintable(result.error));
        QVERIFY(contentOf(u"clips/b.mp4"_s) == before);
        QCOMPARE(sizeOf(u"clips/a.mp4"_s), u"854x480"_s);
    }

    void aSignalEndsAllOfIt_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("terminate") << SIGTERM;
    }
    void aSignalEndsAllOfIt()
    {
        QFETCH(int, signal);
        QProcess process;
        start(process, {u"clips/a.mkv"_s, m_media + u"long.mp4"_s, u"clips/b.mp4"_s, u"-o"_s, u"small"_s,
                        u"--scale=200"_s});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(QFile::exists(path(u"small/long.mp4"_s)));
        ::kill(static_cast<pid_t>(process.processId()), signal);
        const Result result = resultOf(process);
        QCOMPARE(result.exitCode, 130);
        QCOMPARE(filesIn(u"small"_s), QStringList{u"a.mp4"_s});
        QCOMPARE(sizeOf(u"small/a.mp4"_s), u"1706x960"_s);
        QVERIFY2(result.error.endsWith("long.mp4: Cancelled.\n"_L1), qPrintable(result.error));
        QVERIFY2(result.out.endsWith("\nNot begun: clips/b.mp4\n1 resized, 1 cancelled, 1 not begun\n"_L1),
                 qPrintable(result.out));
    }

    void oneObjectAFile()
    {
        const Result result = run({u"clips"_s, u"-o"_s, u"small"_s, u"--width=64"_s, u"--json"_s});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(eachOf(result.out, "outcome"), u"done done skipped failed skipped skipped"_s);
        QCOMPARE(eachOf(result.out, "outputWidth"), u"64 64 - - - -"_s);
        QVERIFY(eachOf(result.out, "input").startsWith(path(u"clips/a.mkv"_s)));
        QVERIFY2(result.error.startsWith("Made the folder small\n"_L1), qPrintable(result.error));
        QVERIFY2(result.error.endsWith("\n2 resized, 1 failed, 3 skipped\n"_L1), qPrintable(result.error));
    }

    void anObjectForWhatIsRefusedBeforeTheStart_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("failure");
        QTest::newRow("names that meet") << u"small"_s
                                         << u"clips/b.mkv and clips/b.mp4 would both become small/b.mp4: "
                                            u"please resize them into different "
                                            "folders."_s;
        QTest::newRow("no folder") << u"clips/notes.txt"_s
                                   << u"There are several inputs, so -o must name a folder: clips/notes.txt "
                                      "is no folder."_s;
        QTest::newRow("a folder that cannot be made")
            << u"mistyped/small"_s << u"mistyped/small: this folder could not be made."_s;
    }
    void anObjectForWhatIsRefusedBeforeTheStart()
    {
        QFETCH(QString, folder);
        QFETCH(QString, failure);
        QStringList words{u"clips/a.mkv"_s, u"clips/b.mp4"_s, u"-o"_s, folder, u"--json"_s};
        if (folder == "small"_L1) words.insert(1, u"clips/b.mkv"_s);
        const Result result = run(words);
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.error, u"tessaly-cli: "_s + failure + u'\n');
        const QStringList objects = result.out.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(objects.size(), words.indexOf(u"-o"_s));
        for (const QString &object : objects) {
            QCOMPARE(eachOf(object, "outcome"), u"failed"_s);
            QCOMPARE(eachOf(object, "failure"), failure);
        }
        QCOMPARE(eachOf(objects.first(), "input"), path(words.first()));
        QCOMPARE(eachOf(objects.first(), "output"), path(folder + u"/a.mp4"_s));
    }

    void oneObjectAlone()
    {
        const QStringList words{u"clips/b.mp4"_s, u"-o"_s,     u"new"_s,
                                u"--height=90"_s, u"--json"_s, u"--quiet"_s};
        const Result done = run(words);
        QCOMPARE(done.exitCode, 0);
        QCOMPARE(done.error, QString());
        QCOMPARE(eachOf(done.out, "output"), path(u"new.mp4"_s));
        QCOMPARE(eachOf(done.out, "outputHeight"), u"90"_s);
        const Result refused = run(words);
        QCOMPARE(refused.exitCode, 1);
        QCOMPARE(eachOf(refused.out, "outcome"), u"failed"_s);
        QCOMPARE(eachOf(refused.out, "failure"),
                 path(u"new.mp4"_s) + u" exists already; --force replaces it."_s);
    }

    void objectsOfTheProgress()
    {
        const Result result =
            run({m_media + u"long.mp4"_s, u"-o"_s, u"new"_s, u"--width=64"_s, u"--json"_s, u"--progress"_s});
        QCOMPARE(result.exitCode, 0);
        const QString percents = eachOf(result.out, "percent");
        QVERIFY2(QRegularExpression(u"^(\\d+ )+-$"_s).match(percents).hasMatch(), qPrintable(percents));
        QCOMPARE(eachOf(result.out, "outcome").remove(u"- "_s), u"done"_s);
        QVERIFY2(!result.error.contains(u'%'), qPrintable(result.error));
    }

    void anObjectForWhatWasNotBegun()
    {
        QProcess process;
        start(process, {m_media + u"long.mp4"_s, u"clips/b.mp4"_s, u"-o"_s, u"small"_s, u"--scale=200"_s,
                        u"--json"_s});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(QFile::exists(path(u"small/long.mp4"_s)));
        process.terminate();
        const Result result = resultOf(process);
        QCOMPARE(result.exitCode, 130);
        QCOMPARE(eachOf(result.out, "outcome"), u"cancelled cancelled"_s);
    }

    void aReaderThatGoesAwayStopsNothing()
    {
        QProcess shell;
        shell.setWorkingDirectory(m_folder->path());
        shell.start(u"/bin/sh"_s,
                    {u"-c"_s, u"exec \"$0\" resize clips -o small --width 64 >/dev/full"_s, m_program});
        QCOMPARE(resultOf(shell).exitCode, 1);
        QCOMPARE(filesIn(u"small"_s), (QStringList{u"a.mp4"_s, u"b.mp4"_s}));
    }
};

TESSALY_TEST_MAIN(ResizeManyTest)
#include "resize_many_test.moc"
