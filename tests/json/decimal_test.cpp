#include "json_test_case.h"
#include "json/decimal.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class DecimalTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsText_data();
    void readsText();
    void readsIntegers_data();
    void readsIntegers();
    void notANumberReadsAsZeroAndNaN();
    void doubleIsTheNearest_data();
    void doubleIsTheNearest();
    void isOrderedByValue_data();
    void isOrderedByValue();
    void isMadeFromIntegers_data();
    void isMadeFromIntegers();
    void isSmall();
};

void DecimalTest::readsText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("stringValue");
    QTest::addColumn<qint64>("int64Value");
    const auto row = [](const QByteArray &text, const QString &stringValue, qint64 int64Value) {
        QTest::newRow(text.isEmpty() ? "(empty)" : text.left(60).constData())
            << text << stringValue << int64Value;
    };
    row("1.50", u"1.5"_s, 1);
    row("007", u"7"_s, 7);
    row("0.0", u"0"_s, 0);
    row("-0", u"0"_s, 0);
    row("1e3", u"1000"_s, 1000);
    row("1e20", u"100000000000000000000"_s, 7766279631452241920);
    row("0.0000001", u"0.0000001"_s, 0);
    row("-1.0002", u"-1.0002"_s, -1);
    row("12abc", u"12"_s, 12);
    row("29.97 fps", u"29.97"_s, 29);
    for (const char *none : {"abc", "N/A", "inf", "nan", ""})
        row(none, u"NaN"_s, 0);
    row(" 12", u"12"_s, 12);
    row("\t\n12", u"12"_s, 12);
    row("\r\v\f12", u"12"_s, 12);
    row("12 34", u"12"_s, 12);
    row("+5", u"5"_s, 5);
    row("-7", u"-7"_s, -7);
    row(".5", u"0.5"_s, 0);
    row("5.", u"5"_s, 5);
    row("-.5", u"-0.5"_s, 0);
    row("1E-3", u"0.001"_s, 0);
    row("1e+3", u"1000"_s, 1000);
    row("1e", u"1"_s, 1);
    row("1e+", u"1"_s, 1);
    row("1e-", u"1"_s, 1);
    row("0x10", u"0"_s, 0);
    row("1,234", u"1"_s, 1);
    row("1,5", u"1"_s, 1);
    row("1/2", u"1"_s, 1);
    row("30000/1001", u"30000"_s, 30000);
    row("1.2.3", u"1.2"_s, 1);
    for (const char *zero : {"e", "en", "E", ".", "-", "+", "--5", "+-5", " ", "e5"})
        row(zero, u"0"_s, 0);
    row("1e127", u"1"_s + QString(127, u'0'), 0);
    row("10e126", u"1"_s + QString(127, u'0'), 0);
    row("10e127", u"10"_s + QString(127, u'0'), 0);
    row("0.1e128", u"1"_s + QString(127, u'0'), 0);
    row("1e-128", u"0."_s + QString(127, u'0') + u"1"_s, 0);
    for (const char *outside : {"1e128", "1e200", "0e200", "1e-129", "1.5e-128", "1e-200",
                                "1e99999999999999999999", "1e-99999999999999999999"})
        row(outside, u"NaN"_s, 0);
    row("1" + QByteArray(170, '0'), u"NaN"_s, 0);
    row("-0.0e1", u"0"_s, 0);
    row("000.000e123", u"0"_s, 0);
    row("340282366920938463463374607431768211455", u"340282366920938463463374607431768211455"_s, -1);
    row("340282366920938463463374607431768211456", u"340282366920938463463374607431768211450"_s, -6);
    row("12345678901234567890123456789012345678901299", u"12345678901234567890123456789012345678900000"_s,
        9103449233449986848);
    row("0.123456789012345678901234567890123456789999", u"0.123456789012345678901234567890123456789"_s, 0);
    row("3.40282366920938463463374607431768211456", u"3.4028236692093846346337460743176821145"_s, 3);
    row("2.9", u"2.9"_s, 2);
    row("-2.9", u"-2.9"_s, -2);
    row("3.3333333333333333333333333333333333333", u"3.3333333333333333333333333333333333333"_s, 3);
    row("250.229953885078403", u"250.229953885078403"_s, 250);
    row("9.821426272392280061", u"9.821426272392280061"_s, 9);
    row("9.999999999999999999", u"9.999999999999999999"_s, 9);
    row("89.857142857142857142857142857142857142", u"89.857142857142857142857142857142857142"_s, 89);
    row("1e50", u"1"_s + QString(50, u'0'), 0);
    row("1e-50", u"0."_s + QString(49, u'0') + u"1"_s, 0);
}

void DecimalTest::readsText()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, stringValue);
    QFETCH(qint64, int64Value);
    const Decimal value = Decimal::fromString(view(text));
    QCOMPARE(shown(value.stringValue()), stringValue);
    QCOMPARE(value.int64Value(), int64Value);
    QCOMPARE(value.isNaN(), stringValue == u"NaN"_s);
}

