// Whether a job failed, what is said of it, and what is to be remarked where it did not.
#include "captured_text.h"
#include "jobs/frame_size.h"
#include "jobs/job_end.h"
#include "support/test_case.h"

#include <cmath>
#include <csignal>

using namespace tessaly;
using namespace Qt::StringLiterals;
using End = ProcessOutcome::End;
using Target = OutputGuard::Target;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

// Seconds; 0: not there, or not said.
struct Lengths
{
    double picture = 0;
    double sound = 0;
    double container = 0;
};

QByteArray streamReport(const char *start, double length)
{
    return length > 0
               ? start + QByteArray(R"("start_time":"0","duration":")") + QByteArray::number(length) + "\"}"
               : start + QByteArray(R"("index":0})");
}

FileProbe video(const Lengths &lengths, FrameSize size = {320, 180}, int pictures = 50)
{
    const QByteArray picture =
        R"({"codec_type":"video","codec_name":"h264","avg_frame_rate":"25/1","r_frame_rate":"25/1","nb_frames":")" +
        QByteArray::number(pictures) + R"(","width":)" + QByteArray::number(size.width) + R"(,"height":)" +
        QByteArray::number(size.height) + ',';
    QByteArray streams = streamReport(picture.constData(), lengths.picture);
    if (lengths.sound > 0)
        streams += ',' + streamReport(R"({"codec_type":"audio","codec_name":"aac",)", lengths.sound);
    const bool canBeWritten = std::isfinite(lengths.container);
    FileProbe probe = FileProbe::fromReport(u"/videos/saved/out.mp4"_s,
                                            R"({"format":{"format_name":"matroska,webm","duration":")" +
                                                QByteArray::number(canBeWritten ? lengths.container : 0) +
                                                R"("},"streams":[)" + streams + "]}");
    probe.duration = lengths.container;
    probe.fileSize = 100000;
    return probe;
}

FileProbe withoutVideo(quint64 bytes)
{
    FileProbe probe;
    probe.fileSize = bytes;
    return probe;
}

FileProbe unchecked(std::optional<quint64> bytes)
{
    FileProbe probe;
    probe.proberFailure = u"The program \"/sniffer\" is missing."_s;
    probe.fileSize = bytes;
    return probe;
}

class TestJobEnd : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void judgesTheConverter_data();
    void judgesTheConverter();
    void judgesTheFile_data();
    void judgesTheFile();
    void judgesTheSize_data();
    void judgesTheSize();
    void detailsAreTheLastLines();
    void remarksOnDamage_data();
    void remarksOnDamage();
    void remarksOnALostSound();
    void remarksOnTheLength_data();
    void remarksOnTheLength();
};

void TestJobEnd::judgesTheConverter_data()
{
    QTest::addColumn<ProcessOutcome>("outcome");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("beginning"); // of the sentence; empty: no failure
    const auto row = [](const char *name, const ProcessOutcome &outcome, const char *text,
                        const QString &beginning) {
        QTest::newRow(name) << outcome << QByteArray(text) << beginning;
    };
    const ProcessOutcome failed{End::exited, 69, {}};
    row("good", {End::exited, 0, {}}, "x", {});
    row("silent", failed, "", u"ffmpeg ended with error 69 and said nothing."_s);
    row("something new", failed, "[mp4 @ 0x5d0] Not quite\nConversion failed!\n",
        u"ffmpeg said: Not quite"_s);
    row("something known", failed, "/videos/saved/out.mp4: Permission denied\n",
        u"You do not have permission to write the new video there."_s);
    row("a signal", {End::signalled, SIGSEGV, {}}, "x", u"ffmpeg "_s);
    row("not started", {End::failedToStart, 0, u"ffmpeg is missing."_s}, "", u"ffmpeg is missing."_s);
}

// Although the file that it left is a good one.
void TestJobEnd::judgesTheConverter()
{
    QFETCH(ProcessOutcome, outcome);
    QFETCH(QByteArray, text);
    QFETCH(QString, beginning);
    const ConverterEnd end{.outcome = outcome, .text = text, .target = Target::written};
    const auto failure = failureOf(end, {u"/videos/saved/out.mp4"_s, 320, 180}, video({}));
    QCOMPARE(failure.has_value(), !beginning.isEmpty());
    if (failure) QVERIFY2(failure->sentence.startsWith(beginning), qPrintable(failure->sentence));
}

