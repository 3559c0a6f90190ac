#include "jobs/utils.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <unistd.h>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

const auto timeStamp = u"([0-9][0-9]):([0-9][0-9]):([0-9][0-9]).([0-9][0-9])"_s;

class TestUtils : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void findsTimeStamps_data();
    void findsTimeStamps();
    void treatsLineTerminatorsAsThePlatformDoes_data();
    void treatsLineTerminatorsAsThePlatformDoes();
    void printsAnInvalidPattern_data();
    void printsAnInvalidPattern();
    void readsSeconds_data();
    void readsSeconds();
    void refusesOtherTimeStamps_data();
    void refusesOtherTimeStamps();
};

void TestUtils::findsTimeStamps_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("progress") << "time=00:01:02.34 bitrate" << QStringList(u"00:01:02.34"_s);
    QTest::newRow("header") << "Duration: 01:02:03.45, start" << QStringList(u"01:02:03.45"_s);
    QTest::newRow("a colon for the dot") << "00:01:02:34" << QStringList(u"00:01:02:34"_s);
    QTest::newRow("a letter for the dot") << "00:01:02x34" << QStringList(u"00:01:02x34"_s);
    QTest::newRow("three digits of hours") << "100:01:02.34" << QStringList(u"00:01:02.34"_s);
    QTest::newRow("four digits at the end") << "00:01:02.3456" << QStringList(u"00:01:02.34"_s);
    QTest::newRow("behind an emoji") << u"😀00:01:02.34"_s << QStringList(u"00:01:02.34"_s);
    QTest::newRow("an emoji for the dot") << u"00:01:02😀34"_s << QStringList(u"00:01:02😀34"_s);
    QTest::newRow("carriage return for the dot") << "00:01:02\r34" << QStringList();
    QTest::newRow("line feed for the dot") << "00:01:02\n34" << QStringList();
    QTest::newRow("not available") << "N/A" << QStringList();
    QTest::newRow("one digit of hours") << "0:01:02.34" << QStringList();
    QTest::newRow("one digit at the end") << "00:01:02.3" << QStringList();
    QTest::newRow("empty") << "" << QStringList();
    QTest::newRow("other digits") << u"٠٠:٠١:٠٢.٣٤"_s << QStringList();
    QTest::newRow("two, in order") << "00:01:02.34 00:05:06.78"
                                   << QStringList{u"00:01:02.34"_s, u"00:05:06.78"_s};
    QTest::newRow("two, touching") << "00:01:02.3400:05:06.78"
                                   << QStringList{u"00:01:02.34"_s, u"00:05:06.78"_s};
}

void TestUtils::findsTimeStamps()
{
    QFETCH(QString, text);
    QTEST(Utils::matchesForRegex(timeStamp, text), "expected");
}

void TestUtils::treatsLineTerminatorsAsThePlatformDoes_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");
    const QStringList none;
    const struct
    {
        const char *name;
        char16_t character;
    } terminators[] = {{"line feed", u'\n'},           {"vertical tab", u'\v'}, {"form feed", u'\f'},
                       {"carriage return", u'\r'},     {"next line", 0x85},     {"line separator", 0x2028},
                       {"paragraph separator", 0x2029}};
    for (const auto &[name, character] : terminators) {
        QTest::addRow("dot against %s", name) << "a.b" << (u"a"_s + QChar(character) + u'b') << none;
        QTest::addRow("end before %s", name) << "a$" << (u"a"_s + QChar(character)) << QStringList(u"a"_s);
        QTest::addRow("end not at inner %s", name) << "a$" << (u"a"_s + QChar(character) + u'b') << none;
    }
    QTest::newRow("end before both") << "a$"
                                     << "a\r\n"
                                     << QStringList(u"a"_s);
    QTest::newRow("end not between both") << "\\r$"
                                          << "a\r\n"
                                          << none;
    QTest::newRow("end at the end") << "a$"
                                    << "ba" << QStringList(u"a"_s);
    QTest::newRow("end not before two") << "a$"
                                        << "a\n\n"
                                        << none;
    QTest::newRow("start only at the start") << "^a"
                                             << "a\na" << QStringList(u"a"_s);
    QTest::newRow("tab is no terminator") << "a.b"
                                          << "a\tb" << QStringList(u"a\tb"_s);
    QTest::newRow("escaped dot") << "a\\.b"
                                 << "a.b axb" << QStringList(u"a.b"_s);
    QTest::newRow("escaped backslash, then a dot") << R"(\\.)"
                                                   << R"(\x)" << QStringList(uR"(\x)"_s);
    QTest::newRow("dot in a class") << "a[.]b"
                                    << "a.b axb" << QStringList(u"a.b"_s);
    QTest::newRow("dollar in a class") << "a[$]"
                                       << "a$" << QStringList(u"a$"_s);
    QTest::newRow("bracket first in a class") << "[].]x"
                                              << "]x .x ax" << QStringList{u"]x"_s, u".x"_s};
    QTest::newRow("bracket first in a negated class") << "[^].]x"
                                                      << "]x .x ax" << QStringList(u"ax"_s);
    QTest::newRow("escaped bracket in a class") << R"([\].]x)"
                                                << "]x .x ax" << QStringList{u"]x"_s, u".x"_s};
    QTest::newRow("named class, then a dot") << "[[:digit:].]x"
                                             << "1x .x ax" << QStringList{u"1x"_s, u".x"_s};
    QTest::newRow("dot behind a class") << "[ab].c"
                                        << "a\rc bxc" << QStringList(u"bxc"_s);
    QTest::newRow("quoted dot") << R"(\Qa.b\E.)"
                                << "axbc a.bc" << QStringList(u"a.bc"_s);
    QTest::newRow("quotation without an end") << R"(\Qa.)"
                                              << "ax a." << QStringList(u"a."_s);
    QTest::newRow("case counts") << "a"
                                 << "A" << none;
    QTest::newRow("whole match, not its groups") << "(a)(b)"
                                                 << "ab" << QStringList(u"ab"_s);
    QTest::newRow("empty matches") << "x*"
                                   << "ax" << QStringList{u""_s, u"x"_s, u""_s};
}

