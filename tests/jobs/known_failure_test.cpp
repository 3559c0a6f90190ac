// Why a conversion failed, read from what the converter wrote.
#include "captured_text.h"
#include "ended_job.h"
#include "jobs/converter_text.h"
#include "support/test_case.h"

#include <csignal>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

namespace {

const auto diskFull = u"The disk is full: there is no space left for the new video."_s;
const auto mayNotWrite = u"You do not have permission to write the new video there."_s;
const auto mayNotRead = u"You do not have permission to read the video."_s;
const auto readOnly = u"The new video cannot be written there: that disk is read-only."_s;
const auto noFolder = u"The folder for the new video does not exist."_s;
const auto isFolder = u"The name of the new video belongs to a folder."_s;
const auto inputGone = u"The video is no longer there."_s;
const auto noVideo = u"The video is damaged, or it is no video at all."_s;
const auto undecodable = u"The video is damaged or encrypted: ffmpeg could not decode it."_s;
const auto encrypted = u"The video is encrypted: it cannot be converted."_s;
const auto cutOff = u"The video is cut off: what is there cannot be converted."_s;
const auto fileLimit = u"The new video is larger than the disk, or a limit for files (ulimit -f), allows."_s;
const auto endedFromOutside = u"ffmpeg was ended by another program."_s;
const auto noDecoder = u"ffmpeg has no decoder for this video."_s;
const auto noSoundDecoder = u"ffmpeg has no decoder for the sound of this video."_s;
const auto noMemory = u"There is not enough memory for a video of this size."_s;

class TestKnownFailure : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhyInPlainWords_data();
    void saysWhyInPlainWords();
    void readsOtherWords_data();
    void readsOtherWords();
    void isNotMisledByNames_data();
    void isNotMisledByNames();
    void suggestsAnEvenSize_data();
    void saysThatAnOddSizeIsTooLarge();
    void suggestsAnEvenSize();
    void blamesAnOddSizeOnlyWhenTheEncoderGaveUp();
    void leavesNegativeSidesToTheConverter();
    void knowsATargetWithALineBreak();
    void readsTheHeadOfALongText();
    void saysWhatASignalMeans_data();
    void saysWhatASignalMeans();
};