void TestJobEnd::judgesTheFile_data()
{
    QTest::addColumn<Target>("target");
    QTest::addColumn<bool>("diskIsFull");
    QTest::addColumn<FileProbe>("output");
    QTest::addColumn<QString>("sentence"); // empty: no failure
    const auto row = [](const char *name, Target target, bool diskIsFull, const FileProbe &output,
                        const QString &sentence) {
        QTest::newRow(name) << target << diskIsFull << output << sentence;
    };
    const auto notWritten = u"ffmpeg ended without writing the new video."_s;
    const auto noVideo = u"The new file holds no video."_s;
    const auto full = u"The disk is full: there is no space left for the new video."_s;
    row("good", Target::written, false, video({}), {});
    row("good, on a disk that is full now", Target::written, true, video({}), {});
    row("no file", Target::untouched, false, unchecked({}), notWritten);
    row("an older video that was not touched", Target::untouched, false, video({}), notWritten);
    row("another video in its place", Target::replaced, false, video({}),
        u"The new video was moved, removed or replaced while it was written."_s);
    row("no media file", Target::written, false, withoutVideo(100), noVideo);
    row("half a file", Target::written, true, withoutVideo(100), full);
    row("an empty file", Target::written, false, withoutVideo(0), noVideo);
    row("not checked", Target::written, false, unchecked(100), {});
    row("not checked, but empty", Target::written, false, unchecked(0), noVideo);
    row("not checked, but empty, on a full disk", Target::written, true, unchecked(0), full);
}

void TestJobEnd::judgesTheFile()
{
    QFETCH(Target, target);
    QFETCH(bool, diskIsFull);
    QFETCH(FileProbe, output);
    const ConverterEnd end{
        .outcome = {End::exited, 0, {}}, .text = "last words\n", .target = target, .diskIsFull = diskIsFull};
    const auto failure = failureOf(end, {u"/videos/saved/out.mp4"_s, 320, 180}, output);
    QTEST(failure ? failure->sentence : QString(), "sentence");
    if (failure) QCOMPARE(failure->details, u"last words"_s);
}

void TestJobEnd::judgesTheSize_data()
{
    QTest::addColumn<FrameSize>("made");
    QTest::addColumn<FrameSize>("wanted");
    QTest::addColumn<QString>("sentence");
    const auto row = [](FrameSize wanted, FrameSize made, const QString &sentence) {
        QTest::addRow("%lld x %lld", wanted.width, wanted.height) << made << wanted << sentence;
    };
    const FrameSize input{640, 360};
    row({640, 360}, input, {});
    row({0, 0}, input, u"The new video came out as 640 x 360, not 0 x 0: choose a size of at least 2 x 2."_s);
    row({320, -2}, {320, 180},
        u"The new video came out as 320 x 180, not 320 x -2: choose a size of at least 2 x 2."_s);
    row({qint64(1) << 32, 360}, input,
        u"The new video came out as 640 x 360, not 4294967296 x 360: choose a smaller size."_s);
    row({320, 180}, input, u"The new video came out as 640 x 360, not 320 x 180."_s);
    row({320, 360}, input, u"The new video came out as 640 x 360, not 320 x 360."_s);
}

void TestJobEnd::judgesTheSize()
{
    QFETCH(FrameSize, made);
    QFETCH(FrameSize, wanted);
    const ConverterEnd end{.outcome = {End::exited, 0, {}}, .target = Target::written};
    const auto failure = failureOf(end, {u"/out.mp4"_s, wanted.width, wanted.height}, video({}, made));
    QTEST(failure ? failure->sentence : QString(), "sentence");
}

// Errors are seen although the encoder talks on for twenty lines.
void TestJobEnd::detailsAreTheLastLines()
{
    const ConverterEnd end{.outcome = {End::exited, 1, {}}, .text = test::capturedText("5.1-disk_full")};
    const auto failure = failureOf(end, {u"/out.mp4"_s, 320, 180}, FileProbe());
    const QStringList lines = failure.value().details.split(u'\n');
    QVERIFY2(lines.size() <= 30, qPrintable(failure->details));
    QCOMPARE(lines.last(), u"Conversion failed!"_s);
    QVERIFY(lines.contains(u"Error closing file /videos/small/out.mp4: No space left on device"_s));
    QVERIFY2(lines.filter(u"frame="_s).isEmpty(), qPrintable(failure->details));
    QVERIFY2(lines.filter(u"mb P"_s).isEmpty(), qPrintable(failure->details));
}

QString told(const std::vector<Remark> &remarks)
{
    QStringList texts;
    for (const Remark &remark : remarks)
        texts += (remark.isSerious ? u"serious: "_s : QString()) + remark.sentence;
    return texts.join(u'\n');
}

