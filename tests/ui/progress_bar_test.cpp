#include "ui/progress_bar.h"

#include "support/test_case.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionProgressBar>
#include <QTimer>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace tessaly;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct ShownBar : ProgressBar
{
    ShownBar()
    {
        resize(404, 20);
        show();
    }

    // Pixels of the middle row in the colour of the highlight.
    int filledPixels()
    {
        QPalette colours = palette();
        colours.setColor(QPalette::Highlight, Qt::red);
        setPalette(colours);
        const QImage image = grab().toImage();
        int filled = 0;
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, image.height() / 2);
            filled += colour.red() > 2 * colour.green();
        }
        return filled;
    }

    bool isDrawnBusy() const
    {
        QStyleOptionProgressBar option;
        initStyleOption(&option);
        return option.minimum == 0 && option.maximum == 0; // what styles understand by busy
    }
};

// What the bar announces from now on.
class Announcements
{
public:
    explicit Announcements(const ProgressBar &bar) : m_spy(&bar, &ProgressBar::announced) {}

    QList<int> values() const
    {
        QList<int> values;
        for (const QList<QVariant> &announced : m_spy)
            values += announced.first().toInt();
        return values;
    }

private:
    QSignalSpy m_spy;
};

} // namespace

class ProgressBarTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void givesBackWhatItWasGiven_data();
    void givesBackWhatItWasGiven();
    void isDrawnWithinTheBar_data();
    void isDrawnWithinTheBar();
    void isDrawnFinerThanPercents();
    void becomesCalmAgain();
    void writesNoTextUnlessAsked();
    void tellsAssistiveTechnologyTheValue();
    void announcesTheLatestValueAtACalmPace();
    void announcesNoValueTwice();
    void announcesNothingWhileHiddenOrBusy_data();
    void announcesNothingWhileHiddenOrBusy();
};

void ProgressBarTest::givesBackWhatItWasGiven_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("busy");
    QTest::newRow("zero") << 0.0 << false;
    QTest::newRow("third") << 100.0 / 3 << false;
    QTest::newRow("full") << 100.0 << false;
    QTest::newRow("beyond") << 123.456 << false;
    QTest::newRow("far beyond") << 1e300 << false;
    QTest::newRow("negative") << -5.5 << false;
    QTest::newRow("infinity") << infinity << true;
    QTest::newRow("negative infinity") << -infinity << true;
    QTest::newRow("nan") << notANumber << true;
}

void ProgressBarTest::givesBackWhatItWasGiven()
{
    QFETCH(double, value);
    QFETCH(bool, busy);
    ShownBar bar;
    QCOMPARE(bar.doubleValue(), 0.0);
    QVERIFY(!bar.isDrawnBusy());
    bar.setDoubleValue(value);
    QVERIFY(bar.doubleValue() == value || (std::isnan(value) && std::isnan(bar.doubleValue())));
    QCOMPARE(bar.isDrawnBusy(), busy);
}

void ProgressBarTest::isDrawnWithinTheBar_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("filled");
    QTest::newRow("empty") << 0.0 << 0;
    QTest::newRow("negative") << -50.0 << 0;
    QTest::newRow("quarter") << 25.0 << 100;
    QTest::newRow("half") << 50.0 << 200;
    QTest::newRow("full") << 100.0 << 400;
    QTest::newRow("beyond") << 900.0 << 400;
}

void ProgressBarTest::isDrawnWithinTheBar()
{
    QFETCH(double, value);
    QFETCH(int, filled);
    ShownBar bar;
    bar.setDoubleValue(40);
    bar.setDoubleValue(value);
    const int drawn = bar.filledPixels();
    QVERIFY2(std::abs(drawn - filled) <= 4, qPrintable(QString::number(drawn)));
}

void ProgressBarTest::isDrawnFinerThanPercents()
{
    ShownBar bar;
    bar.setDoubleValue(50);
    const int before = bar.filledPixels();
    bar.setDoubleValue(50.5);
    QCOMPARE(bar.filledPixels(), before + 2);
}

