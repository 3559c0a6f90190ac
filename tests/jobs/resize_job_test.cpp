// Whole jobs, with the real tools and with fakes: how they end, what is said, what is left, and that the
// input is untouched.
#include "jobs/resize_job.h"
#include "support/fake_tools.h"
#include "support/ordinary_user.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <future>
#include <sys/stat.h>
#include <thread>

using namespace tessaly;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Steps = QList<QStringList>;

namespace {

const auto creator = u"creator"_s;
const auto sniffer = u"sniffer"_s;
const auto media = QStringLiteral(TESSALY_MEDIA_FOLDER "/");
const auto plain = media + u"plain.mp4"_s; // 640 x 360, two seconds
const QByteArray old("an older video");
const QByteArray gone("(missing)");

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : gone;
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

void allow(const QString &path, mode_t mode)
{
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode), 0);
}

std::shared_ptr<const FileProbe> probed(const QString &path)
{
    return std::make_shared<const FileProbe>(path);
}

// "done", "cancelled" or "failed", and all that is told.
QString told(const JobEnd &end)
{
    if (const auto *failure = std::get_if<JobFailed>(&end)) return u"failed: "_s + failure->sentence;
    if (const auto *how = std::get_if<JobCancelled>(&end))
        return u"cancelled"_s + (how->leftover ? u": "_s + *how->leftover : QString());
    const auto &done = std::get<JobDone>(end);
    QString text = u"done"_s;
    if (done.uncheckedBecause) text += u", unchecked: "_s + *done.uncheckedBecause;
    for (const Remark &remark : done.remarks)
        text += (remark.isSerious ? u", serious: "_s : u", "_s) + remark.sentence;
    return text;
}

class TestResizeJob : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { letRunsStart(); }
    void goesWell_data();
    void goesWell();
    void fails_data();
    void fails();
    void failsWithoutPermission();
    void failsOnAFullDisk();
    void failsWithFakes_data();
    void failsWithFakes();
    void keepsWhatCannotBeChecked_data();
    void keepsWhatCannotBeChecked();
    void remarks_data();
    void remarks();
    void tellsOfADamagedInput();
    void isCancelled_data();
    void isCancelled();
    void isCancelledFromAnywhereAtAnyTime();
    void leavesAloneWhatSomebodyElsePutThere_data();
    void leavesAloneWhatSomebodyElsePutThere();
    void findsItsFileInARenamedFolder();
    void tellsOfWhatCannotBeRemoved_data();
    void tellsOfWhatCannotBeRemoved();

private:
    QString path(const QString &name) const { return folder->filePath(name); }

    std::unique_ptr<test::FakeTools> tools;
    std::unique_ptr<QTemporaryDir> folder;
};

void TestResizeJob::init()
{
    TestCase::init();
    tools.reset(); // before the next one: it gives the resource folders back
    tools = std::make_unique<test::FakeTools>();
    tools->useRealTool(sniffer);
    tools->useRealTool(creator);
    folder = std::make_unique<QTemporaryDir>();
}

void TestResizeJob::goesWell_data()
{
    QTest::addColumn<bool>("inOne");
    QTest::newRow("run()") << true;
    QTest::newRow("convert() and end()") << false;
}

void TestResizeJob::goesWell()
{
    QFETCH(bool, inOne);
    const QString output = path(u"-né %d \"w\".mp4"_s);
    write(output, old);
    const QByteArray before = contents(plain);
    double last = 0;
    const ResizeJob::Progress follow{.percent = [&last](double percent) { last = percent; }};
    ResizeJob job(probed(plain), {output, 320, 180});
    QVERIFY(job.isUnderWay());
    if (!inOne) job.convert(follow);
    const JobEnd end = inOne ? job.run(follow) : job.end(FileProbe(output));
    QVERIFY(!job.isUnderWay());
    QCOMPARE(told(end), u"done"_s);
    QVERIFY2(last > 95 && last < 110, qPrintable(QString::number(last)));
    QCOMPARE(std::get<JobDone>(end).output.videoWidth, 320);
    QCOMPARE(FileProbe(output).videoHeight, 180);
    QVERIFY(contents(plain) == before);
}

