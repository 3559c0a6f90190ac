// What is kept of a converter's text, and what is counted in it while it runs.
#include "captured_text.h"
#include "jobs/converter_text.h"
#include "support/test_case.h"

#include <malloc.h>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kept = ConverterText::keptText;
const QByteArray lost("Error while decoding stream #0:0: Invalid data found when processing input\n");

QByteArray numberedLines(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "line " + QByteArray::number(i) + '\n';
    return text;
}

// Bytes; always 0 where a sanitizer has an allocator of its own.
qint64 memoryInUse()
{
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}

class TestConverterText : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAllOfALittle_data();
    void keepsAllOfALittle();
    void keepsWholeLinesOfHeadAndTail();
    void keepsWhatHasNoLines();
    void countsAtEveryCut();
    void countsInLines_data();
    void countsInLines();
    void staysSmall_data();
    void staysSmall();
    void leavesOutTheBanner_data();
    void leavesOutTheBanner();
};

void TestConverterText::keepsAllOfALittle_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::newRow("nothing") << qsizetype(0);
    QTest::newRow("the head alone") << kept;
    QTest::newRow("one more") << kept + 1;
    QTest::newRow("head and tail") << 2 * kept;
}

void TestConverterText::keepsAllOfALittle()
{
    QFETCH(qsizetype, size);
    const QByteArray text = numberedLines(20000).first(size);
    for (const qsizetype piece : {qsizetype(1000), kept, 3 * kept}) {
        ConverterText gathered;
        for (qsizetype at = 0; at < size; at += piece)
            gathered.add(text.mid(at, piece));
        QCOMPARE(gathered.text(), text);
    }
}

void TestConverterText::keepsWholeLinesOfHeadAndTail()
{
    const QByteArray text = numberedLines(100000);
    for (const qsizetype piece : {qsizetype(999), kept - 1, text.size()}) {
        ConverterText gathered;
        for (qsizetype at = 0; at < text.size(); at += piece)
            gathered.add(text.mid(at, piece));
        const QByteArray result = gathered.text();
        QVERIFY(result.size() <= 2 * kept + 1);
        QVERIFY(result.size() >= 2 * kept - 40);
        QVERIFY(result.startsWith("line 0\nline 1\n"));
        QVERIFY(result.endsWith("line 99998\nline 99999\n"));
        int last = -1;
        int gaps = 0;
        for (const QByteArray &line : result.split('\n')) {
            if (line.isEmpty()) continue;
            bool isNumber = false;
            const int number = line.startsWith("line ") ? line.sliced(5).toInt(&isNumber) : -1;
            QVERIFY2(isNumber, line.constData());
            if (number != last + 1) ++gaps;
            last = number;
        }
        QCOMPARE(gaps, 1);
    }
}

void TestConverterText::keepsWhatHasNoLines()
{
    ConverterText gathered;
    gathered.add(QByteArray(3 * kept, 'a') + QByteArray(kept, 'b'));
    QCOMPARE(gathered.text(), QByteArray(kept, 'a') + '\n' + QByteArray(kept, 'b'));
}

void TestConverterText::countsAtEveryCut()
{
    const QByteArray text =
        "frame=  1 time=00:00:01.00\r" + lost + "    Last message repeated 2 times\r\n" + lost;
    for (qsizetype cut = 0; cut <= text.size(); ++cut) {
        ConverterText gathered;
        gathered.add(text.first(cut));
        gathered.add(text.sliced(cut));
        QCOMPARE(gathered.readingErrors(), 4);
    }
}

