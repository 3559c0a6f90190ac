#include "platform/byte_count.h"
#include "support/test_case.h"

#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;

class ByteCountTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void writesSizes_data();
    void writesSizes();
    void separatorFollowsTheLocale_data();
    void separatorFollowsTheLocale();
    void defaultLocaleIsTheApplications();
};

void ByteCountTest::writesSizes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    const auto row = [](qint64 bytes, const char *text) {
        QTest::addRow("%lld", static_cast<long long>(bytes)) << bytes << QString::fromLatin1(text);
    };
    row(0, "Zero KB");
    row(1, "1 byte");
    row(2, "2 bytes");
    row(999, "999 bytes");
    row(1'000, "1 KB");
    row(1'023, "1 KB");
    row(1'024, "1 KB");
    row(1'499, "1 KB");
    row(1'500, "2 KB");
    row(1'536, "2 KB");
    row(2'499, "2 KB");
    row(2'500, "3 KB"); // a half goes away from zero, not to the even neighbour
    row(9'999, "10 KB");
    row(10'000, "10 KB");
    row(11'999, "12 KB");
    row(99'949, "100 KB");
    row(900'000, "900 KB");
    row(999'499, "999 KB");
    row(999'500, "1 MB"); // never "1000 KB"
    row(999'999, "1 MB");
    row(1'000'000, "1 MB");
    row(1'048'576, "1 MB");
    row(1'049'999, "1 MB");
    row(1'050'000, "1.1 MB");
    row(1'234'567, "1.2 MB");
    row(1'250'000, "1.3 MB");
    row(9'950'000, "10 MB");
    row(10'485'760, "10.5 MB");
    row(12'345'678, "12.3 MB");
    row(99'950'000, "100 MB");
    row(123'456'789, "123.5 MB");
    row(999'900'000, "999.9 MB");
    row(999'949'999, "999.9 MB");
    row(999'950'000, "1 GB");
    row(1'000'000'000, "1 GB");
    row(1'005'000'000, "1.01 GB");
    row(1'050'000'000, "1.05 GB");
    row(1'234'567'890, "1.23 GB");
    row(5'500'000'000, "5.5 GB");
    row(12'345'678'901, "12.35 GB");
    row(999'994'999'999, "999.99 GB");
    row(999'995'000'000, "1 TB");
    row(1'000'000'000'000, "1 TB");
    row(1'234'567'890'123, "1.23 TB");
    row(999'995'000'000'000, "1 PB");
    row(1'000'000'000'000'000, "1 PB");
    row(999'995'000'000'000'000, "1 EB");
    row(1'000'000'000'000'000'000, "1 EB");
    row(std::numeric_limits<qint64>::max(), "9.22 EB");
    row(std::numeric_limits<qint64>::min(), "-9.22 EB");
    row(-1, "-1 byte");
    row(-2, "-2 bytes");
    row(-1'023, "-1 KB");
    row(-2'500, "-3 KB");
    row(-1'234'567'898, "-1.23 GB");
}

void ByteCountTest::writesSizes()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QCOMPARE(byteCountText(bytes, QLocale::c()), text);
}

void ByteCountTest::separatorFollowsTheLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::newRow("american") << u"en_US"_s << u"1.2 MB"_s;
    QTest::newRow("german") << u"de_DE"_s << u"1,2 MB"_s;
    QTest::newRow("french keeps the English unit and the ASCII space") << u"fr_FR"_s << u"1,2 MB"_s;
}

void ByteCountTest::separatorFollowsTheLocale()
{
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QCOMPARE(byteCountText(1'234'567, QLocale(locale)), text);
}

void ByteCountTest::defaultLocaleIsTheApplications()
{
    const QLocale before;
    QLocale::setDefault(QLocale(u"de_DE"_s));
    const QString text = byteCountText(5'500'000'000);
    QLocale::setDefault(before);
    QCOMPARE(text, u"5,5 GB"_s);
}

TESSALY_TEST_MAIN(ByteCountTest)
#include "byte_count_test.moc"
