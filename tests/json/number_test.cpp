#include "json_test_case.h"
#include "json/number.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

Q_DECLARE_METATYPE(tessaly::Number)

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t largestUnsigned = std::numeric_limits<std::uint64_t>::max();

Number decimal(std::string_view text)
{
    return Decimal::fromString(text);
}

} // namespace

class NumberTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasText_data();
    void hasText();
    void readsAsInteger_data();
    void readsAsInteger();
    void readsAsDouble_data();
    void readsAsDouble();
    void readsAsTruthValue_data();
    void readsAsTruthValue();
    void remembersItsOrigin_data();
    void remembersItsOrigin();
    void comparesByValue_data();
    void comparesByValue();
};

void NumberTest::hasText_data()
{
    QTest::addColumn<Number>("number");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const Number &number, const QString &text) {
        QTest::newRow(name) << number << text;
    };
    row("int 0", 0, u"0"_s);
    row("int -5", -5, u"-5"_s);
    row("int 1920", 1920, u"1920"_s);
    row("smallest int", smallest, u"-9223372036854775808"_s);
    row("largest int", largest, u"9223372036854775807"_s);
    row("largest unsigned", largestUnsigned, u"18446744073709551615"_s);
    row("0.1", 0.1, u"0.1"_s);
    row("29.97", 29.97, u"29.97"_s);
    row("23.976023976", 23.976023976, u"23.976023976"_s);
    row("0.1 + 0.2", 0.1 + 0.2, u"0.3"_s);
    row("8.95", 8.95, u"8.949999999999999"_s);
    row("1.0", 1.0, u"1"_s);
    row("1920.5", 1920.5, u"1920.5"_s);
    row("30000/1001", 30000.0 / 1001, u"29.97002997002997"_s);
    row("24000/1001", 24000.0 / 1001, u"23.97602397602398"_s);
    row("1/3", 1.0 / 3, u"0.3333333333333333"_s);
    row("1e15", 1e15, u"1000000000000000"_s);
    row("1e16", 1e16, u"1e+16"_s);
    row("1e20", 1e20, u"1e+20"_s);
    row("1e21", 1e21, u"1e+21"_s);
    row("1e-4", 1e-4, u"0.0001"_s);
    row("1e-5", 1e-5, u"1e-05"_s);
    row("1e-7", 1e-7, u"1e-07"_s);
    row("1e300", 1e300, u"1e+300"_s);
    row("smallest double", 5e-324, u"4.940656458412465e-324"_s);
    row("-0.0", -0.0, u"-0"_s);
    row("nan", notANumber, u"nan"_s);
    row("-nan", -notANumber, u"nan"_s);
    row("inf", infinity, u"inf"_s);
    row("-inf", -infinity, u"-inf"_s);
    row("true", true, u"1"_s);
    row("false", false, u"0"_s);
    row("decimal", decimal("1.50"), u"1.5"_s);
    row("long decimal", decimal("1.23456789123456789"), u"1.23456789123456789"_s);
    row("decimal 1e20", decimal("1e20"), u"100000000000000000000"_s);
    row("decimal not a number", Decimal::notANumber(), u"NaN"_s);
}

void NumberTest::hasText()
{
    QFETCH(Number, number);
    QFETCH(QString, text);
    QCOMPARE(shown(number.stringValue()), text);
}

void NumberTest::readsAsInteger_data()
{
    QTest::addColumn<Number>("number");
    QTest::addColumn<qint64>("integerValue");
    QTest::addColumn<qint32>("intValue");
    const auto row = [](const char *name, const Number &number, qint64 integerValue, qint32 intValue) {
        QTest::newRow(name) << number << integerValue << intValue;
    };
    row("int", -5, -5, -5);
    row("largest int", largest, largest, -1);
    row("2^32 + 7", (std::int64_t{1} << 32) + 7, (qint64{1} << 32) + 7, 7);
    row("3000000000", 3000000000, 3000000000, -1294967296);
    row("largest unsigned", largestUnsigned, -1, -1);
    row("2.9", 2.9, 2, 2);
    row("-2.9", -2.9, -2, -2);
    row("0.5", 0.5, 0, 0);
    row("-0.5", -0.5, 0, 0);
    row("29.97", 29.97, 29, 29);
    row("1e19", 1e19, largest, -1);
    row("2^63", 9223372036854775808.0, largest, -1);
    row("-2^63", -9223372036854775808.0, smallest, 0);
    row("-1e19", -1e19, smallest, 0);
    row("inf", infinity, largest, -1);
    row("-inf", -infinity, smallest, 0);
    row("nan", notANumber, 0, 0);
    row("true", true, 1, 1);
    row("false", false, 0, 0);
    row("decimal 29.97", decimal("29.97"), 29, 29);
    row("decimal -29.97", decimal("-29.97"), -29, -29);
    row("decimal 2^63", decimal("9223372036854775808"), smallest, 0);
    row("decimal not a number", Decimal::notANumber(), 0, 0);
}

void NumberTest::readsAsInteger()
{
    QFETCH(Number, number);
    QTEST(qint64(number.integerValue()), "integerValue");
    QTEST(qint32(number.intValue()), "intValue");
}

void NumberTest::readsAsDouble_data()
{
    QTest::addColumn<Number>("number");
    QTest::addColumn<double>("value");
    QTest::newRow("int") << Number(-5) << -5.0;
    QTest::newRow("largest unsigned") << Number(largestUnsigned) << 0x1p64;
    QTest::newRow("real") << Number(29.97) << 29.97;
    QTest::newRow("true") << Number(true) << 1.0;
    QTest::newRow("false") << Number(false) << 0.0;
    QTest::newRow("decimal") << decimal("12.345678") << 12.345678;
    QTest::newRow("infinite") << Number(infinity) << infinity;
}