void TestResizeJob::fails_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("output"); // below the folder of the test
    QTest::addColumn<qint64>("width");
    QTest::addColumn<qint64>("height");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<QByteArray>("left"); // of an older file at the target
    const auto row = [&](const char *name, const QString &input, const QString &output, qint64 width,
                         qint64 height, const QString &sentence, const QByteArray &left) {
        QTest::newRow(name) << input << output << width << height << sentence << left;
    };
    const auto out = u"out.mp4"_s;
    row("odd width", plain, out, 321, 180,
        u"A video of 321 x 180 cannot be made: choose an even size, such as 322 x 180."_s, gone);
    row("too large", plain, out, 200000, 180,
        u"A video of 200000 x 180 is too large to be made: choose a smaller size."_s, gone);
    row("nothing", plain, out, 0, 0,
        u"The new video came out as 640 x 360, not 0 x 0: choose a size of at least 2 x 2."_s, gone);
    row("more than ffmpeg can count", plain, out, qint64(1) << 32, 180,
        u"The new video came out as 640 x 180, not 4294967296 x 180: choose a smaller size.|" // up to FFmpeg
                                                                                              // 7
        "A video of 4294967296 x 180 is too large to be made: choose a smaller size."_s,
        gone);
    row("folder vanished", plain, u"no/such/out.mp4"_s, 320, 180,
        u"The folder for the new video does not exist."_s, gone);
    row("target is a folder", plain, u"folder.mp4"_s, 320, 180,
        u"The name of the new video belongs to a folder."_s, gone);
    row("long name", plain, QString(300, u'x') + u".mp4"_s, 320, 180,
        u"The name of the new video is too long."_s, gone);
    row("input vanished", media + u"none.mp4"_s, out, 320, 180, u"The video is no longer there."_s, old);
    row("sound only", media + u"sound.m4a"_s, out, 320, 180, u"The new file holds no video."_s, gone);
    row("a letter", u"letter.mp4"_s, out, 320, 180, u"The video is damaged, or it is no video at all."_s,
        old);
}

void TestResizeJob::fails()
{
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFETCH(qint64, width);
    QFETCH(qint64, height);
    QFETCH(QString, sentence);
    QFETCH(QByteArray, left);
    QVERIFY(QDir(folder->path()).mkdir(u"folder.mp4"_s));
    write(path(u"letter.mp4"_s), "Dear Sir or Madam");
    input = QDir(folder->path()).filePath(input); // an absolute one stays
    if (output == u"out.mp4") write(path(output), old);
    const QByteArray before = contents(input);
    const JobEnd end = ResizeJob(probed(input), {path(output), width, height}).run();
    const auto *failure = std::get_if<JobFailed>(&end);
    QVERIFY2(failure, qPrintable(told(end)));
    QVERIFY2(sentence.split(u'|').contains(failure->sentence), qPrintable(failure->sentence));
    QVERIFY(!failure->details.isEmpty());
    QCOMPARE(contents(path(output)), left);
    QVERIFY(contents(input) == before);
}

void TestResizeJob::failsWithoutPermission()
{
    const QString clip = path(u"clip.mp4"_s); // the build may lie where that user cannot look
    const QString hidden = path(u"hidden.mp4"_s);
    QVERIFY(QFile::copy(plain, clip) && QFile::copy(plain, hidden));
    const auto hiddenProbe = probed(hidden);
    allow(hidden, 0);
    allow(folder->path(), 0555);
    allow(tools->folder(), 0755);
    {
        const test::OrdinaryUser user;
        QCOMPARE(told(ResizeJob(probed(clip), {path(u"out.mp4"_s), 320, 180}).run()),
                 u"failed: You do not have permission to write the new video there."_s);
        QCOMPARE(told(ResizeJob(hiddenProbe, {path(u"never.mp4"_s), 320, 180}).run()),
                 u"failed: You do not have permission to read the video."_s);
    }
    allow(folder->path(), 0755);
}

void TestResizeJob::failsOnAFullDisk()
{
    const QString output = path(u"out.mp4"_s);
    QVERIFY(QFile::link(u"/dev/full"_s, output));
    const JobEnd end = ResizeJob(probed(plain), {output, 320, 180}).run();
    QCOMPARE(told(end), u"failed: The disk is full: there is no space left for the new video."_s);
    QVERIFY(std::get<JobFailed>(end).details.contains(u"No space left on device"_s));
    QVERIFY(QFileInfo(output).isSymLink());
    QVERIFY(QFileInfo::exists(u"/dev/full"_s));
}

void TestResizeJob::failsWithFakes_data()
{
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<QString>("sentence");
    QTest::addColumn<bool>("untouched");
    const auto row = [](const char *name, const Steps &steps, const QString &sentence, bool untouched) {
        QTest::newRow(name) << steps << sentence << untouched;
    };
    row("ends with 0 and writes nothing", {}, u"ffmpeg ended without writing the new video."_s, true);
    row("ends with 0 and an empty file", {{u"write-output"_s, QString()}}, u"The new file holds no video."_s,
        false);
    row("ends with 0 and sound only", {{u"copy-to-output"_s, media + u"sound.m4a"_s}},
        u"The new file holds no video."_s, false);
    row("writes half a file and crashes", {{u"write-output"_s, u"half"_s}, {u"crash"_s}},
        u"ffmpeg crashed (signal 11)."_s, false);
    row("fails and leaves a whole video",
        {{u"copy-to-output"_s, plain}, {u"complain"_s, u"Not quite\n"_s}, {u"exit"_s, u"69"_s}},
        u"ffmpeg said: Not quite"_s, false);
    row("fails at once", {{u"exit"_s, u"1"_s}}, u"ffmpeg ended with error 1 and said nothing."_s, true);
    row("is missing", {{u"missing"_s}}, u"ffmpeg is missing."_s, true);
}

