#include "number_field_fixture.h"
#include "support/test_case.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr qint64 largest = std::numeric_limits<qint64>::max();
constexpr qint64 smallest = std::numeric_limits<qint64>::min();

} // namespace

class NumberFieldValueTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsText_data();
    void readsText();
    void typedTextReadsTheSame_data() { readsText_data(); }
    void typedTextReadsTheSame();
    void integersAreGivenBackExactly_data();
    void integersAreGivenBackExactly();
    void doublesAreGivenBackExactly_data();
    void doublesAreGivenBackExactly();
    void typedTextTakesThePlaceOfTheNumber();
    void anEqualTextKeepsItsCaret();
};

void NumberFieldValueTest::readsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("integer");
    QTest::addColumn<double>("real");
    QTest::addColumn<int>("integer32");
    const auto row = [](const char *text, qint64 integer, double real, int integer32) {
        QTest::newRow(*text == 0 ? "empty" : text)
            << QString::fromLatin1(text) << integer << real << integer32;
    };
    constexpr int largest32 = std::numeric_limits<int>::max();
    constexpr int smallest32 = std::numeric_limits<int>::min();
    row("", 0, 0, 0);
    row("abc", 0, 0, 0);
    row("12abc", 12, 12, 12);
    row(" 12 ", 12, 12, 12);
    row("1,920", 1, 1, 1);
    row("1920.7", 1920, 1920.7, 1920);
    row("1920,7", 1920, 1920, 1920);
    row("-3", -3, -3, -3);
    row("+7", 7, 7, 7);
    row("++7", 0, 0, 0);
    row("--3", 0, 0, 0);
    row("- 3", 0, 0, 0);
    row("1e3", 1, 1000, 1);
    row("1e9", 1, 1e9, 1);
    row(".5", 0, .5, 0);
    row("5.", 5, 5, 5);
    row("0x1F", 0, 0, 0);
    row("99999999999999999999", largest, 1e20, largest32);
    row("-99999999999999999999", smallest, -1e20, smallest32);
    row("99999999999", 99999999999, 99999999999.0, largest32);
    row("1.2.3", 1, 1.2, 1);
    row("2e3.12", 2, 2000, 2);
    row("nan", 0, 0, 0);
    row("inf", 0, 0, 0);
}

void NumberFieldValueTest::readsText()
{
    QFETCH(QString, text);
    NumberField field;
    field.setStringValue(text);
    QCOMPARE(field.stringValue(), text);
    QCOMPARE(field.text(), text);
    QTEST(field.integerValue(), "integer");
    QTEST(field.doubleValue(), "real");
    QTEST(field.intValue(), "integer32");
}

void NumberFieldValueTest::typedTextReadsTheSame()
{
    QFETCH(QString, text);
    NumberFieldFixture fixture;
    fixture.key(Qt::Key_Delete); // the selected number
    fixture.type(text.toLatin1().constData());
    QCOMPARE(fixture.width.stringValue(), text);
    for (int pass = 0; pass < 2; ++pass) { // while the edit is open, and after it
        QTEST(fixture.width.integerValue(), "integer");
        QTEST(fixture.width.doubleValue(), "real");
        QTEST(fixture.width.intValue(), "integer32");
        fixture.key(Qt::Key_Return);
        QCOMPARE(fixture.width.stringValue(), text);
    }
}

void NumberFieldValueTest::integersAreGivenBackExactly_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("integer32");
    QTest::newRow("plain digits") << qint64(1920) << u"1920"_s << 1920;
    QTest::newRow("negative") << qint64(-5) << u"-5"_s << -5;
    QTest::newRow("largest") << largest << u"9223372036854775807"_s << -1;
    QTest::newRow("smallest") << smallest << u"-9223372036854775808"_s << 0;
}

void NumberFieldValueTest::integersAreGivenBackExactly()
{
    QFETCH(qint64, value);
    NumberField field;
    field.setIntegerValue(value);
    QCOMPARE(field.integerValue(), value);
    QTEST(field.text(), "text");
    QTEST(field.intValue(), "integer32");
    QCOMPARE(field.doubleValue(), double(value));
}

void NumberFieldValueTest::doublesAreGivenBackExactly_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("integer");
    QTest::newRow("fraction") << 29.97 << u"29.97"_s << qint64(29);
    QTest::newRow("whole") << 2.0 << u"2"_s << qint64(2);
    QTest::newRow("more digits than are shown") << 0.1 + 0.2 << u"0.3"_s << qint64(0);
    QTest::newRow("negative") << -2.9 << u"-2.9"_s << qint64(-2);
    QTest::newRow("shown with an exponent") << 1e16 << u"1e+16"_s << qint64(10000000000000000);
    QTest::newRow("too large") << 1e19 << u"1e+19"_s << largest;
    QTest::newRow("first that is too large")
        << 9223372036854775808.0 << u"9.223372036854776e+18"_s << largest;
    QTest::newRow("smallest") << -9223372036854775808.0 << u"-9.223372036854776e+18"_s << smallest;
    QTest::newRow("too small") << -1e19 << u"-1e+19"_s << smallest;
    QTest::newRow("infinity") << infinity << u"inf"_s << largest;
    QTest::newRow("negative infinity") << -infinity << u"-inf"_s << smallest;
    QTest::newRow("nan") << notANumber << u"nan"_s << qint64(0);
}

void NumberFieldValueTest::doublesAreGivenBackExactly()
{
    QFETCH(double, value);
    NumberField field;
    field.setDoubleValue(value);
    QVERIFY(field.doubleValue() == value || (value != value && field.doubleValue() != field.doubleValue()));
    QTEST(field.text(), "text");
    QTEST(field.integerValue(), "integer");
}

void NumberFieldValueTest::typedTextTakesThePlaceOfTheNumber()
{
    NumberFieldFixture fixture;
    fixture.width.setDoubleValue(0.1 + 0.2);
    fixture.key(Qt::Key_End);
    fixture.type("5");
    QCOMPARE(fixture.width.doubleValue(), 0.35);
    fixture.key(Qt::Key_Return);
    QCOMPARE(fixture.width.doubleValue(), 0.35);

    fixture.width.setStringValue(u"12"_s);
    QCOMPARE(fixture.width.integerValue(), 12);
}

void NumberFieldValueTest::anEqualTextKeepsItsCaret()
{
    NumberFieldFixture fixture;
    fixture.width.setCursorPosition(1);
    fixture.width.setIntegerValue(853);
    QCOMPARE(fixture.width.cursorPosition(), 1);
}

TESSALY_GUI_TEST_MAIN(NumberFieldValueTest)
#include "number_field_value_test.moc"
