#include "captured_text.h"
#include "jobs/progress.h"
#include "support/test_case.h"

#include <cmath>

using namespace tessaly;

namespace {

class TestProgress : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsAChunk_data();
    void readsAChunk();
    void ignoresAChunk_data();
    void ignoresAChunk();
    void leavesOddDurationsUnclamped();
    void readsSecondsWithoutADuration();
    void followsCapturedRuns_data();
    void followsCapturedRuns();
    void survivesEveryCut_data();
    void survivesEveryCut();
};

const QByteArray progressLine(
    "frame=  182 fps=181 q=28.0 size=     256kB time=00:00:07.20 bitrate= 291.3kbits/s speed=7.15x    \r");

void TestProgress::readsAChunk_data()
{
    QTest::addColumn<QByteArray>("chunk");
    QTest::addColumn<double>("duration");
    QTest::addColumn<double>("percent");
    QTest::newRow("a progress line") << progressLine << 72.0 << 10.0;
    QTest::newRow("KiB") << QByteArray(
                                "size=     256KiB time=00:00:07.20 bitrate= 291.3kbits/s speed=7.15x    \r")
                         << 72.0 << 10.0;
    QTest::newRow("elapsed behind it")
        << QByteArray("time=00:00:07.20 bitrate=N/A speed=7.15x elapsed=0:00:01.01    \r") << 72.0 << 10.0;
    QTest::newRow("not available, elapsed with two digits of hours")
        << QByteArray("time=N/A speed=N/A elapsed=10:00:00.00 \r") << 72000.0 << 50.0;
    QTest::newRow("the first of two")
        << progressLine + QByteArray("frame=  2 time=00:00:14.40 bitrate=\r") << 72.0 << 10.0;
    QTest::newRow("a header in front")
        << QByteArray("Duration: 00:02:00.00, start: 0.000000\n") + progressLine << 120.0 << 100.0;
    QTest::newRow("not available, then a time")
        << QByteArray("time=N/A bitrate=N/A\r") + progressLine << 72.0 << 10.0;
    QTest::newRow("beyond the end") << QByteArray("time=00:00:07.20") << 3.6 << 200.0;
    QTest::newRow("138 hours") << QByteArray("time=138:00:00.00 bitrate=") << 38.0 * 3600 << 100.0;
    QTest::newRow("negative") << QByteArray("time=-00:00:00.02 bitrate=") << 2.0 << 1.0;
    QTest::newRow("an old not-available")
        << QByteArray("time=-577014:32:22.77 bitrate=") << 52342.77 << 100.0;
    QTest::newRow("a time stamp without its trigger's value")
        << QByteArray("00:00:01.00 time=") << 2.0 << 50.0;
    QTest::newRow("negative duration") << QByteArray("time=00:00:01.00") << -2.0 << -50.0;
    QTest::newRow("other letters around it")
        << QByteArray("\xC3\xA9 time=00:00:01.00 \xF0\x9F\x98\x80") << 2.0 << 50.0;
    QTest::newRow("a NUL in front") << QByteArray("\0time=00:00:01.00", 17) << 2.0 << 50.0;
}

void TestProgress::readsAChunk()
{
    QFETCH(QByteArray, chunk);
    QFETCH(double, duration);
    QFETCH(double, percent);
    const std::optional<double> read = percentOfChunk(chunk, duration);
    QVERIFY(read);
    QCOMPARE(*read, percent);
}

void TestProgress::ignoresAChunk_data()
{
    QTest::addColumn<QByteArray>("chunk");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no trigger") << QByteArray("Duration: 00:02:00.00, start: 0.000000");
    QTest::newRow("trigger cut off") << QByteArray("frame=  2 time");
    QTest::newRow("value cut off") << QByteArray("time=00:00:07");
    QTest::newRow("trigger cut from its value") << QByteArray("=00:00:07.20 bitrate=");
    QTest::newRow("not available") << QByteArray("time=N/A bitrate=N/A speed=N/A \r");
    QTest::newRow("seconds only") << QByteArray("size= 256kB time=7.20 bitrate= 291.3kbits/s");
    QTest::newRow("one digit of hours") << QByteArray("time=0:00:07.20");
    QTest::newRow("separator that is no dot") << QByteArray("time=00:00:07x20");
    QTest::newRow("first match unreadable, second good") << QByteArray("time=00:00:07x20 time=00:00:07.20");
    QTest::newRow("ends inside a line break") << QByteArray("time=00:00:07\r20");
    QTest::newRow("not UTF-8 behind it") << progressLine + QByteArray("\xFF");
    QTest::newRow("not UTF-8 in front") << QByteArray("\xC3\x28") + progressLine;
    QTest::newRow("character cut in two") << progressLine + QByteArray("\xE2\x82");
    QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") + progressLine;
}

