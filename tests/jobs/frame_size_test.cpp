#include "jobs/frame_size.h"
#include "support/test_case.h"

#include <limits>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

class TestFrameSize : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void roundsHalvesAwayFromZero_data();
    void roundsHalvesAwayFromZero();
    void computesNothingThatDoesNotFit_data();
    void computesNothingThatDoesNotFit();
    void lowersToEven_data();
    void lowersToEven();
    void fulfilsAWish_data();
    void fulfilsAWish();
    void fitsIntoABox_data();
    void fitsIntoABox();
    void staysWithinTheBoxAndTheInput();
    void refuses_data();
    void refuses();
};

void TestFrameSize::roundsHalvesAwayFromZero_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("half rounds up") << 853.0 << qint64(854);
    QTest::newRow("just below the half") << 852.9 << qint64(852);
    QTest::newRow("half rounds up to a multiple of four") << 851.0 << qint64(852);
    QTest::newRow("negative half rounds down") << -3.0 << qint64(-4);
    QTest::newRow("negative one") << -1.0 << qint64(-2);
    QTest::newRow("zero") << 0.0 << qint64(0);
    QTest::newRow("negative zero") << -0.0 << qint64(0);
    QTest::newRow("one") << 1.0 << qint64(2);
    QTest::newRow("below one") << 0.99 << qint64(0);
    QTest::newRow("33.3 % of 1920") << 1920 * (33.3 / 100.0) << qint64(640);
    QTest::newRow("33.3 % of 1080") << (33.3 / 100.0) * 1080 << qint64(360);
    QTest::newRow("50 % of 854") << 854 * (50 / 100.0) << qint64(428);
    QTest::newRow("1000 at 16 to 9") << 1000 / (1920.0 / 1080.0) << qint64(562);
    QTest::newRow("largest that fits") << 9223372036854773760.0 << qint64(9223372036854773760);
    QTest::newRow("smallest that fits") << -9223372036854775808.0 << smallest;
}

void TestFrameSize::roundsHalvesAwayFromZero()
{
    QFETCH(double, x);
    QFETCH(qint64, expected);
    QCOMPARE(evenSize(x), std::optional(expected));
}

void TestFrameSize::computesNothingThatDoesNotFit_data()
{
    QTest::addColumn<double>("x");
    QTest::newRow("infinite") << infinity;
    QTest::newRow("negative infinite") << -infinity;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("doubling overflows") << 9223372036854775808.0;
    QTest::newRow("below the range") << -9223372036854777856.0;
    QTest::newRow("far too large") << 1e300;
}

void TestFrameSize::computesNothingThatDoesNotFit()
{
    QFETCH(double, x);
    QCOMPARE(evenSize(x), std::nullopt);
}

void TestFrameSize::lowersToEven_data()
{
    QTest::addColumn<qint64>("side");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("even") << qint64(8) << qint64(8);
    QTest::newRow("odd") << qint64(7) << qint64(6);
    QTest::newRow("one") << qint64(1) << qint64(0);
    QTest::newRow("negative") << qint64(-3) << qint64(-4);
    QTest::newRow("largest") << largest << largest - 1;
    QTest::newRow("smallest") << smallest << smallest;
    QTest::newRow("smallest odd") << smallest + 1 << smallest;
}

void TestFrameSize::lowersToEven()
{
    QFETCH(qint64, side);
    QTEST(loweredToEven(side), "expected");
}

void TestFrameSize::fulfilsAWish_data()
{
    using Side = std::optional<qint64>;
    QTest::addColumn<SizeWish>("wish");
    QTest::addColumn<FrameSize>("input");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *name, FrameSize input, double percent, Side width, Side height,
                        const QString &result) {
        QTest::newRow(name) << SizeWish{percent, width, height, {}} << input << result;
    };
    const FrameSize hd{1920, 1080};
    row("nothing said", hd, 100, {}, {}, u"1920 x 1080"_s);
    row("nothing said, odd input: computed as any percentage", {853, 481}, 100, {}, {}, u"854 x 482"_s);
    row("a half", hd, 50, {}, {}, u"960 x 540"_s);
    row("a third", hd, 33.3, {}, {}, u"640 x 360"_s);
    row("a tie", {854, 480}, 50, {}, {}, u"428 x 240"_s);
    row("more than the slider has", hd, 300, {}, {}, u"5760 x 3240"_s);
    row("width: lowered, the height follows", hd, 100, 1001, {}, u"1000 x 562"_s);
    row("height: lowered, the width follows", hd, 100, {}, 541, u"960 x 540"_s);
    row("both are free", hd, 100, 1001, 77, u"1000 x 76"_s);
    row("too small to be made", hd, 0.01, {}, {}, u"0 x 0"_s);
    row("a side comes out at nothing", {4000, 10}, 100, 100, {}, u"100 x 0"_s);
    row("more than can be made", hd, 20000, {}, {}, u"384000 x 216000"_s);
    row("the following side does not fit", hd, 100, {}, largest, u"none"_s);
    row("no percentage fits", hd, 1e300, {}, {}, u"none"_s);
    row("a flat input", {1920, 0}, 100, {}, 100, u"none"_s);
}

