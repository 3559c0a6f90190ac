#include "captured_text.h"
#include "jobs/progress.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QPointF>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cmath>
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
    void doesNotJumpInARealJob();
    void doesNotJumpInNoise_data();
    void doesNotJumpInNoise();
    void followsAChangeOfSpeed();
    void tellsOfAStall();
    void aStallIsNoFinish();
    void tellsOfAStallAnywhere_data();
    void tellsOfAStallAnywhere();
    void tellsWhatIsConverted();
    void neverLosesPercent();
};

void TestRemainingTime::saysWhatIsLeft_data()
{
    QTest::addColumn<double>("percent");
    QTest::addColumn<double>("seconds"); // spent
    QTest::addColumn<QString>("text");
    QTest::newRow("42 percent") << 42.0 << 43.0 << u"42 % - about 1 minute left"_s;
    QTest::newRow("minutes") << 10.0 << 20.0 << u"10 % - about 3 minutes left"_s;
    QTest::newRow("seconds, in fives") << 50.0 << 12.0 << u"50 % - about 10 seconds left"_s;
    QTest::newRow("seconds, rounded up") << 50.0 << 13.0 << u"50 % - about 15 seconds left"_s;
    QTest::newRow("never less than five seconds") << 98.0 << 10.0 << u"98 % - about 5 seconds left"_s;
    QTest::newRow("a minute") << 50.0 << 57.1 << u"50 % - about 1 minute left"_s;
    QTest::newRow("55 seconds, clearly less than a minute")
        << 50.0 << 56.9 << u"50 % - about 55 seconds left"_s;
    QTest::newRow("an hour") << 50.0 << 3565.0 << u"50 % - about 1 hour left"_s;
    QTest::newRow("59 minutes, clearly less than an hour")
        << 50.0 << 3563.0 << u"50 % - about 59 minutes left"_s;
    QTest::newRow("hours") << 25.0 << 3600.0 << u"25 % - about 3 hours left"_s;
    QTest::newRow("days are still hours") << 1.0 << 3600.0 << u"1 % - about 99 hours left"_s;
    QTest::newRow("too long to tell") << 1.0 << 3700.0 << u"1 %"_s;
    QTest::newRow("percent are not rounded up") << 98.96 << 10.0 << u"98 % - about 5 seconds left"_s;
    QTest::newRow("the last seconds") << 99.96 << 10.0 << u"99 % - finishing"_s;
    QTest::newRow("the last percent of hours") << 99.0 << 36000.0 << u"99 % - about 6 minutes left"_s;
    QTest::newRow("the end") << 100.0 << 10.0 << u"100 % - finishing"_s;
    QTest::newRow("sound that outlasts the picture") << 104.0 << 10.0 << u"100 % - finishing"_s;
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
    QTest::newRow("no percent") << 0.0 << 9.99 << false;
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
    QCOMPARE(texts.last(), u"16 % - about 35 seconds left"_s);
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

// What the line said in turn, without its percent.
QStringList timesOf(const QList<QPointF> &readings)
{
    RemainingTime line;
    QStringList times;
    for (const QPointF &reading : readings) {
        line.addReading(reading.y(), milliseconds(qRound64(reading.x() * 1000)));
        const QString time = line.text().section(u" - "_s, 1);
        if (!time.isEmpty() && (times.isEmpty() || times.last() != time)) times += time;
    }
    return times;
}

int secondsOf(const QString &time)
{
    const QStringList words = time.split(u' ');
    if (words.value(0) != u"about"_s) return 0;
    const QString unit = words.value(2);
    return words.at(1).toInt() * (unit.startsWith(u"second"_s)   ? 1
                                  : unit.startsWith(u"minute"_s) ? 60
                                                                 : 3600);
}

qsizetype timesGrown(const QStringList &times)
{
    qsizetype grown = 0;
    for (qsizetype i = 1; i < times.size(); ++i)
        grown += secondsOf(times.at(i)) > secondsOf(times.at(i - 1)) ? 1 : 0;
    return grown;
}

// Readings every half second of a converter whose speed (percent a second) swings by scenes and by noise.
QList<QPointF> noisyReadings(quint32 seed, double speed, double noise, double slowFrom = 1e9)
{
    QRandomGenerator random(seed);
    QList<QPointF> readings;
    double swing = 0;
    double percent = 0;
    for (double at = 0.5; percent < 100; at += 0.5) {
        swing = 0.9 * swing + noise * (random.generateDouble() - 0.5);
        percent += 0.5 * speed * std::exp(swing) * (at < slowFrom ? 1.0 : 0.3);
        readings += QPointF(at, qMin(percent, 100.0));
    }
    return readings;
}

// Readings are early and late by turns, by a second of five minutes.
void TestRemainingTime::doesNotSwingAtABorder()
{
    QList<QPointF> readings;
    for (int second = 1; second < 300; ++second) {
        const double late = second % 2 == 0 ? 0.5 : -0.5;
        readings += QPointF(second, 100 * (second + late) / 300);
    }
    QStringList expected;
    for (int minutes = 5; minutes > 1; --minutes)
        expected += u"about %1 minutes left"_s.arg(minutes);
    expected += u"about 1 minute left"_s;
    for (int seconds = 55; seconds >= 5; seconds -= 5)
        expected += u"about %1 seconds left"_s.arg(seconds);
    expected += u"finishing"_s;
    QCOMPARE(timesOf(readings), expected);
}

// A picture in motion, 30 seconds of black, and one in motion again, as a converter told of them.
void TestRemainingTime::doesNotJumpInARealJob()
{
    QList<QPointF> readings;
    for (const QByteArray &line : test::capturedText("readings-scenes").split('\n')) {
        const QByteArrayList figures = line.split(' ');
        if (figures.size() == 2) readings += QPointF(figures.at(0).toDouble(), figures.at(1).toDouble());
    }
    QCOMPARE(readings.size(), 232);
    const QStringList times = timesOf(readings);
    QCOMPARE(timesGrown(times), 0);
    QCOMPARE(times.first(), u"about 8 minutes left"_s);
    QCOMPARE(times.last(), u"finishing"_s);
}

void TestRemainingTime::doesNotJumpInNoise_data()
{
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("noise");
    QTest::addColumn<int>("grown"); // in 50 jobs together, at most
    QTest::newRow("a minute, calm") << 100 / 60.0 << 0.2 << 0;
    QTest::newRow("a minute, noisy") << 100 / 60.0 << 0.8 << 8;
    QTest::newRow("two minutes, noisy") << 100 / 120.0 << 0.8 << 20;
    QTest::newRow("a quarter of an hour, noisy") << 100 / 900.0 << 0.8 << 75;
}

void TestRemainingTime::doesNotJumpInNoise()
{
    QFETCH(double, speed);
    QFETCH(double, noise);
    QFETCH(int, grown);
    qsizetype sum = 0;
    for (quint32 seed = 1; seed <= 50; ++seed)
        sum += timesGrown(timesOf(noisyReadings(seed, speed, noise)));
    test::seen(u"%1: grew %2 times in 50 jobs"_s.arg(QLatin1StringView(QTest::currentDataTag())).arg(sum));
    QVERIFY2(sum <= grown, qPrintable(QString::number(sum)));
}

// From 40 seconds on the job has a third of its speed: 180 percent of it at the old one remain.
void TestRemainingTime::followsAChangeOfSpeed()
{
    for (quint32 seed = 1; seed <= 20; ++seed) {
        RemainingTime line;
        const QList<QPointF> readings = noisyReadings(seed, 1, 0.2, 40);
        const double end = readings.last().x();
        for (const QPointF &reading : readings) {
            line.addReading(reading.y(), milliseconds(qRound64(reading.x() * 1000)));
            const int left = secondsOf(line.text().section(u" - "_s, 1));
            if (reading.x() > 90 && end - reading.x() > 20)
                QVERIFY2(left > 0.5 * (end - reading.x()) && left < 1.6 * (end - reading.x()),
                         qPrintable(line.text() + u" of "_s + QString::number(end - reading.x())));
        }
    }
}

void TestRemainingTime::tellsOfAStall()
{
    const auto at = [](double seconds) { return milliseconds(qRound64(seconds * 1000)); };
    RemainingTime line;
    for (int second = 1; second <= 20; ++second)
        line.addReading(2 * second, at(second));
    QCOMPARE(line.text(), u"40 % - about 30 seconds left"_s);
    line.tick(at(29.9));
    QVERIFY(!line.isStalled());
    QCOMPARE(line.text(), u"40 % - about 30 seconds left"_s);
    line.tick(at(30));
    QVERIFY(line.isStalled());
    QCOMPARE(line.text(), u"40 % - no progress for 10 s"_s);
    line.tick(at(30.9));
    QCOMPARE(line.text(), u"40 % - no progress for 10 s"_s); // changed too lately
    line.addReading(40, at(32.5));                           // the converter lives, but stands
    QCOMPARE(line.text(), u"40 % - no progress for 12 s"_s);
    line.tick(at(20 + 119.9));
    QCOMPARE(line.text(), u"40 % - no progress for 119 s"_s);
    line.tick(at(20 + 190));
    QCOMPARE(line.text(), u"40 % - no progress for 3 minutes"_s);
    line.addReading(42, at(211)); // goes on as before
    QVERIFY(!line.isStalled());
    QCOMPARE(line.text(), u"42 % - about 30 seconds left"_s);
}

// The last percent of a long job are minutes.
void TestRemainingTime::aStallIsNoFinish()
{
    RemainingTime line;
    for (int percent = 10; percent <= 99; ++percent)
        line.addReading(percent, milliseconds(9000 * percent));
    line.tick(milliseconds(9000 * 99 + 30000));
    QCOMPARE(line.text(), u"99 % - no progress for 30 s"_s);
}

void TestRemainingTime::tellsOfAStallAnywhere_data()
{
    QTest::addColumn<double>("percent");
    QTest::addColumn<QString>("text");
    QTest::newRow("before the first picture") << 0.0 << u"no progress for 12 s"_s;
    QTest::newRow("before the first percent") << 0.5 << u"0 % - no progress for 12 s"_s;
    QTest::newRow("soon") << 1.0 << u"1 % - no progress for 12 s"_s;
    QTest::newRow("where the file is completed") << 99.5 << u"99 % - finishing"_s;
    QTest::newRow("at the end") << 100.0 << u"100 % - finishing"_s;
}

void TestRemainingTime::tellsOfAStallAnywhere()
{
    QFETCH(double, percent);
    RemainingTime line;
    line.addReading(percent, milliseconds(0));
    line.addReading(percent, milliseconds(0)); // believed at last
    line.tick(milliseconds(12000));
    QTEST(line.text(), "text");
}

void TestRemainingTime::tellsWhatIsConverted()
{
    const auto at = [](int seconds) { return milliseconds(1000 * seconds); };
    RemainingTime line;
    line.addConverted(3, at(1));
    QCOMPARE(line.text(), u""_s);
    line.addConverted(5.2, at(2));
    QCOMPARE(line.text(), u"00:00:05 converted"_s);
    line.addConverted(3000, at(3)); // a tag of the header: not believed
    line.addConverted(8.9, at(4));
    QCOMPARE(line.text(), u"00:00:08 converted"_s);
    line.addConverted(6, at(6)); // going back is no progress
    QCOMPARE(line.text(), u"00:00:08 converted"_s);
    line.tick(at(16));
    QCOMPARE(line.text(), u"00:00:08 converted - no progress for 12 s"_s);
    for (int i = 1; i <= 100; ++i)
        line.addConverted(119.23 * i, at(16 + i));
    QCOMPARE(line.text(), u"03:18:43 converted"_s);
    QCOMPARE(line.converted(), 11923.0);
    line.addConverted(std::numeric_limits<double>::infinity(), at(118));
    line.addConverted(362000, at(119)); // no time of day
    line.addConverted(362000, at(120));
    QCOMPARE(line.text(), u"03:18:43 converted"_s);
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
            static const QRegularExpression form(u"\\A(\\d+) %( - (about [1-9]\\d* (second|minute|hour)s? "
                                                 u"left|no progress for \\d+ (s|minutes)|"
                                                 "finishing))?\\z"_s);
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
