#include "jobs/output_guard.h"
#include "support/ordinary_user.h"
#include "support/test_case.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace tessaly;
using namespace Qt::StringLiterals;
using Target = OutputGuard::Target;

namespace {

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

constexpr qint64 second = 1'000'000'000; // nanoseconds

void setModified(const QString &path, qint64 nanoseconds)
{
    const timespec times[2] = {{0, UTIME_OMIT}, {nanoseconds / second, nanoseconds % second}};
    QCOMPARE(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

class TestOutputGuard : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { makeFolder(); }
    void cleanup() { makeFolder(); }
    void removesWhatTheJobCreated();
    void removesAnEmptyFileOfTheJob();
    void keepsAFileThatTheJobNeverTouched();
    void removesAFileThatTheJobEmptied();
    void seesEachKindOfTouch_data();
    void seesEachKindOfTouch();
    void hasNothingToDoWhenNothingIsThere();
    void keepsALinkAndRemovesWhatTheJobWroteThroughIt_data();
    void keepsALinkAndRemovesWhatTheJobWroteThroughIt();
    void keepsALinkThatSomebodyElseMade();
    void keepsWhatIsNoOrdinaryFile_data();
    void keepsWhatIsNoOrdinaryFile();
    void neverRemovesTheInput_data();
    void neverRemovesTheInput();
    void saysWhenSomethingStays();
    void believesWholeSecondsOnlyOfAJobThatEndedWell_data();
    void believesWholeSecondsOnlyOfAJobThatEndedWell();
    void knowsTheFileThatTheJobHadOpen_data();
    void knowsTheFileThatTheJobHadOpen();
    void doesNotTakeReadingForWriting();

private:
    void makeFolder();

    std::unique_ptr<QTemporaryDir> folder;
    QString input;
    QString output;
};

void TestOutputGuard::makeFolder()
{
    folder = std::make_unique<QTemporaryDir>();
    input = folder->filePath(u"input.mkv"_s);
    output = folder->filePath(u"line\nbreak %d é.mp4"_s);
    write(input, "the input");
}

void TestOutputGuard::removesWhatTheJobCreated()
{
    const OutputGuard guard(output, input);
    QCOMPARE(guard.target(false), Target::untouched);
    write(output, "half a video");
    QCOMPARE(guard.target(false), Target::written);
    QVERIFY(guard.removeWhatWasWritten());
    QVERIFY(!QFile::exists(output));
    QCOMPARE(guard.target(false), Target::untouched);
}

void TestOutputGuard::removesAnEmptyFileOfTheJob()
{
    const OutputGuard guard(output, input);
    write(output, "");
    QVERIFY(guard.removeWhatWasWritten());
    QVERIFY(!QFile::exists(output));
}

void TestOutputGuard::keepsAFileThatTheJobNeverTouched()
{
    write(output, "an older video");
    const OutputGuard guard(output, input);
    QCOMPARE(guard.target(false), Target::untouched);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(contents(output), "an older video");
}

void TestOutputGuard::removesAFileThatTheJobEmptied()
{
    write(output, "an older video");
    const OutputGuard guard(output, input);
    write(output, "");
    QCOMPARE(guard.target(false), Target::written);
    QVERIFY(guard.removeWhatWasWritten());
    QVERIFY(!QFile::exists(output));
}

void TestOutputGuard::seesEachKindOfTouch_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qint64>("nanoseconds");
    QTest::addColumn<bool>("replaced");
    QTest::addColumn<bool>("touched");
    QTest::newRow("none") << QByteArray("old") << qint64(500) << false << false;
    QTest::newRow("size") << QByteArray("older") << qint64(500) << false << true;
    QTest::newRow("time, by a nanosecond") << QByteArray("old") << qint64(501) << false << true;
    QTest::newRow("time, by a second") << QByteArray("old") << second + 500 << false << true;
    QTest::newRow("another inode") << QByteArray("old") << qint64(500) << true << true;
}

void TestOutputGuard::seesEachKindOfTouch()
{
    QFETCH(QByteArray, bytes);
    QFETCH(qint64, nanoseconds);
    QFETCH(bool, replaced);
    QFETCH(bool, touched);
    write(output, "old");
    setModified(output, 500);
    const OutputGuard guard(output, input);
    if (replaced) {
        const QString other = folder->filePath(u"other"_s);
        write(other, bytes);
        QCOMPARE(::rename(QFile::encodeName(other).constData(), QFile::encodeName(output).constData()), 0);
    } else {
        write(output, bytes);
    }
    setModified(output, nanoseconds);
    QCOMPARE(guard.target(false), touched ? Target::written : Target::untouched);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(QFile::exists(output), !touched);
}

void TestOutputGuard::hasNothingToDoWhenNothingIsThere()
{
    const OutputGuard nothing(output, input);
    QCOMPARE(nothing.target(false), Target::untouched);
    QVERIFY(nothing.removeWhatWasWritten());

    write(output, "an older video");
    const OutputGuard gone(output, input);
    QFile::remove(output);
    QCOMPARE(gone.target(false), Target::untouched);
    QVERIFY(gone.removeWhatWasWritten());

    const OutputGuard nowhere(folder->filePath(u"no/such/folder.mp4"_s), folder->filePath(u"no/input"_s));
    QCOMPARE(nowhere.target(false), Target::untouched);
    QVERIFY(nowhere.removeWhatWasWritten());
}

void TestOutputGuard::keepsALinkAndRemovesWhatTheJobWroteThroughIt_data()
{
    QTest::addColumn<bool>("targetIsThere");
    QTest::newRow("link to a file") << true;
    QTest::newRow("link to nothing") << false;
}

void TestOutputGuard::keepsALinkAndRemovesWhatTheJobWroteThroughIt()
{
    QFETCH(bool, targetIsThere);
    const QString target = folder->filePath(u"target.mp4"_s);
    if (targetIsThere) write(target, "an older video");
    QVERIFY(QFile::link(u"target.mp4"_s, output));

    const OutputGuard guard(output, input);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(contents(target), targetIsThere ? "an older video" : "(missing)");

    write(output, "half a video");
    QVERIFY(guard.removeWhatWasWritten());
    QVERIFY(!QFile::exists(target));
    QVERIFY(QFileInfo(output).isSymLink());
}

void TestOutputGuard::keepsALinkThatSomebodyElseMade()
{
    const QString target = folder->filePath(u"target.mp4"_s);
    const OutputGuard guard(output, input);
    write(target, "somebody's file");
    QVERIFY(QFile::link(target, output));
    QCOMPARE(guard.target(false), Target::written);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(contents(target), "somebody's file");
    QVERIFY(QFileInfo(output).isSymLink());
}

void TestOutputGuard::keepsWhatIsNoOrdinaryFile_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("thereBefore");
    for (const char *kind : {"folder", "pipe", "link to a pipe"}) {
        QTest::addRow("%s, there before", kind) << QString::fromLatin1(kind) << true;
        QTest::addRow("%s, new", kind) << QString::fromLatin1(kind) << false;
    }
}