void NumberTest::readsAsDouble()
{
    QFETCH(Number, number);
    QFETCH(double, value);
    QVERIFY(number.doubleValue() == value);
}

void NumberTest::readsAsTruthValue_data()
{
    QTest::addColumn<Number>("number");
    QTest::addColumn<bool>("value");
    QTest::newRow("0") << Number(0) << false;
    QTest::newRow("-1") << Number(-1) << true;
    QTest::newRow("unsigned 0") << Number(0U) << false;
    QTest::newRow("unsigned 2") << Number(2U) << true;
    QTest::newRow("0.0") << Number(0.0) << false;
    QTest::newRow("-0.0") << Number(-0.0) << false;
    QTest::newRow("0.4") << Number(0.4) << true;
    QTest::newRow("nan") << Number(notANumber) << true;
    QTest::newRow("true") << Number(true) << true;
    QTest::newRow("false") << Number(false) << false;
    QTest::newRow("decimal 0") << decimal("0.00") << false;
    QTest::newRow("decimal 0.1") << decimal("0.1") << true;
}

void NumberTest::readsAsTruthValue()
{
    QFETCH(Number, number);
    QTEST(number.boolValue(), "value");
}

void NumberTest::remembersItsOrigin_data()
{
    QTest::addColumn<Number>("number");
    QTest::addColumn<QByteArray>("objCType");
    QTest::addColumn<bool>("isBool");
    QTest::newRow("default") << Number() << "q"_ba << false;
    QTest::newRow("true") << Number(true) << "c"_ba << true;
    QTest::newRow("false") << Number(false) << "c"_ba << true;
    QTest::newRow("int 1") << Number(1) << "q"_ba << false;
    QTest::newRow("int 0") << Number(0) << "q"_ba << false;
    QTest::newRow("unsigned within the signed range") << Number(std::uint64_t(largest)) << "q"_ba << false;
    QTest::newRow("unsigned above the signed range") << Number(std::uint64_t(largest) + 1) << "Q"_ba << false;
    QTest::newRow("double 1") << Number(1.0) << "d"_ba << false;
    QTest::newRow("decimal 1") << decimal("1") << "d"_ba << false;
}

void NumberTest::remembersItsOrigin()
{
    QFETCH(Number, number);
    QTEST(QByteArray(number.objCType()), "objCType");
    QTEST(number.isBool(), "isBool");
}

void NumberTest::comparesByValue_data()
{
    QTest::addColumn<Number>("left");
    QTest::addColumn<Number>("right");
    QTest::addColumn<int>("order");
    const auto row = [](const char *name, const Number &left, const Number &right, int order) {
        QTest::newRow(name) << left << right << order;
    };
    const Number ones[] = {1, 1U, 1.0, true, decimal("1")};
    for (const Number &left : ones) {
        for (const Number &right : ones)
            QTest::addRow("one as %d and as %d", int(left.origin()), int(right.origin()))
                << left << right << 0;
    }
    row("true, 1.0", true, 1.0, 0);
    row("false, 0", false, 0, 0);
    row("true, 2", true, 2, -1);
    row("-1, largest unsigned", -1, largestUnsigned, -1);
    row("-1, -2", -1, -2, 1);
    row("smallest, largest", smallest, largest, -1);
    row("2^53 + 1 is more than the real 2^53", (std::int64_t{1} << 53) + 1, 0x1p53, 1);
    row("2^53 is the real 2^53", std::int64_t{1} << 53, 0x1p53, 0);
    row("largest int is less than the real 2^63", largest, 0x1p63, -1);
    row("smallest int is the real -2^63", smallest, -0x1p63, 0);
    row("largest unsigned is less than the real 2^64", largestUnsigned, 0x1p64, -1);
    row("smallest int is more than -1e30", smallest, -1e30, 1);
    row("2, 2.5", 2, 2.5, -1);
    row("-2, -2.5", -2, -2.5, 1);
    row("0, -0.0", 0, -0.0, 0);
    row("0, -0.5", 0, -0.5, 1);
    row("5, inf", 5, infinity, -1);
    row("5, -inf", 5, -infinity, 1);
    row("0.1, decimal 0.1", 0.1, decimal("0.1"), 0);
    row("0.1, decimal 0.2", 0.1, decimal("0.2"), -1);
    row("largest unsigned, decimal next", largestUnsigned, decimal("18446744073709551616"), -1);
    row("smallest, decimal below", smallest, decimal("-9223372036854775809"), 1);
    row("smallest, decimal same", smallest, decimal("-9223372036854775808"), 0);
    row("nan is itself", notANumber, notANumber, 0);
    row("nan is below -inf", notANumber, -infinity, -1);
    row("nan is below an int", notANumber, smallest, -1);
    row("decimal nan is nan", Decimal::notANumber(), notANumber, 0);
    row("decimal nan is below an int", Decimal::notANumber(), smallest, -1);
}

void NumberTest::comparesByValue()
{
    QFETCH(Number, left);
    QFETCH(Number, right);
    QFETCH(int, order);
    QVERIFY((left <=> right) == (order <=> 0));
    QVERIFY((right <=> left) == (0 <=> order));
    QCOMPARE(left == right, order == 0);
}

TESSALY_TEST_MAIN(NumberTest)
#include "number_test.moc"
