// Whole jobs with the real tools that come to a bad end: what is said, what is left, and that the input is
// untouched.
#include "jobs/converter_run.h"
#include "jobs/failure_report.h"
#include "jobs/output_guard.h"
#include "jobs/resize_arguments.h"
#include "support/fake_tools.h"
#include "support/ordinary_user.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using namespace tessaly;
using namespace Qt::StringLiterals;
using End = RunOutcome::End;

namespace {

const auto plain = QStringLiteral(TESSALY_MEDIA_FOLDER "/plain.mp4");

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

struct Job
{
    std::optional<Failure> failure;
    FileProbe output;
};

Job resize(const QString &input, const QString &output, qint64 width, qint64 height,
           const ConverterRun::ChunkHandler &onChunk = {})
{
    const OutputGuard guard(output, input);
    JobEnd end;
    end.target = {output, width, height};
    end.outcome =
        ConverterRun().run(buildResizeArguments(FileProbe(input), input, output, width, height), onChunk);
    end.targetTouched = guard.wasTouched();
    Job job{{}, FileProbe(output)};
    job.failure = failureOfJob(end, job.output);
    if (job.failure && !guard.removeIfTouched()) job.failure->details += u"\nnot removed"_s;
    return job;
}

class TestJobEnd : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void goesWell();
    void fails_data();
    void fails();
    void failsWithoutPermission();
    void failsOnAFullDisk();
    void failsOnADamagedInput();
    void failsWithFakes_data();
    void failsWithFakes();
    void saysThatACutInputMadeAShorterVideo();

private:
    test::FakeTools tools;
};

void TestJobEnd::initTestCase()
{
    tools.useRealTool(u"sniffer"_s);
    tools.useRealTool(u"creator"_s);
}

void TestJobEnd::goesWell()
{
    const QTemporaryDir folder;
    const QString output = folder.filePath(u"-né %d \"w\".mp4"_s);
    write(output, "an older video");
    const QByteArray before = contents(plain);
    const Job job = resize(plain, output, 320, 180);
    QVERIFY2(!job.failure, qPrintable(job.failure ? job.failure->sentence : QString()));
    QCOMPARE(job.output.videoWidth, 320);
    QCOMPARE(shorterThanInput(FileProbe(plain).duration, job.output.duration), std::nullopt);
    QVERIFY(contents(plain) == before);
}

void TestJobEnd::fails_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("output"); // below the folder of the test
    QTest::addColumn<qint64>("width");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<QByteArray>("left"); // of an older file at the target
    const auto media = QStringLiteral(TESSALY_MEDIA_FOLDER "/");
    const auto row = [&](const char *name, const QString &input, const QString &output, int width,
                         const QString &sentence, const QByteArray &left) {
        QTest::newRow(name) << input << output << qint64(width) << sentence << left;
    };
    const QByteArray old("an older video");
    const QByteArray gone("(missing)");
    row("odd width", plain, u"out.mp4"_s, 321,
        u"A video of 321 x 180 cannot be made: choose an even size, such as 322 x 180."_s, gone);
    row("too large", plain, u"out.mp4"_s, 200000,
        u"A video of 200000 x 180 is too large to be made: choose a smaller size."_s, gone);
    row("folder vanished", plain, u"no/such/out.mp4"_s, 320,
        u"The folder for the new video is no longer there."_s, gone);
    row("target is a folder", plain, u"folder.mp4"_s, 320,
        u"The name of the new video belongs to a folder."_s, gone);
    row("long name", plain, QString(300, u'x') + u".mp4"_s, 320, u"The name of the new video is too long."_s,
        gone);
    row("input vanished", media + u"none.mp4"_s, u"out.mp4"_s, 320, u"The video is no longer there."_s, old);
    row("sound only", media + u"sound.m4a"_s, u"out.mp4"_s, 320, u"The new file holds no video."_s, gone);
}

void TestJobEnd::fails()
{
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFETCH(qint64, width);
    QFETCH(QString, sentence);
    QFETCH(QByteArray, left);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u"folder.mp4"_s));
    if (output == u"out.mp4") write(folder.filePath(output), "an older video");
    const QByteArray before = contents(input);
    const Job job = resize(input, folder.filePath(output), width, 180);
    QVERIFY(job.failure);
    QCOMPARE(job.failure->sentence, sentence);
    QVERIFY(!job.failure->details.isEmpty());
    QCOMPARE(contents(folder.filePath(output)), left);
    QVERIFY(contents(input) == before);
}