void ProgressBarTest::becomesCalmAgain()
{
    ShownBar bar;
    bar.setDoubleValue(50);
    bar.setDoubleValue(notANumber);
    QVERIFY(bar.isDrawnBusy());
    bar.setDoubleValue(50);
    QVERIFY(!bar.isDrawnBusy());
    QVERIFY(std::abs(bar.filledPixels() - 200) <= 4);
}

void ProgressBarTest::writesNoTextUnlessAsked()
{
    ShownBar bar;
    QCOMPARE(bar.text(), u"0%"_s);
    bar.setDoubleValue(42.4);
    QVERIFY(!bar.isTextVisible());
    bar.setTextVisible(true);
    QCOMPARE(bar.text(), u"42%"_s);
    bar.setDoubleValue(infinity);
    QCOMPARE(bar.text(), QString());
}

void ProgressBarTest::tellsAssistiveTechnologyTheValue()
{
    ShownBar bar;
    bar.setDoubleValue(42.4);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&bar);
    QVERIFY(interface != nullptr);
    QCOMPARE(interface->role(), QAccessible::ProgressBar);
    QAccessibleValueInterface *value = interface->valueInterface();
    QVERIFY(value != nullptr);
    QCOMPARE(value->currentValue().toDouble(), 42.4);
    QCOMPARE(value->minimumValue().toDouble(), 0.0);
    QCOMPARE(value->maximumValue().toDouble(), 100.0);
    QCOMPARE(interface->text(QAccessible::Value), u"42 %"_s);
    value->setCurrentValue(10);
    QCOMPARE(bar.doubleValue(), 42.4);
    bar.setDoubleValue(120);
    QCOMPARE(value->currentValue().toDouble(), 100.0);
    QCOMPARE(interface->text(QAccessible::Value), u"100 %"_s);
    bar.setDoubleValue(infinity);
    QCOMPARE(value->currentValue().toDouble(), 0.0);
    QCOMPARE(interface->text(QAccessible::Value), QString());
}

void ProgressBarTest::announcesTheLatestValueAtACalmPace()
{
    ShownBar bar;
    const Announcements announcements(bar);
    bar.setAnnouncementPace(50ms);
    for (int step = 1; step <= 300; ++step)
        bar.setDoubleValue(step / 10.0);
    QCOMPARE(announcements.values(), QList<int>());
    QTRY_COMPARE(announcements.values(), QList<int>{30});
    bar.setDoubleValue(31);
    bar.setDoubleValue(900);
    QTRY_COMPARE(announcements.values(), (QList<int>{30, 100}));
}

void ProgressBarTest::announcesNoValueTwice()
{
    ShownBar bar;
    const Announcements announcements(bar);
    bar.setAnnouncementPace(0ms);
    for (const double value : {30.0, 30.2, 31.0}) {
        bar.setDoubleValue(value);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(announcements.values(), (QList<int>{30, 31}));
    bar.hide(); // the next time it shows other work
    bar.show();
    bar.setDoubleValue(31);
    QTRY_COMPARE(announcements.values(), (QList<int>{30, 31, 31}));
}

void ProgressBarTest::announcesNothingWhileHiddenOrBusy_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("visible");
    QTest::newRow("hidden") << 30.0 << false;
    QTest::newRow("busy") << infinity << true;
    QTest::newRow("not a number") << notANumber << true;
}

void ProgressBarTest::announcesNothingWhileHiddenOrBusy()
{
    QFETCH(double, value);
    QFETCH(bool, visible);
    ShownBar bar;
    const Announcements announcements(bar);
    bar.setAnnouncementPace(0ms);
    bar.setVisible(visible);
    bar.setDoubleValue(value);
    QTimer later;
    later.setSingleShot(true);
    const QSignalSpy passed(&later, &QTimer::timeout);
    later.start(20);
    QTRY_COMPARE(passed.size(), 1);
    QCOMPARE(announcements.values(), QList<int>());
    bar.show();
    bar.setDoubleValue(40);
    QTRY_COMPARE(announcements.values(), QList<int>{40});
}

TESSALY_GUI_TEST_MAIN(ProgressBarTest)
#include "progress_bar_test.moc"