void TestJobEnd::remarksOnDamage_data()
{
    QTest::addColumn<qint64>("errors");
    QTest::addColumn<int>("pictures"); // of the new video; 0: not known
    QTest::addColumn<QString>("remark");
    const auto row = [](qint64 errors, int pictures, const QString &remark) {
        QTest::addRow("%lld of %d", errors, pictures) << errors << pictures << remark;
    };
    row(0, 50, {});
    row(1, 50, u"1 error while reading the input: the picture may be damaged."_s);
    row(24, 50, u"24 errors while reading the input: the picture may be damaged."_s);
    row(25, 50, u"serious: 25 errors while reading the input: it is damaged or encrypted."_s);
    row(1, 1, u"serious: 1 error while reading the input: it is damaged or encrypted."_s);
    row(9000, 0, u"9000 errors while reading the input: the picture may be damaged."_s);
}

void TestJobEnd::remarksOnALostSound()
{
    const auto lost = u"serious: The new video has no sound, although the original has."_s;
    QCOMPARE(told(remarksOn({}, video({2, 2, 2}), video({2, 0, 2}))), lost);
    QCOMPARE(told(remarksOn({}, video({2, 0, 2}), video({2, 0, 2}))), QString());
}

void TestJobEnd::remarksOnDamage()
{
    QFETCH(qint64, errors);
    QFETCH(int, pictures);
    const FileProbe output = video({2, 2, 2}, {320, 180}, pictures);
    QTEST(told(remarksOn({.readingErrors = errors}, video({2, 2, 2}), output)), "remark");
}

void TestJobEnd::remarksOnTheLength_data()
{
    QTest::addColumn<Lengths>("input");
    QTest::addColumn<Lengths>("output");
    QTest::addColumn<QString>("remark"); // behind its beginning; empty: none
    const auto row = [](const char *name, const Lengths &input, const Lengths &output,
                        const QString &remark) { QTest::newRow(name) << input << output << remark; };
    row("as long", {30, 30, 30}, {30, 30, 30}, {});
    row("longer", {30, 30, 30}, {40, 40, 40}, {});
    row("two percent less", {100, 100, 100}, {98, 98, 98}, {});
    row("more than that", {100, 100, 100}, {97.9, 100, 100}, u"00:01:37.90 instead of 00:01:40.00."_s);
    row("not quite a quarter less", {100, 100, 100}, {75.1, 75.1, 75.1},
        u"00:01:15.10 instead of 00:01:40.00."_s);
    row("a quarter less", {100, 100, 100}, {75, 75, 75}, u"serious: 00:01:15.00 instead of 00:01:40.00."_s);
    row("cut short", {7200, 7200, 7200}, {21.8, 21.8, 21.8},
        u"serious: 00:00:21.80 instead of 02:00:00.00."_s);
    row("half of a short one", {2, 2, 2}, {1, 1, 1}, {});
    row("more than a second of a short one", {2.5, 0, 2.5}, {1.4, 0, 1.4},
        u"serious: 00:00:01.40 instead of 00:00:02.50."_s);
    row("the picture alone", {100, 100, 100}, {10, 100, 100},
        u"serious: 00:00:10.00 instead of 00:01:40.00."_s);
    row("the sound alone", {100, 100, 100}, {100, 90, 100}, u"00:01:30.00 instead of 00:01:40.00."_s);
    row("the worse one of both", {100, 50, 100}, {90, 10, 90},
        u"serious: 00:00:10.00 instead of 00:00:50.00."_s);
    row("the container counts more than it holds", {10, 10, 7200}, {10, 10, 10}, {});
    row("tracks that say nothing", {0, 0, 30}, {0, 0, 4.96},
        u"serious: 00:00:04.96 instead of 00:00:30.00."_s);
    row("input unknown", {0, 0, 0}, {0, 0, 10}, {});
    row("output unknown", {0, 0, 10}, {0, 0, 0}, {});
    row("input infinite", {0, 0, infinity}, {0, 0, 10}, {});
    row("input not a number", {0, 0, std::nan("")}, {0, 0, 10}, {});
    row("output not a number", {0, 0, 10}, {0, 0, std::nan("")}, {});
}

void TestJobEnd::remarksOnTheLength()
{
    QFETCH(Lengths, input);
    QFETCH(Lengths, output);
    QFETCH(QString, remark);
    const auto beginning = u"The new video is shorter than the original says: "_s;
    const bool isSerious = remark.startsWith(u"serious: "_s);
    QCOMPARE(told(remarksOn({}, video(input), video(output))), remark.isEmpty() ? QString()
                                                               : isSerious      ? remark.insert(9, beginning)
                                                                                : beginning + remark);
}

} // namespace

TESSALY_TEST_MAIN(TestJobEnd)
#include "job_end_test.moc"
