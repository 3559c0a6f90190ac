// How many errors in the input's data a converter's lines tell of.
#include "captured_text.h"
#include "jobs/reading_errors.h"
#include "support/test_case.h"

using namespace tessaly;

namespace {

qint64 errorsIn(const QByteArray &text)
{
    ReadingErrors errors;
    for (const QByteArray &line : text.split('\n'))
        errors.addLine(line);
    return errors.count();
}

class TestReadingErrors : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void counts_data();
    void counts();
    void countsNothingInGoodFiles_data();
    void countsNothingInGoodFiles();
    void countsInCapturedRuns_data();
    void countsInCapturedRuns();
};

void TestReadingErrors::counts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("errors");
    const auto row = [](const char *name, const char *text, qint64 errors) {
        QTest::newRow(name) << QByteArray(text) << errors;
    };
    row("packets, in the words of 5", "Error while decoding stream #0:1: Invalid data found\n", 1);
    row("packets, in the words of 7",
        "[vist#0:0/h264 @ 0x5d0] [dec:h264 @ 0x5d1] Error submitting packet to decoder: Invalid data\n", 1);
    row("packets that fail late", "[vist#0:0/av1 @ 0x5d0] [dec:libdav1d @ 0x5d1] Decoding error: Bad\n", 1);
    row("one picture's lines",
        "[h264 @ 0x5d0] top block unavailable for requested intra mode\n"
        "[h264 @ 0x5d0] error while decoding MB 1 0, bytestream 2316\n"
        "[h264 @ 0x5d0] concealing 920 DC, 920 AC, 920 MV errors in I frame\n"
        "/videos/a.mp4: corrupt decoded frame in stream 0\n",
        1);
    row("one picture's lines, in the words of 7",
        "[h264 @ 0x5d0] concealing 920 DC, 920 AC, 920 MV errors in I frame\n"
        "[vist#0:0/h264 @ 0x5d0] [dec:h264 @ 0x5d1] corrupt decoded frame\n",
        1);
    row("one lost picture's lines",
        "[h264 @ 0x5d0] A non-intra slice in an IDR NAL unit.\n[h264 @ 0x5d0] decode_slice_header error\n"
        "[h264 @ 0x5d0] no frame!\nError while decoding stream #0:0: Invalid data\n",
        1);
    row("a picture that is only marked", "/videos/a.mp4: corrupt decoded frame in stream 0\n", 1);
    row("a packet that is only marked", "/videos/a.ts: corrupt input packet in stream 0\n", 1);
    row("a marked packet is what cannot be decoded",
        "[in#0/mpegts @ 0x5d0] corrupt input packet in stream 0\n"
        "[h264 @ 0x5d0] concealing 920 DC, 920 AC, 920 MV errors in I frame\n",
        1);
    row("sound and picture",
        "Error while decoding stream #0:1: Invalid data\n"
        "[h264 @ 0x5d0] concealing 9 DC, 9 AC, 9 MV errors in P frame\n",
        2);
    row("repeated",
        "Error while decoding stream #0:0: Invalid data\n    Last message repeated 11 times\n"
        "[h264 @ 0x5d0] no frame!\n    Last message repeated 100 times\n",
        12);
    row("repeated progress", "frame=    0 fps=0.0\n    Last message repeated 2 times\n", 0);
    row("repeated twice in a row",
        "Error while decoding stream #0:0: Bad\n    Last message repeated 1 times\n    Last message repeated "
        "2 "
        "times\n",
        4);
    row("repeated less than nothing",
        "Error while decoding stream #0:0: Bad\n    Last message repeated -5 times\n", 1);
    row("a damaged place in each container",
        "[ogg @ 0x5d0] CRC mismatch!\n"
        "[matroska,webm @ 0x5d0] Element at 0x90 ending at 0x99 exceeds containing master element ending at "
        "0x95\n"
        "[matroska,webm @ 0x5d0] 0x00 at pos 49 (0x31) invalid as first byte of an EBML number\n"
        "[asf @ 0x5d0] packet_obj_size 3421 invalid\n[asf @ 0x5d0] packet_frag_size is invalid (9>5-3+1)\n",
        5);
    row("decoders that go on alone",
        "[mjpeg @ 0x5d0] error y=3 x=4\n[gif @ 0x5d0] LZW decode failed\n"
        "[ac3 @ 0x5d0] error decoding the audio block\n",
        3);
    row("cut off, told again and again",
        "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x5d0] stream 1, offset 0x30: partial file\n"
        "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x5d0] stream 0, offset 0x40: partial file\n",
        1);
    row("cut off, another container", "[matroska,webm @ 0x5d0] File ended prematurely\n", 1);
    row("cut off, with the place", "[matroska,webm @ 0x5d0] File ended prematurely at pos. 9 (0x9)\n", 1);
    row("titles", "    title           : Error while decoding stream #0:0: a film\n", 0);
    row("names", "Input #0, mov, from '/videos/concealing 9 DC, 9 AC, 9 MV errors in P frame':\n", 0);
    row("a name that only begins like one", "/videos/corrupt decoded frame: Permission denied\n", 0);
    row("an end of no packet", "[dec:h264 @ 0x5d0] Error submitting EOF to decoder: Invalid data\n", 0);
    row("an open bracket", "[h264 @ 0x5d0 Error while decoding stream #0:0: Bad\n", 0);
    row("nothing", "", 0);
}