void TestFrameSize::fulfilsAWish()
{
    QFETCH(SizeWish, wish);
    QFETCH(FrameSize, input);
    const std::optional<FrameSize> size = sizeForWish(wish, input);
    QTEST(size ? frameSizeText(*size) : u"none"_s, "result");
}

void TestFrameSize::fitsIntoABox_data()
{
    QTest::addColumn<FrameSize>("box");
    QTest::addColumn<FrameSize>("input");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *name, FrameSize box, FrameSize input, const QString &result) {
        QTest::newRow(name) << box << input << result;
    };
    const FrameSize hd{1280, 720};
    row("the box's own proportions", hd, {1920, 1080}, u"1280 x 720"_s);
    row("wider than the box", hd, {2560, 1080}, u"1280 x 540"_s);
    row("higher than the box", hd, {1440, 1080}, u"960 x 720"_s);
    row("upright", hd, {1080, 1920}, u"406 x 720"_s);
    row("only the width is too large", hd, {1920, 500}, u"1280 x 334"_s);
    row("only the height is too large", hd, {500, 1440}, u"250 x 720"_s);
    row("the box itself", hd, hd, u"1280 x 720"_s);
    row("smaller than the box: never enlarged", hd, {640, 360}, u"640 x 360"_s);
    row("smaller and odd: lowered, not rounded up", hd, {853, 481}, u"852 x 480"_s);
    row("smaller, one side odd: the other is kept", {1920, 1920}, {405, 720}, u"404 x 720"_s);
    row("smaller, the other side odd", {1920, 1920}, {720, 405}, u"720 x 404"_s);
    row("too large by a pixel on one side", {404, 720}, {405, 720}, u"404 x 720"_s);
    row("a tie", {1522, 755}, {666, 1332}, u"378 x 754"_s);
    row("a tie of the height", {755, 1522}, {1332, 666}, u"754 x 378"_s);
    row("as large as the box but for a pixel", hd, {1281, 721}, u"1280 x 720"_s);
    row("an odd box", {1281, 721}, {1920, 1080}, u"1280 x 720"_s);
    row("the smallest box", {2, 2}, {1920, 1080}, u"2 x 2"_s);
    row("a side comes out at nothing", {100, 100}, {4000, 10}, u"100 x 0"_s);
    row("a single column", hd, {1, 1080}, u"0 x 0"_s);
    row("the largest box", {largest, largest}, {1920, 1080}, u"1920 x 1080"_s);
    row("a flat input", hd, {1920, 0}, u"none"_s);
    row("an input without a width", hd, {0, 1080}, u"none"_s);
}

void TestFrameSize::fitsIntoABox()
{
    QFETCH(FrameSize, box);
    QFETCH(FrameSize, input);
    const std::optional<FrameSize> size = sizeForWish({.percent = 50, .box = box}, input);
    QTEST(size ? frameSizeText(*size) : u"none"_s, "result");
}

void TestFrameSize::staysWithinTheBoxAndTheInput()
{
    const FrameSize box{320, 180};
    for (qint64 width = 1; width < 700; width += 3) {
        for (qint64 height = 1; height < 700; height += 5) {
            const std::optional<FrameSize> size = sizeWithin(box, {width, height});
            const std::string input = frameSizeText({width, height}).toStdString();
            QVERIFY2(size, input.c_str());
            QVERIFY2(size->width <= qMin(box.width, width), input.c_str());
            QVERIFY2(size->height <= qMin(box.height, height), input.c_str());
            QVERIFY2(size->width % 2 == 0 && size->height % 2 == 0, input.c_str());
            // One side reaches as far as an even one can.
            QVERIFY2(size->width == loweredToEven(qMin(box.width, width)) ||
                         size->height == loweredToEven(qMin(box.height, height)),
                     input.c_str());
        }
    }
}

void TestFrameSize::refuses_data()
{
    QTest::addColumn<FrameSize>("size");
    QTest::addColumn<QString>("refusal"); // its beginning and its end, or empty
    const auto row = [](qint64 width, qint64 height, const QString &refusal) {
        QTest::addRow("%lld x %lld", width, height) << FrameSize{width, height} << refusal;
    };
    const auto small = u"cannot be made: choose a size of at least 2 x 2."_s;
    const auto large = u"is too large to be made: choose a smaller size."_s;
    row(2, 2, {});
    row(2, 1, small);
    row(1, 2, small);
    row(0, 0, small);
    row(0, 99999, small);
    row(-2, 360, small);
    row(smallest, smallest, small);
    row(16384, 2, {});
    row(2, 16384, {});
    row(16386, 2, large);
    row(2, 16386, large);
    // (16384 + 128) * (side + 128) stays below 2^28 up to this side.
    row(16384, 16128, {});
    row(16384, 16130, large);
    row(16128, 16384, {});
    row(16384, 16384, large);
    row(99998, 50000, large);
    row(qint64(1) << 32, 2, large);
    row(largest, largest, large);
    row(largest, 2, large);
}

void TestFrameSize::refuses()
{
    QFETCH(FrameSize, size);
    QFETCH(QString, refusal);
    const auto sentence =
        refusal.isEmpty() ? QString() : u"A video of %1 "_s.arg(frameSizeText(size)) + refusal;
    QCOMPARE(sizeRefusal(size).value_or(QString()), sentence);
}

} // namespace

TESSALY_TEST_MAIN(TestFrameSize)
#include "frame_size_test.moc"