void TestOutputGuard::keepsWhatIsNoOrdinaryFile()
{
    QFETCH(QString, kind);
    QFETCH(bool, thereBefore);
    const auto make = [&] {
        if (kind == u"folder") QVERIFY(QDir().mkdir(output));
        const QString pipe = kind == u"pipe" ? output : folder->filePath(u"pipe"_s);
        if (kind != u"folder") QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        if (kind == u"link to a pipe") QVERIFY(QFile::link(pipe, output));
    };
    if (thereBefore) make();
    const OutputGuard guard(output, input);
    if (!thereBefore) make();
    setModified(output, 500);
    QCOMPARE(guard.target(false), Target::written);
    QVERIFY(guard.removeWhatWasWritten());
    QVERIFY(QFileInfo::exists(output));
}

void TestOutputGuard::neverRemovesTheInput_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("same path") << u"same"_s;
    QTest::newRow("hard link") << u"hard"_s;
    QTest::newRow("symbolic link") << u"symbolic"_s;
    QTest::newRow("input moved to the target meanwhile") << u"moved"_s;
    QTest::newRow("target moved to the input's place meanwhile") << u"swapped"_s;
}

void TestOutputGuard::neverRemovesTheInput()
{
    QFETCH(QString, way);
    const QByteArray from = QFile::encodeName(input);
    const QByteArray to = QFile::encodeName(output);
    if (way == u"same") output = input;
    if (way == u"hard") QCOMPARE(::link(from.constData(), to.constData()), 0);
    if (way == u"symbolic") QVERIFY(QFile::link(input, output));
    const OutputGuard guard(output, input);
    if (way == u"moved") QCOMPARE(::rename(from.constData(), to.constData()), 0);
    if (way == u"swapped") {
        write(output, "new");
        QVERIFY(QFile::remove(input));
        QCOMPARE(::link(to.constData(), from.constData()), 0);
    }
    if (way != u"moved") write(input, "changed");
    QCOMPARE(guard.target(false), Target::written);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(contents(output), way == u"moved" ? "the input" : "changed");
}

void TestOutputGuard::saysWhenSomethingStays()
{
    const QString closed = folder->filePath(u"closed"_s);
    QVERIFY(QDir().mkdir(closed));
    const OutputGuard guard(closed + u"/out.mp4"_s, input);
    write(closed + u"/out.mp4"_s, "half a video");
    QCOMPARE(::chmod(QFile::encodeName(folder->path()).constData(), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(closed).constData(), 0555), 0);

    bool removed = true;
    {
        const test::OrdinaryUser user;
        removed = guard.removeWhatWasWritten();
    }
    QVERIFY(!removed);
    QVERIFY(QFile::exists(closed + u"/out.mp4"_s));
    QCOMPARE(::chmod(QFile::encodeName(closed).constData(), 0755), 0);
    QVERIFY(guard.removeWhatWasWritten());
    QVERIFY(!QFile::exists(closed + u"/out.mp4"_s));
}