// Texts of real converters that failed so.
void TestKnownFailure::saysWhyInPlainWords_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<ResizeTarget>("target");
    QTest::addColumn<QString>("sentence");
    const struct
    {
        const char *name;
        QString path;
        qint64 width;
        qint64 height;
        QString sentence;
    } rows[] = {
        {"disk_full", u"/videos/small/out.mp4"_s, 640, 360, diskFull},
        {"disk_full_at_once", u"/videos/filled/out.mp4"_s, 320, 180, diskFull},
        {"read_only", u"/videos/fixed/out.mp4"_s, 320, 180, readOnly},
        {"no_permission", u"/videos/closed/out.mp4"_s, 320, 180, mayNotWrite},
        {"unreadable", written, 320, 180, mayNotRead},
        {"folder_gone", u"/videos/gone/out.mp4"_s, 320, 180, noFolder},
        {"is_folder", u"/videos/folder.mp4"_s, 320, 180, isFolder},
        {"input_gone", written, 320, 180, inputGone},
        {"empty_input", written, 320, 180, noVideo},
        {"corrupt", written, 320, 180, noVideo},
        {"odd_width", written, 321, 180,
         u"A video of 321 x 180 cannot be made: choose an even size, such as 322 x 180."_s},
        {"odd_height", written, 320, 181,
         u"A video of 320 x 181 cannot be made: choose an even size, such as 320 x 182."_s},
        {"one_by_one", written, 1, 1,
         u"A video of 1 x 1 cannot be made: choose an even size, such as 2 x 2."_s},
        {"too_large", written, 20000, 20000,
         u"A video of 20000 x 20000 is too large to be made: choose a smaller size."_s},
        {"far_too_large", written, 1000000000, 2,
         u"A video of 1000000000 x 2 is too large to be made: choose a smaller size."_s},
        {"no_decoder", written, 320, 180, noDecoder},
        {"no_sound_decoder", written, 320, 180, noSoundDecoder},
        {"encrypted", written, 320, 180, encrypted},
        {"lacing", written, 320, 180, undecodable},
    };
    const auto allRows = [&rows](const char *generation) {
        for (const auto &[name, path, width, height, sentence] : rows) {
            const QByteArray file = QByteArray(generation) + '-' + name;
            QTest::newRow(file.constData())
                << test::capturedText(file.constData()) << ResizeTarget{path, width, height} << sentence;
        }
    };
    for (const char *generation : {"4.1", "5.1", "7.1", "7.1.5", "9.0"})
        allRows(generation);

    const auto row = [](const QByteArray &file, qint64 width, qint64 height, const QString &sentence) {
        QTest::newRow(file.constData())
            << test::capturedText(file.constData()) << ResizeTarget{written, width, height} << sentence;
    };
    for (const QByteArray generation : {"5.1-", "7.1.5-", "9.0-"}) {
        row(generation + "too_large_to_scale", 99998, 50000,
            u"A video of 99998 x 50000 is too large to be made: choose a smaller size."_s);
        row(generation + "file_limit", 320, 180, fileLimit);
        row(generation + "terminated", 320, 180, endedFromOutside);
        row(generation + "no_format", 320, 180, u"The name of the new video must end in .mp4."_s);
        row(generation + "input_is_folder", 320, 180, u"That is a folder, not a video."_s);
        row(generation + "no_memory", 8000, 8000, noMemory);
        row(generation + "negative_size", -3, 100,
            u"A video of 177 x 100 cannot be made: choose an even size, such as 178 x 100."_s);
        row(generation + "tiny", 320, 180, u"ffmpeg cannot decode this video."_s);
    }
    row("7.1.5-long_name", 320, 180, u"The name of the new video is too long."_s);
    row("9.0-long_name", 320, 180, u"The name of the new video is too long."_s);
    row("5.1-fragment", 320, 180, encrypted);
    row("9.0-fragment", 320, 180, encrypted);
    row("5.1-cut_early", 320, 180, cutOff);
    row("5.1-cut_at_once", 320, 180,
        u"The video could not be read: it is cut off, or its disk reports an error."_s);
    row("5.1-cut_header", 320, 180, noVideo);
    row("5.1-ends_early", 320, 180, noVideo);
    row("5.1-no_parameters", 320, 180, noVideo);
    row("5.1-bad_argument", 320, 180, noVideo);
    row("5.1-covers", 320, 180,
        u"ffmpeg said: Could not write header for output file #0 (incorrect codec parameters ?): Invalid argument"_s);
    for (const QByteArray generation : {"7.1.5-", "9.0-"})
        row(generation + "covers", 320, 180,
            u"ffmpeg said: Could not write header (incorrect codec parameters ?): Invalid argument"_s);
}

void TestKnownFailure::saysWhyInPlainWords()
{
    QFETCH(QByteArray, text);
    QFETCH(ResizeTarget, target);
    QVERIFY(!text.isEmpty());
    EndedJob end = endedWith(1, text);
    end.target = target;
    const auto failure = failureOfJob(end, FileProbe());
    QVERIFY(failure);
    QTEST(failure->sentence, "sentence");
    QVERIFY(!failure->details.isEmpty());
}

