#include "captured_text.h"
#include "jobs/progress.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QRandomGenerator>
#include <QRegularExpression>

#include <limits>

using namespace tessaly;
using namespace Qt::StringLiterals;
using std::chrono::milliseconds;

namespace {

// Readings at a fixed distance of time, the first after one such distance.
QStringList textsOf(const QList<double> &percents, int distance)
{
    RemainingTime line;
    QStringList texts;
    int elapsed = 0;
    for (const double percent : percents) {
        line.addReading(percent, milliseconds(elapsed += distance));
        texts += line.text();
    }
    return texts;
}

// The line after a job that went evenly until now.
QString textAt(double percent, double seconds)
{
    RemainingTime line;
    constexpr int readings = 20;
    for (int i = 1; i <= readings; ++i) {
        line.addReading(percent * i / readings, milliseconds(qRound64(seconds * 1000 * i / readings)));
    }
    return line.text();
}

class TestRemainingTime : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void saysWhatIsLeft_data();
    void saysWhatIsLeft();
    void waitsUntilItCanBeTold_data();
    void waitsUntilItCanBeTold();
    void leavesOutWhatIsNoProgress_data();
    void leavesOutWhatIsNoProgress();
    void doesNotBelieveWhatIsFarTooLargeTwice();
    void believesAConfirmedJump();
    void tellsOfAFastJob();
    void changesAtMostOnceASecond();
    void doesNotSwingAtABorder();
    void growsWhenTheOldTimeIsClearlyWrong();
    void neverLosesPercent();
};

void TestRemainingTime::saysWhatIsLeft_data()
{
    QTest::addColumn<double>("percent");
    QTest::addColumn<double>("seconds"); // spent
    QTest::addColumn<QString>("text");
    QTest::newRow("a minute") << 42.0 << 43.0 << u"42 % - about 1 minute left"_s;
    QTest::newRow("minutes") << 10.0 << 20.0 << u"10 % - about 3 minutes left"_s;
    QTest::newRow("seconds, in fives") << 50.0 << 12.0 << u"50 % - about 10 seconds left"_s;
    QTest::newRow("seconds, rounded up") << 50.0 << 13.0 << u"50 % - about 15 seconds left"_s;
    QTest::newRow("never less than five seconds") << 99.0 << 10.0 << u"99 % - about 5 seconds left"_s;
    QTest::newRow("55 seconds") << 50.0 << 57.4 << u"50 % - about 55 seconds left"_s;
    QTest::newRow("a minute from 57.5 seconds") << 50.0 << 57.6 << u"50 % - about 1 minute left"_s;
    QTest::newRow("59 minutes") << 50.0 << 3569.0 << u"50 % - about 59 minutes left"_s;
    QTest::newRow("an hour from 59.5 minutes") << 50.0 << 3571.0 << u"50 % - about 1 hour left"_s;
    QTest::newRow("hours") << 25.0 << 3600.0 << u"25 % - about 3 hours left"_s;
    QTest::newRow("days are still hours") << 1.0 << 3600.0 << u"1 % - about 99 hours left"_s;
    QTest::newRow("too long to tell") << 1.0 << 3700.0 << u"1 %"_s;
    QTest::newRow("percent are not rounded up") << 99.96 << 10.0 << u"99 % - about 5 seconds left"_s;
    QTest::newRow("the end") << 100.0 << 10.0 << u"100 %"_s;
    QTest::newRow("sound that outlasts the picture") << 104.0 << 10.0 << u"100 %"_s;
    QTest::newRow("less than a percent of a long job") << 0.5 << 60.0 << u"0 % - about 3 hours left"_s;
}

void TestRemainingTime::saysWhatIsLeft()
{
    QFETCH(double, percent);
    QFETCH(double, seconds);
    QTEST(textAt(percent, seconds), "text");
}

void TestRemainingTime::waitsUntilItCanBeTold_data()
{
    QTest::addColumn<double>("percent");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<bool>("told");
    QTest::newRow("before two seconds") << 50.0 << 1.99 << false;
    QTest::newRow("after two seconds") << 50.0 << 2.0 << true;
    QTest::newRow("before two percent") << 1.99 << 19.0 << false;
    QTest::newRow("at two percent") << 2.0 << 19.0 << true;
    QTest::newRow("below two percent after twenty seconds") << 1.99 << 20.0 << true;
    QTest::newRow("no percent") << 0.0 << 100.0 << false;
}

void TestRemainingTime::waitsUntilItCanBeTold()
{
    QFETCH(double, percent);
    QFETCH(double, seconds);
    QTEST(!textAt(percent, seconds).isEmpty(), "told");
}

void TestRemainingTime::leavesOutWhatIsNoProgress_data()
{
    QTest::addColumn<double>("odd");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("a header's time stamp") << 100.0;
    QTest::newRow("infinite") << infinity;
    QTest::newRow("negative infinite") << -infinity;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("negative") << -3.0;
    QTest::newRow("below what was believed") << 1.0;
    QTest::newRow("no time stamp at all") << 2617138.5;
}