void TestProgress::ignoresAChunk()
{
    QFETCH(QByteArray, chunk);
    QCOMPARE(percentOfChunk(chunk, 72), std::nullopt);
}

void TestProgress::leavesOddDurationsUnclamped()
{
    QVERIFY(std::isinf(percentOfChunk("time=00:00:01.00", 0).value()));
    QVERIFY(std::isnan(percentOfChunk("time=00:00:00.00", 0).value()));
    QVERIFY(std::isnan(percentOfChunk("time=00:00:01.00", std::nan("")).value()));
}

// A run of 30 seconds in each generation's words, line by line.
void TestProgress::readsSecondsWithoutADuration()
{
    QCOMPARE(secondsOfChunk(progressLine), std::optional(7.2));
    QCOMPARE(secondsOfChunk("time=N/A"), std::nullopt);
    QCOMPARE(secondsOfChunk("00:00:07.20"), std::nullopt);
}

void TestProgress::followsCapturedRuns_data()
{
    QTest::addColumn<QList<int>>("centiseconds");
    QTest::newRow("4.1-good") << QList<int>{280, 852, 1548, 2212, 2988};
    QTest::newRow("5.1-good") << QList<int>{0, 444, 1160, 1840, 2572, 2988};
    QTest::newRow("7.1-good") << QList<int>{660, 1564, 2472, 2992};
    QTest::newRow("9.0-good") << QList<int>{0,    112,  168,  228,  312,  384,  468,  696,  876,  960,
                                            1040, 1108, 1220, 1292, 1344, 1420, 1496, 1600, 1716, 1780,
                                            1848, 2088, 2340, 2492, 2552, 2624, 2696, 2780, 2992};
}

void TestProgress::followsCapturedRuns()
{
    QFETCH(QList<int>, centiseconds);
    QList<int> read;
    QByteArray text = test::capturedText(QTest::currentDataTag());
    for (const QByteArray &line : text.replace('\r', '\n').split('\n')) {
        if (const auto percent = percentOfChunk(line, 100)) read += qRound(*percent * 100);
    }
    QCOMPARE(read, centiseconds);
}

void TestProgress::survivesEveryCut_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *name :
         {"4.1-good", "5.1-good", "7.1-good", "7.1-disk_full_at_once", "9.0-disk_full_at_once"})
        QTest::newRow(name) << test::capturedText(name);
    QTest::newRow("elapsed") << QByteArray(
        "frame=    1 fps=0.0 q=0.0 size=       0KiB time=N/A bitrate=N/A speed=N/A elapsed=0:00:00.50    \r"
        "frame=  182 fps=181 q=28.0 size=     256KiB time=00:00:07.20 bitrate= 291.3kbits/s speed=7.15x "
        "elapsed=0:00:01.00    \r");
}

// Wherever the text is cut, each part gives one of the times that stand in it, or nothing.
void TestProgress::survivesEveryCut()
{
    QFETCH(QByteArray, text);
    QVERIFY(!text.isEmpty());
    QSet<double> times;
    for (qsizetype at = 0; at + 11 <= text.size(); ++at) {
        if (const auto percent = percentOfChunk("time=" + text.sliced(at, 11), 100)) times += *percent;
    }
    QVERIFY(!times.isEmpty());
    int found = 0;
    for (qsizetype at = 0; at <= text.size(); ++at) {
        for (const QByteArray &part : {text.first(at), text.sliced(at)}) {
            const auto percent = percentOfChunk(part, 100);
            if (!percent) continue;
            ++found;
            QVERIFY2(times.contains(*percent), part.constData());
        }
    }
    QVERIFY(found > 0);
}

} // namespace

TESSALY_TEST_MAIN(TestProgress)
#include "progress_test.moc"
