#include "cli/terminal_text.h"
#include "support/test_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly;

class TerminalTextTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void escapes_data();
    void escapes();
    void escapesEveryControlCharacter();
};

void TerminalTextTest::escapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char *name, const QString &text, const QString &shown) {
        QTest::newRow(name) << text << shown;
    };
    row("empty", QString(), QString());
    row("plain", u"a b-c.mp4"_s, u"a b-c.mp4"_s);
    row("quotes, backslash, markup", u"'a' \"b\" \\n <b>&"_s, u"'a' \"b\" \\n <b>&"_s);
    row("other scripts", u"é漢ع🎬"_s, u"é漢ع🎬"_s);
    row("joined emoji", u"👩\u200D🚀"_s, u"👩\u200D🚀"_s);
    row("line break", u"a\nb\r\n"_s, u"a\\u{0A}b\\u{0D}\\u{0A}"_s);
    row("colour", u"\x1B[31mred"_s, u"\\u{1B}[31mred"_s);
    row("colour in one character", QChar(0x9B) + u"31mred"_s, u"\\u{9B}31mred"_s);
    row("NUL", u"a\0b"_s, u"a\\u{00}b"_s);
    row("delete", u"a\x7F"_s, u"a\\u{7F}"_s);
    row("line separator", u"a\u2028b"_s, u"a\\u{2028}b"_s);
    row("paragraph separator", u"a\u2029b"_s, u"a\\u{2029}b"_s);
    row("right to left override", u"a\u202E4pm.exe"_s, u"a\\u{202E}4pm.exe"_s);
    row("left to right embedding", u"\u202A"_s, u"\\u{202A}"_s);
    row("isolates", u"\u2066\u2069"_s, u"\\u{2066}\\u{2069}"_s);
    row("their neighbours", u"\u2027\u2030\u2065\u206A"_s, u"\u2027\u2030\u2065\u206A"_s);
}

void TerminalTextTest::escapes()
{
    QFETCH(QString, text);
    QTEST(terminalText(text), "shown");
}

void TerminalTextTest::escapesEveryControlCharacter()
{
    for (char16_t code = 0; code < 0x100; ++code) {
        const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
        QCOMPARE(terminalText(QString(QChar(code))).size() > 1, isControl);
    }
}

TESSALY_TEST_MAIN(TerminalTextTest)
#include "terminal_text_test.moc"