// The odd reading comes first, and then between any two good ones: the line reads as if it had not come.
void TestRemainingTime::leavesOutWhatIsNoProgress()
{
    QFETCH(double, odd);
    const QList<double> good{4, 8, 12, 16, 20, 24, 28};
    const QStringList expected = textsOf(good, 1500);
    QCOMPARE(expected.last(), u"28 % - about 25 seconds left"_s);
    QString last;
    for (qsizetype place = odd < 4 && odd > 0 ? 1 : 0; place < good.size(); ++place) {
        RemainingTime line;
        for (qsizetype i = 0; i < good.size(); ++i) {
            const int elapsed = static_cast<int>(1500 * (i + 1));
            if (i == place) {
                const QString before = line.text();
                line.addReading(odd, milliseconds(elapsed - 250));
                QCOMPARE(line.text(), before);
            }
            line.addReading(good.at(i), milliseconds(elapsed));
            QCOMPARE(line.text(), expected.at(i));
            last = line.text();
        }
    }
    test::seen(u"with a reading of %1 %: \"%2\"; without: \"%3\""_s.arg(QString::number(odd), last,
                                                                        expected.last()));
}

void TestRemainingTime::doesNotBelieveWhatIsFarTooLargeTwice()
{
    const QStringList texts = textsOf({2617138.5, 2617138.5, 4, 8, 12, 16}, 1000);
    QCOMPARE(texts.last(), u"16 % - about 30 seconds left"_s);
}

void TestRemainingTime::believesAConfirmedJump()
{
    const QStringList texts = textsOf({10, 20, 60, 61, 62}, 1000);
    QCOMPARE(texts.at(1), u"20 % - about 10 seconds left"_s);
    QCOMPARE(texts.at(2), texts.at(1));
    QCOMPARE(texts.at(3), u"61 % - about 5 seconds left"_s);
}

void TestRemainingTime::tellsOfAFastJob()
{
    const QStringList texts = textsOf({100, 12, 24, 36, 48, 60, 72, 84, 96}, 500); // the header comes first
    QCOMPARE(texts.at(3), u"36 % - about 5 seconds left"_s);
    QCOMPARE(texts.last(), u"84 % - about 5 seconds left"_s);
}

void TestRemainingTime::changesAtMostOnceASecond()
{
    RemainingTime line;
    int lastChange = -1000;
    int changes = 0;
    for (int elapsed = 50; elapsed <= 10000; elapsed += 50) {
        const QString before = line.text();
        line.addReading(elapsed / 100.0, milliseconds(elapsed));
        if (line.text() == before) continue;
        ++changes;
        QVERIFY2(elapsed - lastChange >= 1000, qPrintable(line.text()));
        lastChange = elapsed;
    }
    QCOMPARE(changes, 9);
}

// The estimate swings by a second around two and a half minutes.
void TestRemainingTime::doesNotSwingAtABorder()
{
    RemainingTime line;
    QStringList times;
    for (int i = 0; i < 40; ++i) {
        const double elapsed = 10 + i;
        const double left = i % 2 == 0 ? 149.5 : 150.5;
        line.addReading(100 * elapsed / (elapsed + left), milliseconds(qRound64(elapsed * 1000)));
        const QString time = line.text().section(u" - "_s, 1);
        if (times.isEmpty() || times.last() != time) times += time;
    }
    QCOMPARE(times, QStringList(u"about 2 minutes left"_s));
}

void TestRemainingTime::growsWhenTheOldTimeIsClearlyWrong()
{
    RemainingTime line;
    line.addReading(10, milliseconds(8000));
    QCOMPARE(line.text(), u"10 % - about 1 minute left"_s); // 72 seconds
    line.addReading(10, milliseconds(11600));
    QCOMPARE(line.text(), u"10 % - about 1 minute left"_s); // 104.4 seconds
    line.addReading(10, milliseconds(11700));
    QCOMPARE(line.text(), u"10 % - about 1 minute left"_s); // changed too lately
    line.addReading(10, milliseconds(12700));
    QCOMPARE(line.text(), u"10 % - about 2 minutes left"_s); // 114.3 seconds
    line.addReading(15, milliseconds(14000));
    QCOMPARE(line.text(), u"15 % - about 1 minute left"_s); // 79 seconds: less is told at once
}

void TestRemainingTime::neverLosesPercent()
{
    QRandomGenerator random(42);
    for (int run = 0; run < 200; ++run) {
        RemainingTime line;
        int shown = 0;
        for (int elapsed = 500; elapsed < 60000; elapsed += 500) {
            line.addReading(random.bounded(140.0) - 10, milliseconds(elapsed));
            if (line.text().isEmpty()) continue;
            static const QRegularExpression form(
                u"\\A(\\d+) %( - about [1-9]\\d* (second|minute|hour)s? left)?\\z"_s);
            const auto match = form.match(line.text());
            QVERIFY2(match.hasMatch(), qPrintable(line.text()));
            const int percent = match.captured(1).toInt();
            QVERIFY2(percent >= shown && percent <= 100, qPrintable(line.text()));
            shown = percent;
        }
        QVERIFY(shown > 0);
    }
}

} // namespace

TESSALY_TEST_MAIN(TestRemainingTime)
#include "remaining_time_test.moc"
