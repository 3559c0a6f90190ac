// tessaly-cli resize, run as people run it, with the real tools.
#include "support/test_case.h"

#include <QCryptographicHash>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

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
    const QString m_program = QStringLiteral(TESSALY_PROGRAM_FOLDER "/tessaly-cli");
    const QString m_media = QStringLiteral(TESSALY_MEDIA_FOLDER "/");

    QString path(const QString &name) const { return m_folder.filePath(name); }

    Result run(const QStringList &words) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(m_program, QStringList{u"resize"_s} + words);
        if (!process.waitForFinished(60000)) return {};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
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
        QCOMPARE(lines.size(), 3);
        QVERIFY2(
            QRegularExpression(u"^Input Resolution: \\d+ x \\d+ \\([^)]+\\)$"_s).match(lines[0]).hasMatch(),
            qPrintable(result.out));
        const QString told = QString(size).replace(u"x"_s, u" x "_s);
        QVERIFY2(lines[1].startsWith(u"Output Resolution: "_s + told + u" ("_s), qPrintable(result.out));
        QVERIFY(contentOf(m_media + input) == before);
    }

    void theExtensionIsAdded()
    {
        QCOMPARE(run({m_media + u"plain.mp4"_s, u"-o"_s, u"a.mov"_s, u"--quiet"_s}).exitCode, 0);
        QCOMPARE(sizeOf(path(u"a.mov.mp4"_s)), u"640x360"_s);
    }

    void progressIsLinesWhereThereIsNoTerminal()
    {
        const Result result = run({m_media + u"plain.mp4"_s, u"-o"_s, u"lines"_s});
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
        QTest::newRow("a folder") << u"in.mp4"_s << u"folder.mp4"_s << QStringList{u"--force"_s}
                                  << u"folder"_s;
        QTest::newRow("no such input") << u"gone.mp4"_s << u"new.mp4"_s << QStringList{} << u"gone.mp4"_s;
        QTest::newRow("no video") << u"taken.mp4"_s << u"new.mp4"_s << QStringList{} << u"unsupported"_s;
        QTest::newRow("a DVD file") << u"in.vob"_s << u"new.mp4"_s << QStringList{} << u"VOB"_s;
        QTest::newRow("too small") << u"in.mp4"_s << u"new.mp4"_s << QStringList{u"--scale=0.01"_s}
                                   << u"2 pixels"_s;
        QTest::newRow("no such folder") << u"in.mp4"_s << u"none/new.mp4"_s << QStringList{} << u"folder"_s;
    }
    void refusals()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(QStringList, more);
        QFETCH(QString, said);
        QDir(m_folder.path()).mkdir(u"folder.mp4"_s);
        QFile::copy(m_media + u"plain.mp4"_s, path(u"in.mp4"_s));
        QFile::copy(m_media + u"plain.mp4"_s, path(u"in.vob"_s));
        QFile::link(path(u"in.mp4"_s), path(u"symbolic.mp4"_s));
        QFile::link(path(u"new.mp4"_s), path(u"dangling.mp4"_s));
        ::link(qPrintable(path(u"in.mp4"_s)), qPrintable(path(u"hard.mp4"_s)));
        QFile taken(path(u"taken.mp4"_s));
        QVERIFY(taken.open(QIODevice::WriteOnly) && taken.write("mine") == 4);
        taken.close();

        const Result result = run(QStringList{input, u"-o"_s, output} + more);
        QCOMPARE(result.exitCode, 1);
        QVERIFY2(result.error.startsWith("tessaly-cli: "_L1) && result.error.contains(said) &&
                     result.error.count(u'\n') == 1,
                 qPrintable(result.error));
        QCOMPARE(contentOf(path(u"taken.mp4"_s)), QByteArray("mine"));
        QVERIFY(contentOf(path(u"in.mp4"_s)) == contentOf(m_media + u"plain.mp4"_s));
        QVERIFY(!QFile::exists(path(u"new.mp4"_s)));
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
        QProcess shell;
        shell.setWorkingDirectory(m_folder.path());
        shell.start(u"/bin/sh"_s, {u"-c"_s, u"exec "_s + call, m_program});
        QVERIFY(shell.waitForFinished());
        QCOMPARE(shell.exitCode(), 1);
        QCOMPARE(shell.readAllStandardError(),
                 QByteArray("tessaly-cli: b\xEF\xBF\xBD"
                            "d.mp4: the name is not valid UTF-8, so it cannot be used.\n"));
    }

    void aProgramWithoutItsProberSaysSo()
    {
        QVERIFY(QFile::copy(m_program, path(u"alone"_s)));
        QProcess program;
        program.start(path(u"alone"_s),
                      {u"resize"_s, m_media + u"plain.mp4"_s, u"-o"_s, path(u"alone.mp4"_s)});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 1);
        QCOMPARE(
            QString::fromUtf8(program.readAllStandardError()),
            u"tessaly-cli: %1plain.mp4: The prober \"sniffer\" is missing among the resources of this program.\n"_s
                .arg(m_media));
        QVERIFY(!QFile::exists(path(u"alone.mp4"_s)));
    }

    void aCutInputGivesAShortCopyWithARemark()
    {
        const QStringList remux{u"-v"_s, u"error"_s, u"-y"_s, u"-i"_s, m_media + u"long.mp4"_s,
                                u"-c"_s, u"copy"_s,  u"-t"_s, u"8"_s,  path(u"cut.mkv"_s)};
        QCOMPARE(QProcess::execute(QStringLiteral(TESSALY_PROGRAM_FOLDER "/creator"), remux), 0);
        QFile cut(path(u"cut.mkv"_s));
        QVERIFY(cut.resize(cut.size() / 2));
        const Result result = run({u"cut.mkv"_s, u"-o"_s, u"short.mp4"_s, u"--width=64"_s});
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.error.contains("shorter"_L1), qPrintable(result.error));
        QCOMPARE(sizeOf(path(u"short.mp4"_s)), u"64x36"_s);
    }

    void forceReplaces()
    {
        QFile old(path(u"old.mp4"_s));
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.close();
        QCOMPARE(run({m_media + u"plain.mp4"_s, u"-o"_s, u"old.mp4"_s, u"--force"_s, u"--quiet"_s}).exitCode,
                 0);
        QCOMPARE(sizeOf(path(u"old.mp4"_s)), u"640x360"_s);
    }

    void wrongUsage_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::newRow("no input") << QStringList{u"-o"_s, u"a"_s};
        QTest::newRow("two inputs") << QStringList{u"a"_s, u"b"_s, u"-o"_s, u"c"_s};
        QTest::newRow("no output") << QStringList{u"a"_s};
        QTest::newRow("scale and width")
            << QStringList{u"a"_s, u"-o"_s, u"b"_s, u"--scale=50"_s, u"--width=10"_s};
        for (const char *scale : {"0", "-5", "half", "inf", "nan", ""})
            QTest::addRow("scale %s", scale)
                << QStringList{u"a"_s, u"-o"_s, u"b"_s, u"--scale="_s + QString::fromLatin1(scale)};
        for (const char *side : {"0", "1", "-2", "1.5", "wide", ""})
            QTest::addRow("width %s", side)
                << QStringList{u"a"_s, u"-o"_s, u"b"_s, u"--width="_s + QString::fromLatin1(side)};
        QTest::newRow("unknown option") << QStringList{u"a"_s, u"-o"_s, u"b"_s, u"--fast"_s};
    }
    void wrongUsage()
    {
        QFETCH(QStringList, words);
        const Result result = run(words);
        QCOMPARE(result.exitCode, 2);
        QCOMPARE(result.error.count(u'\n'), 1);
    }

    void interruptCancelsAndRemovesThePartialFile()
    {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(m_program,
                      {u"resize"_s, m_media + u"long.mp4"_s, u"-o"_s, u"partial"_s, u"--scale"_s, u"200"_s});
        QVERIFY(process.waitForStarted());
        QTRY_VERIFY(QFile::exists(path(u"partial.mp4"_s)));
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 130);
        QVERIFY(!QFile::exists(path(u"partial.mp4"_s)));
    }
};

TESSALY_TEST_MAIN(ResizeProgramTest)
#include "resize_program_test.moc"