void TestUtils::treatsLineTerminatorsAsThePlatformDoes()
{
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QTEST(Utils::matchesForRegex(pattern, text), "expected");
}

void TestUtils::printsAnInvalidPattern_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("open group") << "(abc";
    QTest::newRow("open class") << "[abc";
    QTest::newRow("open class that ends in a backslash") << "[abc\\";
    QTest::newRow("a backslash at the end") << "abc\\";
    QTest::newRow("a dot is shown as it was written") << "(a.c$";
    QTest::newRow("a percent sign is no placeholder") << "(%1";
}

void TestUtils::printsAnInvalidPattern()
{
    QFETCH(QString, pattern);
    QStringList found;
    const QByteArray printed =
        test::writtenTo(STDOUT_FILENO, [&] { found = Utils::matchesForRegex(pattern, u"(abc"_s); });
    QCOMPARE(QString::fromUtf8(printed), u"invalid regex: The value “"_s + pattern + u"” is invalid.\n"_s);
    QCOMPARE(found, QStringList());
}

void TestUtils::readsSeconds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("seconds");
    QTest::newRow("as the converter writes it") << "00:01:05.50" << 65.5;
    QTest::newRow("zero") << "00:00:00.00" << 0.0;
    QTest::newRow("hours") << "02:00:00.00" << 7200.0;
    QTest::newRow("99 hours") << "99:59:59.99" << 99 * 3600 + 59 * 60 + 0.99 + 59;
    QTest::newRow("added in order") << "00:00:01.10" << 0.1 + 1;
    QTest::newRow("one piece serves as hours and seconds when two are given")
        << "01:02.50" << 3600 + 120 + 0.5 + 2;
    QTest::newRow("four pieces: the third is not read") << "01:02:xx:04.00" << 3600 + 120 + 4.0;
    QTest::newRow("three halves: the middle is not read") << "00:00:01.xx.50" << 1.5;
    QTest::newRow("empty pieces are dropped") << "..00::01:05..50." << 65.5;
    QTest::newRow("exponent") << "00:00:1e1.50" << 10.5;
    QTest::newRow("negative minutes") << "00:-1:00.00" << -60.0;
}

void TestUtils::readsSeconds()
{
    QFETCH(QString, text);
    QFETCH(double, seconds);
    const std::optional<double> read = Utils::secondsFromTimestamp(text);
    QVERIFY(read);
    QCOMPARE(*read - seconds, 0.0); // exactly, not only nearly
}

void TestUtils::refusesOtherTimeStamps_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << "";
    QTest::newRow("only separators") << ".:.";
    QTest::newRow("only dots") << "...";
    QTest::newRow("no dot") << "00:01:05";
    QTest::newRow("a colon for the dot") << "00:01:05:50";
    QTest::newRow("a letter for the dot") << "00:01:05x50";
    QTest::newRow("no colon") << "5.50";
    QTest::newRow("hours are no number") << "xx:01:05.50";
    QTest::newRow("minutes are no number") << "00:xx:05.50";
    QTest::newRow("seconds are no number") << "00:01:xx.50";
    QTest::newRow("centiseconds are no number") << "00:01:05.xx";
    QTest::newRow("a number with more behind it") << "00:01:05s.50";
    QTest::newRow("a space in front") << " 00:01:05.50";
    QTest::newRow("a comma for the dot") << "00:01:05,50";
    QTest::newRow("hexadecimal") << "00:01:0x5.50";
    QTest::newRow("infinite") << "inf:01:05.50";
    QTest::newRow("not a number") << "00:nan:05.50";
    QTest::newRow("too large") << "1e999:01:05.50";
    QTest::newRow("other digits") << u"00:01:٠٥.50"_s;
    QTest::newRow("not available") << "N/A";
}

void TestUtils::refusesOtherTimeStamps()
{
    QFETCH(QString, text);
    QCOMPARE(Utils::secondsFromTimestamp(text), std::nullopt);
}

} // namespace

TESSALY_TEST_MAIN(TestUtils)
#include "utils_test.moc"