// Lines that are hard to provoke.
void TestKnownFailure::readsOtherWords_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const char *text, const QString &sentence) {
        QTest::newRow(name) << QByteArray(text) << sentence;
    };
    row("quota", "av_interleaved_write_frame(): Disk quota exceeded\n",
        u"Your share of the disk is used up: there is no space left for the new video."_s);
    row("file size limit", "av_interleaved_write_frame(): File too large\n", fileLimit);
    row("a dying disk", "av_interleaved_write_frame(): Input/output error\n",
        u"The new video could not be written: its disk reports an error."_s);
    row("a dying disk, in the words of 7",
        "[out#0/mp4 @ 0x55d0c3c0] Error writing trailer: Input/output error\n",
        u"The new video could not be written: its disk reports an error."_s);
    row("a disk that went", "av_interleaved_write_frame(): Transport endpoint is not connected\n",
        u"The disk of the new video can no longer be reached."_s);
    row("the input's disk went", "/videos/a.mp4: Stale file handle\n",
        u"The disk of the video can no longer be reached."_s);
    row("a program of that name", "/videos/saved/out.mp4: Text file busy\n",
        u"The name of the new video belongs to a program that is running."_s);
    row("no container of that name, in the words of 7",
        "[AVFormatContext @ 0x55d0c3c0] Unable to choose an output format for '/videos/saved'; use a "
        "standard "
        "extension\n[out#0 @ 0x55d0c3c0] Error initializing the muxer for /videos/saved: Invalid argument\n",
        u"The name of the new video must end in .mp4."_s);
    row("no stream to convert, in the words of 7",
        "[out#0/mp4 @ 0x55d0c3c0] Output file does not contain any stream\n", noVideo);
    row("partial file",
        "Stream mapping:\n[mov,mp4,m4a,3gp,3g2,mj2 @ 0x55d0c3c0] stream 0, offset 0x30: partial file\n"
        "Error while decoding stream #0:0: Invalid data found when processing input\n",
        cutOff);
    row("encryption data, by name",
        "    Side data:\n      Encryption initialization data: (68 bytes)\nStream mapping:\n"
        "Error while decoding stream #0:0: Invalid data found when processing input\n",
        encrypted);
    row("encryption data are no failure",
        "      unknown side data type 24 (68 bytes)\nStream mapping:\nThe moon is in the way\n",
        u"ffmpeg said: The moon is in the way"_s);
    row("ended by a hang-up", "Exiting normally, received signal 1.\n", endedFromOutside);
    row("ended without mercy", "Received > 3 system signals, hard exiting\n", endedFromOutside);
    row("immutable folder", "/videos/saved/out.mp4: Operation not permitted\n", mayNotWrite);
    row("folder became a file", "/videos/saved/out.mp4: Not a directory\n", noFolder);
    row("input's folder became a file", "/videos/a/in.mp4: Not a directory\n", inputGone);
    row("long name", "/videos/saved/out.mp4: File name too long\n",
        u"The name of the new video is too long."_s);
    row("memory", "Error while filtering: Cannot allocate memory\n", noMemory);
    row("decoder refuses the video",
        "  Stream #0:0: Audio: vorbis\n  Stream #0:1: Video: theora\nError while opening decoder for input "
        "stream #0:1 : Operation not permitted\n",
        u"ffmpeg cannot decode this video."_s);
    row("decoder refuses the sound",
        "  Stream #0:0(und): Audio: aac\n  Stream #0:1: Video: theora\nError while opening decoder for input "
        "stream #0:0 : Function not implemented\n",
        u"ffmpeg cannot decode the sound of this video."_s);
    row("decoder refuses the sound, in the words of 7",
        "[aist#0:0/aac @ 0x55d0c3c0] [dec:aac @ 0x55d0c3c1] Error while opening decoder: Function not "
        "implemented\n",
        u"ffmpeg cannot decode the sound of this video."_s);
    row("no encoder", "Unknown encoder 'libx264'\n", u"ffmpeg has no encoder for MP4 videos."_s);
    row("encoder left out",
        "Automatic encoder selection failed for output stream #0:0. Default encoder for format mp4 (codec "
        "h264) is probably disabled. Please choose an encoder manually.\n",
        u"ffmpeg has no encoder for MP4 videos."_s);
    row("protected",
        "[asf @ 0x55d0c3c0] DRM protected stream detected, decoding will likely fail!\nConversion failed!\n",
        u"The video is encrypted: it cannot be converted."_s);
    row("encrypted samples",
        "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x55d0c3c0] Incorrect number of samples in encryption info\nConversion "
        "failed!\n",
        u"The video is encrypted: it cannot be converted."_s);
    row("encoder refuses an odd size without saying so",
        "Error while opening encoder for output stream #0:0 - maybe incorrect parameters such as bit_rate, "
        "rate, width or height\n",
        u"ffmpeg said: Error while opening encoder for output stream #0:0 - maybe incorrect parameters such as bit_rate, rate, width or height"_s);
    row("a broken picture size while decoding",
        "[h264 @ 0x55d0c3c0] [IMGUTILS @ 0x7ffc0] Picture size 73728x0 is invalid\n",
        u"ffmpeg said: Picture size 73728x0 is invalid"_s);
    row("larger than the encoder can do",
        "[libx264 @ 0x55d0c3c0] invalid width x height (16386x2)\nError initializing output stream 0:0 -- "
        "Error while opening encoder for output stream #0:0\n",
        u"A video of 320 x 180 is too large to be made: choose a smaller size."_s);
    row("disk full wins over damage",
        "Error while decoding stream #0:0: Invalid data found when processing "
        "input\nav_interleaved_write_frame(): No space left on device\nConversion failed!\n",
        diskFull);
    row("in colour", "\x1B[1;31m/videos/saved/out.mp4: Permission denied\x1B[0m\n", mayNotWrite);
    row("something new",
        "frame=    1 fps=0.0 q=0.0 size=       0kB time=00:00:00.04\r[mp4 @ 0x55d0c3c0] The moon is in the "
        "way\n[libx264 @ 0x55d0c3c0] frame I:1     Avg QP:19.80\n[aac @ 0x55d0c3c0] Qavg: 1\nConversion "
        "failed!\n",
        u"ffmpeg said: The moon is in the way"_s);
    row("nothing", "", u"ffmpeg ended with error 1 and said nothing."_s);
    row("nothing but what it read",
        "ffmpeg version 5.1.9\n  built with gcc\nInput #0, mov, from '/videos/a.mov':\n  Duration: "
        "00:00:02.00\n"
        "Stream mapping:\n  Stream #0:0 -> #0:0\nPress [q] to stop, [?] for help\n",
        u"ffmpeg ended with error 1 and said nothing."_s);
    row("nothing but progress", "frame=    1 fps=0.0 q=0.0 size=       0kB time=00:00:00.04\r\n",
        u"ffmpeg ended with error 1 and said nothing."_s);
}