void TestResizeJob::failsWithFakes()
{
    QFETCH(Steps, steps);
    QFETCH(QString, sentence);
    QFETCH(bool, untouched);
    tools->setSteps(creator, steps);
    if (steps == Steps{{u"missing"_s}}) tools->remove(creator);
    const QString output = path(u"out.mp4"_s);
    QVERIFY(QFile::copy(plain, output)); // a whole video from before proves nothing
    QCOMPARE(told(ResizeJob(probed(plain), {output, 320, 180}).run()), u"failed: "_s + sentence);
    QCOMPARE(QFile::exists(output), untouched);
}

void TestResizeJob::keepsWhatCannotBeChecked_data()
{
    QTest::addColumn<bool>("missing");
    QTest::newRow("the prober is gone") << true;
    QTest::newRow("the prober is too slow") << false;
}

void TestResizeJob::keepsWhatCannotBeChecked()
{
    QFETCH(bool, missing);
    const QString output = path(u"out.mp4"_s);
    ResizeJob job(probed(plain), {output, 320, 180});
    tools->setBehaviour(sniffer, u"hang"_s);
    if (missing) tools->remove(sniffer);
    job.convert();
    const QByteArray made = contents(output);
    const FileProbe unchecked(output, 300ms);
    QVERIFY(unchecked.proberFailure);
    QCOMPARE(told(job.end(unchecked)), u"done, unchecked: "_s + *unchecked.proberFailure);
    QVERIFY(made.size() > 1000 && contents(output) == made);
}

void TestResizeJob::remarks_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("errors"); // that the converter tells of
    QTest::addColumn<QString>("remarks");
    QTest::newRow("none") << plain << 0 << u"done"_s;
    QTest::newRow("some errors") << plain << 12
                                 << u"done, 12 errors while reading the input: the picture may be damaged."_s;
    QTest::newRow("as many errors as pictures")
        << plain << 50 << u"done, serious: 50 errors while reading the input: it is damaged or encrypted."_s;
    QTest::newRow("shorter than the input, and errors")
        << media + u"long.mp4"_s << 1
        << u"done, serious: The new video is shorter than the original says: 00:00:02.00 instead of "
           "00:00:30.00., 1 error while reading the input: the picture may be damaged."_s;
}

void TestResizeJob::remarks()
{
    QFETCH(QString, input);
    QFETCH(int, errors);
    const QString error = u"[h264 @ 0x5d0] concealing 9 DC, 9 AC, 9 MV errors in P frame\n"_s;
    tools->setSteps(creator, {{u"complain"_s, error.repeated(errors)}, {u"copy-to-output"_s, plain}});
    QTEST(told(ResizeJob(probed(input), {path(u"out.mp4"_s), 640, 360}).run()), "remarks");
}

void TestResizeJob::tellsOfADamagedInput()
{
    const QString input = path(u"damaged.mp4"_s);
    QByteArray bytes = contents(plain);
    const auto middle = bytes.size() / 2;
    for (qsizetype i = middle; i < middle + 3000; ++i) // of the coded pictures
        bytes[i] = static_cast<char>(i * 37);
    write(input, bytes);
    const QString end = told(ResizeJob(probed(input), {path(u"out.mp4"_s), 320, 180}).run());
    static const QRegularExpression remark(
        u"^done, [1-9]\\d* errors? while reading the input: the picture may be damaged\\.$"_s);
    QVERIFY2(remark.match(end).hasMatch(), qPrintable(end));
    QVERIFY(contents(input) == bytes);
}

void TestResizeJob::isCancelled_data()
{
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QByteArray>("left"); // of an older file at the target
    QTest::newRow("before the conversion") << u"before"_s << old;
    QTest::newRow("during the conversion") << u"during"_s << gone;
    QTest::newRow("when the new video is whole") << u"after"_s << gone;
    QTest::newRow("without a conversion") << u"never"_s << old;
    QTest::newRow("by the end of the program") << u"ending"_s << gone;
}

void TestResizeJob::isCancelled()
{
    QFETCH(QString, moment);
    QFETCH(QByteArray, left);
    const QString output = path(u"out.mp4"_s);
    write(output, old);
    const bool isLong = moment == u"during" || moment == u"ending";
    ResizeJob job(probed(isLong ? media + u"long.mp4"_s : plain), {output, 320, 180});
    if (moment == u"before") job.cancel();
    if (moment != u"never") {
        job.convert({.percent = [&](double) {
            if (moment == u"during") job.cancel();
            if (moment == u"ending") endAllRuns();
        }});
    }
    if (moment == u"after") QCOMPARE(FileProbe(output).videoWidth, 320);
    if (moment == u"after" || moment == u"never") job.cancel();
    QCOMPARE(told(job.end(FileProbe(output))), u"cancelled"_s);
    QCOMPARE(contents(output), left);
}

