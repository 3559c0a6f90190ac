#include "jobs/even_size.h"
#include "support/test_case.h"

#include <limits>

using namespace tessaly;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class TestEvenSize : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void roundsHalvesAwayFromZero_data();
    void roundsHalvesAwayFromZero();
    void refusesWhatDoesNotFit_data();
    void refusesWhatDoesNotFit();
};

void TestEvenSize::roundsHalvesAwayFromZero_data()
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
    QTest::newRow("smallest that fits") << -9223372036854775808.0 << std::numeric_limits<qint64>::min();
}

void TestEvenSize::roundsHalvesAwayFromZero()
{
    QFETCH(double, x);
    QFETCH(qint64, expected);
    QCOMPARE(evenSize(x), std::optional(expected));
}

void TestEvenSize::refusesWhatDoesNotFit_data()
{
    QTest::addColumn<double>("x");
    QTest::newRow("infinite") << infinity;
    QTest::newRow("negative infinite") << -infinity;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("doubling overflows") << 9223372036854775808.0;
    QTest::newRow("below the range") << -9223372036854777856.0;
    QTest::newRow("far too large") << 1e300;
}

void TestEvenSize::refusesWhatDoesNotFit()
{
    QFETCH(double, x);
    QCOMPARE(evenSize(x), std::nullopt);
}

} // namespace

TESSALY_TEST_MAIN(TestEvenSize)
#include "even_size_test.moc"