void TestKnownFailure::readsOtherWords()
{
    QFETCH(QByteArray, text);
    QTEST(failureOfJob(endedWith(1, text), FileProbe()).value().sentence, "sentence");
}

// Names and titles that sound like errors.
void TestKnownFailure::isNotMisledByNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("disk full") << u"No space left on device"_s;
    QTest::newRow("permission") << u"Permission denied"_s;
    QTest::newRow("a colon in it") << u"a: Permission denied"_s;
    QTest::newRow("odd size") << u"width not divisible by 2 (3x3)"_s;
    QTest::newRow("encrypted") << u"[a @ 0x1] encrypted"_s;
    QTest::newRow("damaged") << u"Invalid data found when processing input"_s;
    QTest::newRow("decoder") << u"Decoder (codec none) not found for input stream #0:0"_s;
    QTest::newRow("memory") << u"Cannot allocate memory"_s;
}

void TestKnownFailure::isNotMisledByNames()
{
    QFETCH(QString, name);
    const QString text = u"Input #0, mov,mp4,m4a,3gp,3g2,mj2, from '/videos/%1':\n"
                         "  Metadata:\n    title           : %1\n                    : %1\n"
                         "Stream mapping:\n"
                         "Output #0, mp4, to '/videos/saved/%1':\n"
                         "[out#0/mp4 @ 0x55d0c3c0] Error opening output /videos/saved/%1: Something else\n"
                         "Error opening output file /videos/saved/%1.\n"_s.arg(name);
    EndedJob end = endedWith(1, text.toUtf8());
    end.target.path = u"/videos/saved/"_s + name;
    QCOMPARE(failureOfJob(end, FileProbe()).value().sentence,
             u"ffmpeg said: Error opening output /videos/saved/%1: Something else"_s.arg(name));
}

void TestKnownFailure::suggestsAnEvenSize_data()
{
    QTest::addColumn<qint64>("width");
    QTest::addColumn<qint64>("height");
    QTest::addColumn<QString>("suggestion");
    QTest::newRow("width") << qint64(853) << qint64(480) << u"854 x 480"_s;
    QTest::newRow("height") << qint64(854) << qint64(481) << u"854 x 482"_s;
    QTest::newRow("both") << qint64(3) << qint64(5) << u"4 x 6"_s;
    QTest::newRow("one") << qint64(1) << qint64(480) << u"2 x 480"_s;
}

