#include "platform/number_text.h"
#include "support/test_case.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

class NumberTextTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void writesPlainDecimals_data();
    void writesPlainDecimals();
    void plainDecimalsReadBack();
    void writesGeneralText_data();
    void writesGeneralText();
    void readsFieldText_data();
    void readsFieldText();
    void readsExtremeDoubles_data();
    void readsExtremeDoubles();
    void theLocaleDoesNotMatter();
};

void NumberTextTest::writesPlainDecimals_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const QString &text) {
        QTest::newRow(qPrintable(text.left(40))) << value << text;
    };
    row(0.0, u"0.0"_s);
    row(-0.0, u"-0.0"_s);
    row(29.97, u"29.97"_s);
    row(-2.5, u"-2.5"_s);
    row(0.1 + 0.2, u"0.30000000000000004"_s);
    row(2.5, u"2.5"_s);
    row(5.0, u"5.0"_s);
    row(27.5, u"27.5"_s);
    row(120.0, u"120.0"_s);
    row(10.0 / 12, u"0.8333333333333334"_s);
    row(0.05, u"0.05"_s);
    row(1e-7, u"0.0000001"_s);
    row(1.25e-5, u"0.0000125"_s);
    row(-1e-7, u"-0.0000001"_s);
    row(9007199254740994.0, u"9007199254740994.0"_s);
    row(1e22, u"10000000000000000000000.0"_s);
    row(1e23, u"100000000000000000000000.0"_s); // not 99999999999999991611392, the exact value
    row(5e-324, u"0."_s + QString(323, u'0') + u'5');
    row(infinity, u"inf"_s);
    row(-infinity, u"-inf"_s);
    row(notANumber, u"nan"_s);
    QTest::newRow("nan with a sign") << std::copysign(notANumber, -1.0) << u"nan"_s;
}

void NumberTextTest::writesPlainDecimals()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(plainDecimal(value), text);
}

void NumberTextTest::plainDecimalsReadBack()
{
    // Frame positions of videos of every length up to a day, and the ends of the range.
    for (double duration = 0.04; duration < 86400; duration *= 1.37) {
        for (int n = 1; n <= 11; ++n)
            QCOMPARE(plainDecimal(n * (duration / 12.0)).toDouble(), n * (duration / 12.0));
    }
    for (const double value : {std::numeric_limits<double>::max(), std::numeric_limits<double>::min()})
        QCOMPARE(plainDecimal(value).toDouble(), value);
}

void NumberTextTest::writesGeneralText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const auto row = [](double value, const char *text) {
        QTest::newRow(text) << value << QString::fromLatin1(text);
    };
    row(0.1, "0.1");
    row(29.97, "29.97");
    row(23.976023976, "23.976023976");
    row(0.1 + 0.2, "0.3");
    row(8.95, "8.949999999999999");
    row(1.0, "1");
    row(1920.5, "1920.5");
    row(30000.0 / 1001, "29.97002997002997");
    row(24000.0 / 1001, "23.97602397602398");
    row(1.0 / 3, "0.3333333333333333");
    row(1e15, "1000000000000000");
    row(1e16, "1e+16");
    row(1e20, "1e+20");
    row(1e21, "1e+21");
    row(1e-4, "0.0001");
    row(1e-5, "1e-05");
    row(1e-7, "1e-07");
    row(-0.0, "-0");
    row(notANumber, "nan");
    row(infinity, "inf");
    row(-infinity, "-inf");
}

void NumberTextTest::writesGeneralText()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(generalText(value), text);
}

void NumberTextTest::readsFieldText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("integer");
    QTest::addColumn<double>("real");
    const auto row = [](const char *text, qint64 integer, double real) {
        QTest::addRow("'%s'", text) << QString::fromUtf8(text) << integer << real;
    };
    row("", 0, 0);
    row("abc", 0, 0);
    row("12abc", 12, 12);
    row(" 12 ", 12, 12);
    row("\t\n12", 12, 12);
    row("12 34", 12, 12);
    row("1,920", 1, 1);
    row("1920.7", 1920, 1920.7);
    row("1920,7", 1920, 1920);
    row("-3", -3, -3);
    row("+7", 7, 7);
    row("-2.5", -2, -2.5);
    row("++7", 0, 0);
    row("--3", 0, 0);
    row("+-3", 0, 0);
    row("- 3", 0, 0);
    row("-", 0, 0);
    row(".", 0, 0);
    row("1e3", 1, 1000);
    row("1E3", 1, 1000);
    row("1e", 1, 1);
    row("1e+", 1, 1);
    row("1e-3x", 1, 0.001);
    row(".5", 0, 0.5);
    row("-.5", 0, -0.5);
    row("5.", 5, 5);
    row("5.e1", 5, 50);
    row("e5", 0, 0);
    row("0x1F", 0, 0);
    row("007", 7, 7);
    row("99999999999999999999", std::numeric_limits<qint64>::max(), 1e20);
    row("-99999999999999999999", std::numeric_limits<qint64>::min(), -1e20);
    row("9223372036854775807", std::numeric_limits<qint64>::max(), 9223372036854775807.0);
    row("-9223372036854775808", std::numeric_limits<qint64>::min(), -9223372036854775808.0);
    row("99999999999", 99999999999, 99999999999.0);
    row("1.2.3", 1, 1.2);
    row("2e3.12", 2, 2000);
    row("nan", 0, 0);
    row("inf", 0, 0);
    row("infinity", 0, 0);
    row("٣", 0, 0); // a digit, but not an ASCII one
}

void NumberTextTest::readsFieldText()
{
    QFETCH(QString, text);
    QFETCH(qint64, integer);
    QFETCH(double, real);
    QCOMPARE(integerFromText(text), integer);
    QVERIFY2(doubleFromText(text) == real, qPrintable(generalText(doubleFromText(text))));
}

void NumberTextTest::readsExtremeDoubles_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("too large") << u"1e400"_s << infinity;
    QTest::newRow("too large, negative") << u"-1e400"_s << -infinity;
    QTest::newRow("too small") << u"1e-400"_s << 0.0;
    QTest::newRow("exponent of many digits") << u"1e99999999999999999999"_s << infinity;
    QTest::newRow("smallest") << u"5e-324"_s << 5e-324;
    QTest::newRow("largest") << u"1.7976931348623157e308"_s << 1.7976931348623157e308;
    QTest::newRow("400 digits") << QString(400, u'9') << infinity;
    QTest::newRow("rounded correctly") << u"12.345678"_s << 12.345678;
}

void NumberTextTest::readsExtremeDoubles()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QVERIFY2(doubleFromText(text) == value, qPrintable(generalText(doubleFromText(text))));
}

void NumberTextTest::theLocaleDoesNotMatter()
{
    const QLocale before;
    QLocale::setDefault(QLocale(u"de_DE"_s));
    const QStringList texts{generalText(29.97), plainDecimal(29.97)};
    const double read = doubleFromText(u"29.97");
    QLocale::setDefault(before);
    QCOMPARE(texts, QStringList({u"29.97"_s, u"29.97"_s}));
    QCOMPARE(read, 29.97);
}

TESSALY_TEST_MAIN(NumberTextTest)
#include "number_text_test.moc"
