#include "platform/debug_description.h"
#include "support/test_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

class DebugDescriptionTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void describesText_data();
    void describesText();
    void describesLists_data();
    void describesLists();
};

void DebugDescriptionTest::describesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("description");
    QTest::newRow("empty") << u""_s << uR"("")"_s;
    QTest::newRow("plain") << u"-i"_s << uR"("-i")"_s;
    QTest::newRow("double quote") << u"a\"b"_s << uR"("a\"b")"_s;
    QTest::newRow("backslash") << uR"(a\b)"_s << uR"("a\\b")"_s;
    QTest::newRow("apostrophe") << u"it's"_s << uR"("it\'s")"_s;
    QTest::newRow("line feed") << u"a\nb"_s << uR"("a\nb")"_s;
    QTest::newRow("carriage return") << u"a\rb"_s << uR"("a\rb")"_s;
    QTest::newRow("tab") << u"a\tb"_s << uR"("a\tb")"_s;
    QTest::newRow("NUL") << u"a\0b"_s << uR"("a\0b")"_s;
    QTest::newRow("escape character") << u"\x1B[0m"_s << uR"("\u{1B}[0m")"_s;
    QTest::newRow("bell") << u"\a"_s << uR"("\u{07}")"_s;
    QTest::newRow("last control") << u"\x1F"_s << uR"("\u{1F}")"_s;
    QTest::newRow("delete") << u"\x7F"_s << uR"("\u{7F}")"_s;
    QTest::newRow("printable ASCII") << u" !#%&()*+,-./:;<=>?@[]^_`{|}~"_s
                                     << uR"(" !#%&()*+,-./:;<=>?@[]^_`{|}~")"_s;
    QTest::newRow("other scripts") << u"é漢😀"_s << u"\"é漢😀\""_s;
    QTest::newRow("mark on a letter") << u"e\u0301"_s << u"\"e\u0301\""_s;
    QTest::newRow("mark at the start") << u"\u0301e"_s << uR"("\u{0301}e")"_s;
    QTest::newRow("mark after an escape") << u"\n\u0301"_s << uR"("\n\u{0301}")"_s;
    QTest::newRow("two marks at the start") << u"\u0301\u0308"_s << uR"("\u{0301}\u{0308}")"_s;
    QTest::newRow("two marks on a letter") << u"e\u0301\u0308"_s << u"\"e\u0301\u0308\""_s;
    QTest::newRow("mark above FFFF at the start") << u"\U0001D165"_s << uR"("\u{0001D165}")"_s;
}

void DebugDescriptionTest::describesText()
{
    QFETCH(QString, text);
    QFETCH(QString, description);
    QCOMPARE(debugDescription(text), description);
}

void DebugDescriptionTest::describesLists_data()
{
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QString>("description");
    QTest::newRow("empty") << QStringList() << u"[]"_s;
    QTest::newRow("one") << QStringList{u"-y"_s} << uR"(["-y"])"_s;
    QTest::newRow("two") << QStringList{u"-i"_s, u"/a b.mp4"_s} << uR"(["-i", "/a b.mp4"])"_s;
    QTest::newRow("escapes inside") << QStringList{u"it's"_s, u""_s} << uR"(["it\'s", ""])"_s;
}

void DebugDescriptionTest::describesLists()
{
    QFETCH(QStringList, list);
    QFETCH(QString, description);
    QCOMPARE(listDescription(list), description);
}

TESSALY_TEST_MAIN(DebugDescriptionTest)
#include "debug_description_test.moc"