// Both wrong: an even size alone would not help.
void TestKnownFailure::saysThatAnOddSizeIsTooLarge()
{
    EndedJob end =
        endedWith(1, "[libx264 @ 0x55d0c3c0] [IMGUTILS @ 0x7ffc0] Picture size 20001x20001 is invalid\n"
                     "Error initializing output stream 0:0 -- Error while opening encoder for output\n");
    end.target.width = end.target.height = 20001;
    QCOMPARE(failureOfJob(end, FileProbe()).value().sentence,
             u"A video of 20001 x 20001 is too large to be made: choose a smaller size."_s);
}

// An encoder that does not say what it dislikes, in the words of two generations.
void TestKnownFailure::suggestsAnEvenSize()
{
    QFETCH(qint64, width);
    QFETCH(qint64, height);
    QFETCH(QString, suggestion);
    for (const char *text :
         {"Error initializing output stream 0:0 -- Error while opening encoder for output stream #0:0 - "
          "maybe incorrect parameters\n",
          "[vost#0:0/h264 @ 0x55d0c3c0] Error while opening encoder - maybe incorrect parameters\n"}) {
        EndedJob end = endedWith(1, text);
        end.target.width = width;
        end.target.height = height;
        const QString sentence = failureOfJob(end, FileProbe()).value().sentence;
        QVERIFY2(sentence.endsWith(u"choose an even size, such as "_s + suggestion + u'.'),
                 qPrintable(sentence));
    }
}

void TestKnownFailure::blamesAnOddSizeOnlyWhenTheEncoderGaveUp()
{
    EndedJob end = endedWith(1, "The moon is in the way\n");
    end.target.width = 321;
    QCOMPARE(failureOfJob(end, FileProbe()).value().sentence, u"ffmpeg said: The moon is in the way"_s);
}

// To the converter they mean other things than a size.
void TestKnownFailure::leavesNegativeSidesToTheConverter()
{
    EndedJob end = endedWith(1, "Error while opening encoder for output stream #0:0\n");
    end.target.width = -3;
    QCOMPARE(failureOfJob(end, FileProbe()).value().sentence,
             u"ffmpeg said: Error while opening encoder for output stream #0:0"_s);
}

void TestKnownFailure::knowsATargetWithALineBreak()
{
    EndedJob end = endedWith(1, "/videos/new\rline\nbreak.mp4: Permission denied\n");
    end.target.path = u"/videos/new\rline\nbreak.mp4"_s;
    QCOMPARE(failureOfJob(end, FileProbe()).value().sentence, mayNotWrite);
}

// What encrypts the video stands before 200 KB of lines about its pictures.
void TestKnownFailure::readsTheHeadOfALongText()
{
    const QByteArray start = test::capturedText("5.1-encrypted");
    const QByteArray pictures = QByteArray("[h264 @ 0x55d0c3c0] decode_slice_header error\n"
                                           "Error while decoding stream #0:0: Invalid data found when "
                                           "processing input\n")
                                    .repeated(2000);
    ConverterText text;
    text.add(start + pictures);
    QCOMPARE(failureOfJob(endedWith(69, pictures), FileProbe()).value().sentence, noVideo);
    QCOMPARE(failureOfJob(endedWith(69, text.text()), FileProbe()).value().sentence, encrypted);
}

void TestKnownFailure::saysWhatASignalMeans_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("killed") << SIGKILL << u"ffmpeg was killed by the system or by another program."_s;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT})
        QTest::addRow("ended %d", signal) << signal << endedFromOutside;
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGBUS, SIGILL, SIGTRAP, SIGSYS})
        QTest::addRow("crashed %d", signal) << signal << u"ffmpeg crashed (signal %1)."_s.arg(signal);
    QTest::newRow("file size") << SIGXFSZ
                               << u"The new video is larger than the limit for files (ulimit -f) allows."_s;
    QTest::newRow("processor time")
        << SIGXCPU << u"ffmpeg needed more time of the processor than the limit (ulimit -t) allows."_s;
    QTest::newRow("pipe") << SIGPIPE << u"ffmpeg ended because nobody reads any more what it writes."_s;
    QTest::newRow("another") << SIGUSR1 << u"ffmpeg was ended by signal %1."_s.arg(SIGUSR1);
}

void TestKnownFailure::saysWhatASignalMeans()
{
    QFETCH(int, signal);
    QTEST(signalSentence(signal), "sentence");
}

} // namespace

TESSALY_TEST_MAIN(TestKnownFailure)
#include "known_failure_test.moc"