void TestConverterText::countsInLines_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("errors");
    QTest::newRow("not ended yet") << lost.chopped(1) << qint64(0);
    QTest::newRow("in colour") << QByteArray(
                                      "\x1B[0;35m[h264 @ 0x5d0] \x1B[0m\x1B[1;31mconcealing 9 DC, 9 AC, "
                                      "9 MV errors in P frame\x1B[0m\n")
                               << qint64(1);
    QTest::newRow("in the middle of a long line") << "x" + QByteArray(100000, ' ') + lost << qint64(0);
    QTest::newRow("after a long line") << QByteArray(100000, 'x') + '\n' + lost << qint64(1);
    QTest::newRow("in what is not kept")
        << QByteArray(2 * kept, '\n') + lost + QByteArray(2 * kept, '\n') << qint64(1);
    QTest::newRow("a real run") << test::capturedText("5.1-damaged") << qint64(12);
}

void TestConverterText::countsInLines()
{
    QFETCH(QByteArray, text);
    ConverterText gathered;
    gathered.add(text);
    QTEST(gathered.readingErrors(), "errors");
}

// As much as an input that is damaged all along makes in hours.
void TestConverterText::staysSmall_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::addColumn<qint64>("errorsOfPiece");
    QTest::newRow("many lines") << lost.repeated(1000) << qint64(1000);
    QTest::newRow("one line") << QByteArray(75000, 'x') << qint64(0);
}

void TestConverterText::staysSmall()
{
    QFETCH(QByteArray, piece);
    QFETCH(qint64, errorsOfPiece);
    constexpr int pieces = 2000; // 150 MB
    ConverterText gathered;
    const qint64 before = memoryInUse();
    for (int i = 0; i < pieces; ++i)
        gathered.add(piece);
    QVERIFY(memoryInUse() - before < 2 << 20);
    QCOMPARE(gathered.readingErrors(), pieces * errorsOfPiece);
    QVERIFY(gathered.text().size() <= 2 * kept + 1);
}

void TestConverterText::leavesOutTheBanner_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("first"); // line of what stays
    QTest::addColumn<qsizetype>("removed");
    const auto real = [](const char *name, const char *first, qsizetype removed) {
        QTest::newRow(name) << test::capturedText(name) << QString::fromUtf8(first) << removed;
    };
    const char *input = "Input #0, mov,mp4,m4a,3gp,3g2,mj2, from '/videos/long.mp4':";
    real("4.1-disk_full", input, 11);
    real("5.1-disk_full", input, 11);
    real("7.1-disk_full", input, 10);
    real("7.1.5-disk_full", input, 11);
    real("9.0-disk_full", input, 10);
    const QByteArray version("ffmpeg version 5.1 Copyright (c) 2000-2026 the FFmpeg developers\n");
    QTest::newRow("libraries of another build")
        << version + "  configuration: --enable-gpl\n  WARNING: library configuration mismatch\n"
                     "  avcodec     configuration: --enable-gpl --enable-version3\n"
                     "  libavutil      57. 28.100 / 57. 28.100\nclip.mp4: No such file or directory\n"
        << u"clip.mp4: No such file or directory"_s << qsizetype(5);
    QTest::newRow("like one, but of the video")
        << version + "Input #0, matroska,webm, from 'a.mkv':\n  configuration: a title\n"
        << u"Input #0, matroska,webm, from 'a.mkv':"_s << qsizetype(1);
    QTest::newRow("nothing else") << version << QString() << qsizetype(1);
    QTest::newRow("no banner") << QByteArray("Conversion failed!\n") << u"Conversion failed!"_s
                               << qsizetype(0);
}

void TestConverterText::leavesOutTheBanner()
{
    QFETCH(QByteArray, text);
    QFETCH(qsizetype, removed);
    const QStringList lines = converterLines(text);
    QVERIFY(!lines.isEmpty());
    const QStringList left = withoutBanner(lines);
    QTEST(left.value(0), "first");
    QCOMPARE(left, lines.mid(removed));
    for (const char *word : {"ffmpeg version", "built with", "libavutil "})
        QVERIFY2(!lastConverterLines(lines).contains(QLatin1StringView(word)), word);
}

} // namespace

TESSALY_TEST_MAIN(TestConverterText)
#include "converter_text_test.moc"