void TestReadingErrors::counts()
{
    QFETCH(QByteArray, text);
    QTEST(errorsIn(text), "errors");
}

// What converters say of files that are well.
void TestReadingErrors::countsNothingInGoodFiles_data()
{
    QTest::addColumn<QByteArray>("line");
    for (
        const char *line : {
            "[swscaler @ 0x5d0] [swscaler @ 0x5d1] deprecated pixel format used, make sure you did set range",
            "[mp4 @ 0x5d0] Timestamps are unset in a packet for stream 0. This is deprecated",
            "[mp4 @ 0x5d0] Application provided duration: -9 / timestamp: 1 is out of range for mov/mp4 "
            "format",
            "[mp4 @ 0x5d0] Application provided invalid, non monotonically increasing dts to muxer: 3 >= 3",
            "[mpegts @ 0x5d0] start time for stream 2 is not set in estimate_timings_from_pts",
            "[mpegts @ 0x5d0] Could not find codec parameters for stream 1 (Video: mpeg2video): unspecified "
            "size",
            "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x5d0] Invalid timestamps stream=3, pts=2, dts=1, size=9",
            "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x5d0] stream 0, timescale not set",
            "[mov,mp4,m4a,3gp,3g2,mj2 @ 0x5d0] st: 0 edit list 1 Cannot find an index entry before timestamp",
            "[ogg @ 0x5d0] Broken file, keyframe not correctly marked.",
            "[mxf @ 0x5d0] broken or empty index",
            "[msmpeg4 @ 0x5d0] warning: first frame is no keyframe",
            "[wmav2 @ 0x5d0] Multiple frames in a packet.",
            "[mjpeg @ 0x5d0] EOI missing, emulating",
            "[libdav1d @ 0x5d0] libdav1d 1.0.0",
            "[aac @ 0x5d0] Too many bits 8832.0 > 6144 per frame requested, clamping to max",
            "[libx264 @ 0x5d0] frame I:1     Avg QP:19.80  size:  1234",
            "Guessed Channel Layout for Input Stream #0.1 : mono",
            "More than 1000 frames duplicated",
        })
        QTest::newRow(QByteArray(line).left(60).constData()) << QByteArray(line);
}

void TestReadingErrors::countsNothingInGoodFiles()
{
    QFETCH(QByteArray, line);
    QCOMPARE(errorsIn(line), 0);
}

void TestReadingErrors::countsInCapturedRuns_data()
{
    QTest::addColumn<qint64>("errors");
    QTest::newRow("4.1-good") << qint64(0);
    QTest::newRow("5.1-good") << qint64(0);
    QTest::newRow("7.1-good") << qint64(0);
    QTest::newRow("5.1-disk_full") << qint64(0);
    QTest::newRow("5.1-odd_width") << qint64(0);
    QTest::newRow("5.1-damaged") << qint64(12);    // 13 places, in 200 pictures and their sound
    QTest::newRow("5.1-damaged_ts") << qint64(16); // the same
    QTest::newRow("5.1-cut") << qint64(2);
    QTest::newRow("5.1-clear_then_encrypted") << qint64(74); // of 122 pictures
    QTest::newRow("4.1-encrypted") << qint64(31);
    QTest::newRow("5.1-encrypted") << qint64(31);
    QTest::newRow("7.1-encrypted") << qint64(31);
    QTest::newRow("7.1.5-encrypted") << qint64(31);
    QTest::newRow("9.0-encrypted") << qint64(31);
    QTest::newRow("7.1.5-damaged") << qint64(22);
    QTest::newRow("9.0-damaged") << qint64(22);
    QTest::newRow("7.1.5-cut") << qint64(2);
    QTest::newRow("9.0-cut") << qint64(2);
    QTest::newRow("7.1.5-good") << qint64(0);
    QTest::newRow("9.0-good") << qint64(0);
}

void TestReadingErrors::countsInCapturedRuns()
{
    QByteArray text = test::capturedText(QTest::currentDataTag());
    QVERIFY(!text.isEmpty());
    QTEST(errorsIn(text.replace('\r', '\n')), "errors");
}

} // namespace

TESSALY_TEST_MAIN(TestReadingErrors)
#include "reading_errors_test.moc"