void DecimalTest::readsIntegers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("int64Value");
    QTest::addColumn<quint64>("uint64Value");
    constexpr qint64 smallest = std::numeric_limits<qint64>::min();
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    QTest::newRow("truncated") << "2.9"_ba << qint64(2) << quint64(2);
    QTest::newRow("negative wraps when unsigned") << "-2.9"_ba << qint64(-2) << quint64(0) - 2;
    QTest::newRow("largest signed") << "9223372036854775807"_ba << largest << quint64(largest);
    QTest::newRow("wraps to the smallest") << "9223372036854775808"_ba << smallest << (quint64(1) << 63);
    QTest::newRow("largest unsigned") << "18446744073709551615"_ba << qint64(-1) << ~quint64(0);
    QTest::newRow("65 bits") << "18446744073709551616"_ba << qint64(0) << quint64(0);
    QTest::newRow("power 20") << "1e20"_ba << qint64(7766279631452241920) << quint64(7766279631452241920);
    QTest::newRow("power 21") << "1e21"_ba << qint64(0) << quint64(0);
    QTest::newRow("power -38") << "100000000000000000000000000000000000001e-38"_ba << qint64(1) << quint64(1);
    QTest::newRow("power -39") << "300000000000000000000000000000000000001e-39"_ba << qint64(0) << quint64(0);
}

void DecimalTest::readsIntegers()
{
    QFETCH(QByteArray, text);
    const Decimal value = Decimal::fromString(view(text));
    QTEST(qint64(value.int64Value()), "int64Value");
    QTEST(quint64(value.uint64Value()), "uint64Value");
}

void DecimalTest::notANumberReadsAsZeroAndNaN()
{
    const Decimal value = Decimal::notANumber();
    QVERIFY(value.isNaN());
    QCOMPARE(shown(value.stringValue()), u"NaN"_s);
    QCOMPARE(value.int64Value(), 0);
    QCOMPARE(value.uint64Value(), 0U);
    QVERIFY(std::isnan(value.doubleValue()));
    QVERIFY(value == Decimal::fromString("abc"));
}

void DecimalTest::doubleIsTheNearest_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("29.97") << "29.97"_ba << 29.97;
    QTest::newRow("23.976") << "23.976"_ba << 23.976;
    QTest::newRow("59.94") << "59.94"_ba << 59.94;
    QTest::newRow("119.88") << "119.88"_ba << 119.88;
    QTest::newRow("12") << "12"_ba << 12.0;
    QTest::newRow("0.1") << "0.1"_ba << 0.1;
    QTest::newRow("0.07") << "0.07"_ba << 0.07;
    QTest::newRow("12.345678") << "12.345678"_ba << 12.345678;
    QTest::newRow("0.041708") << "0.041708"_ba << 0.041708;
    QTest::newRow("23.976023976023978") << "23.976023976023978"_ba << 23.976023976023978;
    QTest::newRow("1e-7") << "1e-7"_ba << 1e-7;
    QTest::newRow("-1.5") << "-1.5"_ba << -1.5;
    QTest::newRow("1e127") << "1e127"_ba << 1e127;
    QTest::newRow("1e-128") << "1e-128"_ba << 1e-128;
    QTest::newRow("128 bits") << "340282366920938463463374607431768211455"_ba << 0x1p128;
    QTest::newRow("a tie goes to even") << "9007199254740993"_ba << 9007199254740992.0;
}

void DecimalTest::doubleIsTheNearest()
{
    QFETCH(QByteArray, text);
    QFETCH(double, value);
    QVERIFY2(Decimal::fromString(view(text)).doubleValue() == value,
             QByteArray::number(Decimal::fromString(view(text)).doubleValue(), 'g', 17).constData());
}

void DecimalTest::isOrderedByValue_data()
{
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<int>("order");
    const auto row = [](const char *left, const char *right, int order) {
        QTest::addRow("%s, %s", left, right) << QByteArray(left) << QByteArray(right) << order;
    };
    row("1", "1.0", 0);
    row("100", "1e2", 0);
    row("0", "-0.00", 0);
    row("abc", "xyz", 0);
    row("abc", "-1e127", -1);
    row("1", "2", -1);
    row("-1", "1", -1);
    row("-1", "-2", 1);
    row("0", "0.1", -1);
    row("0", "-0.1", 1);
    row("-5", "0", -1);
    row("1.5", "1.49", 1);
    row("-1.5", "-1.49", -1);
    row("1e127", "340282366920938463463374607431768211455", 1);
    row("1e-128", "1e-127", -1);
    row("-1e-128", "-1e-127", 1);
    row("123456789012345678901234567890", "123456789012345678901234567891", -1);
}

void DecimalTest::isOrderedByValue()
{
    QFETCH(QByteArray, left);
    QFETCH(QByteArray, right);
    QFETCH(int, order);
    const std::weak_ordering there = Decimal::fromString(view(left)) <=> Decimal::fromString(view(right));
    const std::weak_ordering back = Decimal::fromString(view(right)) <=> Decimal::fromString(view(left));
    QVERIFY(there == (order <=> 0));
    QVERIFY(back == (0 <=> order));
}

void DecimalTest::isMadeFromIntegers_data()
{
    QTest::addColumn<bool>("negative");
    QTest::addColumn<quint64>("magnitude");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << false << quint64(0) << u"0"_s;
    QTest::newRow("negative zero") << true << quint64(0) << u"0"_s;
    QTest::newRow("hundreds") << false << quint64(1200) << u"1200"_s;
    QTest::newRow("negative") << true << quint64(35) << u"-35"_s;
    QTest::newRow("largest") << false << ~quint64(0) << u"18446744073709551615"_s;
}

void DecimalTest::isMadeFromIntegers()
{
    QFETCH(bool, negative);
    QFETCH(quint64, magnitude);
    QFETCH(QString, text);
    const Decimal value = Decimal::fromInteger(negative, magnitude);
    QCOMPARE(shown(value.stringValue()), text);
    QVERIFY(value == Decimal::fromString(text.toStdString()));
}

void DecimalTest::isSmall()
{
    QVERIFY(sizeof(Decimal) <= 24);
}

TESSALY_TEST_MAIN(DecimalTest)
#include "decimal_test.moc"
