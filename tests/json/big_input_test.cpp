#include "json_test_case.h"
#include "support/seen.h"
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
    void hostileTextGivesAValueOrAnError_data();
    void hostileTextGivesAValueOrAnError();
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

void BigInputTest::hostileTextGivesAValueOrAnError_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("outcome"); // its beginning
    const auto error = u"error: "_s;
    QTest::newRow("100,000 brackets") << QByteArray(100'000, '[') + QByteArray(100'000, ']')
                                      << error + u"Too many nested arrays or dictionaries"_s;
    QTest::newRow("a number too large") << QByteArray("[1e400]") << error;
    QTest::newRow("a number of 400 digits") << "[1" + QByteArray(400, '0') + "]" << error;
    QTest::newRow("a number of 30 digits")
        << QByteArray("[123456789012345678901234567890]") << u"value: [123456789012345678901234567890]"_s;
    QTest::newRow("equal keys") << QByteArray(R"({"a":1,"a":[2],"a":3})") << u"value: {\"a\":3}"_s;
    QTest::newRow("an escaped NUL") << QByteArray(R"(["a\u0000b"])") << u"value: [\"a\\u0000b\"]"_s;
    QTest::newRow("a bare NUL") << QByteArray("[\"a\0b\"]", 7) << error;
    QTest::newRow("a lone high surrogate") << QByteArray(R"(["\uD834"])") << error;
    QTest::newRow("a lone low surrogate") << QByteArray(R"(["\uDD1E"])") << error;
}

void BigInputTest::hostileTextGivesAValueOrAnError()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, outcome);
    QString found;
    try {
        found =
            shown(JSON::fromBytes(view(text)).description()).remove(u' ').remove(u'\n').prepend(u"value: "_s);
    } catch (const ParseError &error) {
        found = u"error: "_s + shown(error.text());
    }
    seen(found);
    QVERIFY2(found.startsWith(outcome), qPrintable(found));
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