void TestResizeJob::isCancelledFromAnywhereAtAnyTime()
{
    tools->setSteps(creator, {{u"write-output"_s, u"half"_s}, {u"hang"_s}});
    const auto input = probed(plain);
    for (int round = 0; round < 10; ++round) {
        ResizeJob job(input, {path(u"out.mp4"_s), 320, 180}, {path(u"out.mp4"_s)});
        auto end = std::async(std::launch::async, [&job] { return job.run(); });
        {
            std::vector<std::jthread> threads;
            for (int i = 0; i < 4; ++i)
                threads.emplace_back([&job] { job.cancel(); });
        }
        QCOMPARE(told(end.get()), u"cancelled"_s);
        QCOMPARE(contents(path(u"out.mp4"_s)), gone);
    }
    QCOMPARE(tools->runningProcesses(creator), QList<qint64>());
}

void TestResizeJob::leavesAloneWhatSomebodyElsePutThere_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<QString>("end");
    QTest::newRow("the job is cancelled") << u"cancel"_s << u"cancelled"_s;
    QTest::newRow("the job fails") << u"fail"_s << u"failed: "_s;
    QTest::newRow("the job ends as if all were well")
        << u"go on"_s << u"failed: The new video was moved, removed or replaced while it was written."_s;
}

void TestResizeJob::leavesAloneWhatSomebodyElsePutThere()
{
    QFETCH(QString, way);
    QFETCH(QString, end);
    const QString output = path(u"out.mp4"_s);
    const QString replaced = path(u"replaced"_s);
    tools->setSteps(creator, {{u"hold-output"_s, u"half"_s},
                              {u"complain"_s, u"time=00:00:01.00 "_s},
                              {u"wait-for-file"_s, replaced},
                              {u"exit"_s, way == u"fail" ? u"1"_s : u"0"_s}});
    ResizeJob job(probed(plain), {output, 640, 360});
    const JobEnd came = job.run({.percent = [&](double) {
        QVERIFY(QFile::remove(output) && QFile::copy(plain, output));
        if (way == u"cancel") job.cancel();
        write(replaced, "now");
    }});
    QVERIFY(QFile::exists(replaced));
    QVERIFY2(told(came).startsWith(end), qPrintable(told(came)));
    QVERIFY(contents(output) == contents(plain));
}

void TestResizeJob::findsItsFileInARenamedFolder()
{
    QDir here(folder->path());
    QVERIFY(here.mkdir(u"saved"_s));
    ResizeJob job(probed(media + u"long.mp4"_s), {path(u"saved/out.mp4"_s), 640, 360});
    const JobEnd end = job.run({.percent = [&](double) {
        if (QFile::exists(path(u"saved/out.mp4"_s)) && here.rename(u"saved"_s, u"renamed"_s)) job.cancel();
    }});
    QCOMPARE(told(end), u"cancelled"_s);
    QCOMPARE(QDir(path(u"renamed"_s)).entryList(QDir::Files), QStringList());
}

void TestResizeJob::tellsOfWhatCannotBeRemoved_data()
{
    QTest::addColumn<bool>("cancelled");
    QTest::addColumn<QString>("end");
    QTest::newRow("cancelled") << true << u"cancelled: "_s;
    QTest::newRow("failed") << false << u"failed: ffmpeg ended with error 1 and said nothing. "_s;
}

void TestResizeJob::tellsOfWhatCannotBeRemoved()
{
    QFETCH(bool, cancelled);
    QFETCH(QString, end);
    const QString saved = path(u"saved"_s);
    allow(folder->path(), 0777);
    tools->setSteps(creator, {{u"write-output"_s, u"half"_s}, {u"exit"_s, u"1"_s}});
    QVERIFY(QDir().mkdir(saved));
    ResizeJob job(probed(plain), {saved + u"/out.mp4"_s, 320, 180});
    job.convert(); // not as the ordinary user, to whom the build may be closed
    allow(saved, 0555);
    if (cancelled) job.cancel();
    QString came;
    {
        const test::OrdinaryUser user;
        came = told(job.end(FileProbe()));
        QCOMPARE(contents(saved + u"/out.mp4"_s), "half");
    }
    allow(saved, 0755);
    QCOMPARE(came,
             end + u"What was written of the new video could not be removed: "_s + saved + u"/out.mp4"_s);
}

} // namespace

TESSALY_TEST_MAIN(TestResizeJob)
#include "resize_job_test.moc"