void TestJobEnd::failsWithoutPermission()
{
    const QTemporaryDir folder;
    const auto allow = [](const QString &path, mode_t mode) {
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode), 0);
    };
    const QString clip = folder.filePath(u"clip.mp4"_s); // the build may lie where that user cannot look
    const QString hidden = folder.filePath(u"hidden.mp4"_s);
    QVERIFY(QFile::copy(plain, clip) && QFile::copy(plain, hidden));
    allow(hidden, 0);
    allow(folder.path(), 0555);
    allow(tools.folder(), 0755);
    {
        const test::OrdinaryUser user;
        const auto unwritable = resize(clip, folder.filePath(u"out.mp4"_s), 320, 180).failure;
        const auto unreadable = resize(hidden, folder.filePath(u"never.mp4"_s), 320, 180).failure;
        QCOMPARE(unwritable.value().sentence, u"You do not have permission to write the new video there."_s);
        QCOMPARE(unreadable.value().sentence, u"You do not have permission to read the video."_s);
    }
    allow(folder.path(), 0755);
}

void TestJobEnd::failsOnAFullDisk()
{
    const QTemporaryDir folder;
    const QString output = folder.filePath(u"out.mp4"_s);
    QVERIFY(QFile::link(u"/dev/full"_s, output));
    const auto failure = resize(plain, output, 320, 180).failure;
    QCOMPARE(failure.value().sentence, u"The disk is full: there is no space left for the new video."_s);
    QVERIFY(failure->details.contains(u"No space left on device"_s));
    QVERIFY(QFileInfo(output).isSymLink());
    QVERIFY(QFileInfo::exists(u"/dev/full"_s));
}

void TestJobEnd::failsOnADamagedInput()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath(u"text.mp4"_s);
    write(input, "Dear Sir or Madam");
    const auto failure = resize(input, folder.filePath(u"out.mp4"_s), 320, 180).failure;
    QCOMPARE(failure.value().sentence, u"The video is damaged, or it is no video at all."_s);
    QCOMPARE(contents(input), "Dear Sir or Madam");
}

void TestJobEnd::failsWithFakes_data()
{
    QTest::addColumn<QList<QStringList>>("steps");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("untouched");
    const QString media = QStringLiteral(TESSALY_MEDIA_FOLDER "/");
    const auto row = [](const char *name, const QList<QStringList> &steps, const QString &sentence,
                        bool untouched) { QTest::newRow(name) << steps << sentence << untouched; };
    row("ends with 0 and writes nothing", {}, u"The converter ended without writing the new video."_s, true);
    row("ends with 0 and an empty file", {{u"write-output"_s, QString()}}, u"The new file holds no video."_s,
        false);
    row("ends with 0 and sound only", {{u"copy-to-output"_s, media + u"sound.m4a"_s}},
        u"The new file holds no video."_s, false);
    row("writes half a file and crashes", {{u"write-output"_s, u"half"_s}, {u"crash"_s}},
        u"The converter crashed (signal 11)."_s, false);
    row("fails and leaves a whole video",
        {{u"copy-to-output"_s, media + u"plain.mp4"_s},
         {u"complain"_s, u"Not quite\n"_s},
         {u"exit"_s, u"69"_s}},
        u"The converter said: Not quite"_s, false);
    row("fails at once", {{u"exit"_s, u"1"_s}}, u"The converter ended with error 1 and said nothing."_s,
        true);
}

void TestJobEnd::failsWithFakes()
{
    QFETCH(QList<QStringList>, steps);
    QFETCH(QString, sentence);
    QFETCH(bool, untouched);
    tools.setSteps(u"creator"_s, steps);
    const QTemporaryDir folder;
    const QString output = folder.filePath(u"out.mp4"_s);
    QVERIFY(QFile::copy(plain, output)); // a whole video from before proves nothing
    const Job job = resize(plain, output, 320, 180);
    QVERIFY(job.failure);
    QCOMPARE(job.failure->sentence, sentence);
    QCOMPARE(QFile::exists(output), untouched);
    tools.useRealTool(u"creator"_s);
}

// The converter ends with 0 all the same.
void TestJobEnd::saysThatACutInputMadeAShorterVideo()
{
    const QTemporaryDir folder;
    const QString input = folder.filePath(u"long.mp4"_s);
    QVERIFY(QFile::copy(QStringLiteral(TESSALY_MEDIA_FOLDER "/long.mp4"), input));
    const double duration = FileProbe(input).duration;
    const Job job = resize(input, folder.filePath(u"out.mp4"_s), 320, 180, [&](const QByteArray &chunk) {
        if (chunk.contains("time=")) QFile::resize(input, 3'000'000);
    });
    QVERIFY2(!job.failure, qPrintable(job.failure ? job.failure->sentence : QString()));
    const QString sentence = shorterThanInput(duration, job.output.duration).value_or(QString());
    QVERIFY2(sentence.startsWith(u"The new video is shorter than the original says: 00:00:"_s),
             qPrintable(sentence));
    QVERIFY2(sentence.endsWith(u" instead of 00:00:30.00."_s), qPrintable(sentence));
}

} // namespace

TESSALY_TEST_MAIN(TestJobEnd)
#include "job_end_test.moc"
