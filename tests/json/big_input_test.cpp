#include "json_test_case.h"
#include "json/json.h"

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class BigInputTest : public JSONTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void survives100000Brackets_data();
    void survives100000Brackets();
    void reads50Megabytes();
    void refuses50MegabytesOfRubbish_data();
    void refuses50MegabytesOfRubbish();
};

void BigInputTest::survives100000Brackets_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("open") << QByteArray(100'000, '[');
    QTest::newRow("open and closed") << QByteArray(100'000, '[') + QByteArray(100'000, ']');
    QTest::newRow("objects") << QByteArray("{\"a\":").repeated(100'000);
    QTest::newRow("mixed") << QByteArray("[{\"a\":").repeated(50'000);
    QTest::newRow("closed only") << QByteArray(100'000, ']');
}

void BigInputTest::survives100000Brackets()
{
    QFETCH(QByteArray, text);
    QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(text)));
    QCOMPARE(JSON(Object::bytes(text.toStdString())).type(), Type::null);
}

void BigInputTest::reads50Megabytes()
{
    constexpr std::size_t size = 50'000'000;
    const std::string text = "{\"text\":\"" + std::string(size, 'x') + "\"}";
    QCOMPARE(JSON::fromBytes(text)["text"].stringValue().size(), size);
}

void BigInputTest::refuses50MegabytesOfRubbish_data()
{
    QTest::addColumn<QByteArray>("text");
    constexpr qsizetype size = 50'000'000;
    QTest::newRow("brackets") << QByteArray(size, '[');
    QTest::newRow("string without end") << "[\"" + QByteArray(size, 'x');
    QTest::newRow("NUL bytes") << "[" + QByteArray(size, '\0');
    QTest::newRow("digits") << "[" + QByteArray(size, '7') + "]";
    QTest::newRow("blanks") << QByteArray(size, ' ');
    QTest::newRow("letters") << QByteArray(size, 'a');
}

void BigInputTest::refuses50MegabytesOfRubbish()
{
    QFETCH(QByteArray, text);
    QVERIFY_THROWS_EXCEPTION(ParseError, JSON::fromBytes(view(text)));
}

TESSALY_TEST_MAIN(BigInputTest)
#include "big_input_test.moc"