// As on disks that keep no fractions: the job may have written the same number of bytes in the same second.
void TestOutputGuard::believesWholeSecondsOnlyOfAJobThatEndedWell_data()
{
    QTest::addColumn<qint64>("nanoseconds");
    QTest::addColumn<bool>("endedWell");
    QTest::addColumn<Target>("target");
    QTest::newRow("whole second, ended well") << 5 * second << true << Target::written;
    QTest::newRow("whole second, failed") << 5 * second << false << Target::untouched;
    QTest::newRow("with a fraction, ended well") << 5 * second + 1 << true << Target::untouched;
    QTest::newRow("with a fraction, failed") << 5 * second + 1 << false << Target::untouched;
}

void TestOutputGuard::believesWholeSecondsOnlyOfAJobThatEndedWell()
{
    QFETCH(qint64, nanoseconds);
    QFETCH(bool, endedWell);
    write(output, "old");
    setModified(output, nanoseconds);
    const OutputGuard guard(output, input);
    QTEST(guard.target(endedWell), "target");
    QVERIFY(QFile::remove(output)); // nothing there can have been written
    QCOMPARE(guard.target(endedWell), Target::untouched);
}

// Runs a shell, a job's stand-in, that opens the output ("$0") and then stays.
class Shell
{
public:
    Shell(const QString &script, const QString &output)
    {
        m_shell.start(u"/bin/sh"_s, {u"-c"_s, script, output});
        m_isReady = m_shell.waitForReadyRead() && m_shell.readLine() == "ready\n";
    }
    ~Shell()
    {
        m_shell.closeWriteChannel(); // which its last words wait for
        m_shell.waitForFinished();
    }
    Shell(const Shell &) = delete;
    Shell &operator=(const Shell &) = delete;

    bool isReady() const { return m_isReady; }
    qint64 processId() const { return m_shell.processId(); }

private:
    QProcess m_shell;
    bool m_isReady = false;
};

void TestOutputGuard::knowsTheFileThatTheJobHadOpen_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("event");
    QTest::addColumn<Target>("target");
    const auto program = u"exec 3>\"$0\"; echo ready; read -r word"_s;
    const auto wrapper = u"sh -c 'exec 3>\"$0\"; echo ready; read -r word' \"$0\"; true"_s;
    for (const auto &[name, script] : {std::pair("a program", program), std::pair("a wrapper", wrapper)}) {
        const auto row = [name = name, script = script](const char *event, Target target) {
            QTest::addRow("%s, %s", name, event) << script << QString::fromLatin1(event) << target;
        };
        row("nothing happens", Target::written);
        row("somebody removes the file", Target::replaced);
        row("somebody puts another file there", Target::replaced);
        row("somebody renames the folder", Target::written);
    }
}

void TestOutputGuard::knowsTheFileThatTheJobHadOpen()
{
    QFETCH(QString, script);
    QFETCH(QString, event);
    QFETCH(Target, target);
    const QString saved = folder->filePath(u"saved"_s);
    const QString renamed = folder->filePath(u"renamed"_s);
    QVERIFY(QDir().mkdir(saved));
    OutputGuard guard(saved + u"/out.mp4"_s, input);
    {
        const Shell job(script, saved + u"/out.mp4"_s);
        QVERIFY(job.isReady());
        guard.look(job.processId());
    }
    const bool isRenamed = event.endsWith(u"folder"_s);
    if (event.endsWith(u"the file"_s)) QVERIFY(QFile::remove(saved + u"/out.mp4"_s));
    if (event.endsWith(u"there"_s)) {
        write(folder->filePath(u"other"_s), "another");
        QVERIFY(QFile::remove(saved + u"/out.mp4"_s));
        QVERIFY(QFile::rename(folder->filePath(u"other"_s), saved + u"/out.mp4"_s));
    }
    if (isRenamed) QVERIFY(QDir().rename(saved, renamed));

    QCOMPARE(guard.target(false), target);
    QCOMPARE(guard.target(true), target);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(contents((isRenamed ? renamed : saved) + u"/out.mp4"_s),
             event.endsWith(u"there"_s) ? "another" : "(missing)");
}

// A player, say.
void TestOutputGuard::doesNotTakeReadingForWriting()
{
    write(output, "an older video");
    OutputGuard guard(output, input);
    {
        const Shell reader(u"exec 3<\"$0\"; echo ready; read -r word"_s, output);
        QVERIFY(reader.isReady());
        guard.look(reader.processId());
    }
    QCOMPARE(guard.target(false), Target::untouched);
    QVERIFY(guard.removeWhatWasWritten());
    QCOMPARE(contents(output), "an older video");
}

} // namespace

TESSALY_TEST_MAIN(TestOutputGuard)
#include "output_guard_test.moc"
