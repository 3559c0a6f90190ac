#include "slider_fixture.h"
#include "support/test_case.h"

#include <QSignalSpy>

#include <limits>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

class SliderValueTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasTheDefaultsOfANewSlider();
    void holdsValuesSetFromCode_data();
    void holdsValuesSetFromCode();
    void readsText_data();
    void readsText();
    void changingTheRangeClampsAtOnce();
    void ignoresRangesThatCannotBeCounted_data();
    void ignoresRangesThatCannotBeCounted();
    void codeFiresNothing();
    void setterInsideTheActionFiresNoSecondOne();
};

void SliderValueTest::hasTheDefaultsOfANewSlider()
{
    const Slider slider;
    COMPARE_EXACTLY(slider.minimumValue(), 0.0);
    COMPARE_EXACTLY(slider.maximumValue(), 1.0);
    COMPARE_EXACTLY(slider.doubleValue(), 0.0);
    QCOMPARE(slider.orientation(), Qt::Horizontal);
    QVERIFY(slider.hasTracking());
}

void SliderValueTest::holdsValuesSetFromCode_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("set");
    QTest::addColumn<double>("value");
    QTest::addColumn<qint64>("integer");
    QTest::newRow("in range") << 0.0 << 7.0 << 7.0 << qint64(7);
    QTest::newRow("above") << 0.0 << 12.0 << 10.0 << qint64(10);
    QTest::newRow("below") << 0.0 << -3.0 << 0.0 << qint64(0);
    QTest::newRow("fraction") << 0.0 << 2.7 << 2.7 << qint64(2);
    QTest::newRow("negative fraction") << -10.0 << -2.7 << -2.7 << qint64(-2);
    QTest::newRow("nan") << -10.0 << notANumber << -10.0 << qint64(-10);
    QTest::newRow("infinity") << 0.0 << infinity << 10.0 << qint64(10);
    QTest::newRow("negative infinity") << 0.0 << -infinity << 0.0 << qint64(0);
    QTest::newRow("finer than any position") << 0.0 << 5.20833333333 << 5.20833333333 << qint64(5);
}

void SliderValueTest::holdsValuesSetFromCode()
{
    QFETCH(double, minimum);
    QFETCH(double, set);
    QFETCH(double, value);
    QFETCH(qint64, integer);
    Slider slider;
    slider.setDoubleRange(minimum, 10);
    slider.setDoubleValue(5);
    slider.setDoubleValue(set);
    COMPARE_EXACTLY(slider.doubleValue(), value);
    QCOMPARE(slider.integerValue(), integer);
    QCOMPARE(slider.intValue(), int(integer));
}

void SliderValueTest::readsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("decimal") << u"3.5"_s << 3.5;
    QTest::newRow("letters") << u"abc"_s << 0.0;
    QTest::newRow("too large") << u"99"_s << 10.0;
}

void SliderValueTest::readsText()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    Slider slider;
    slider.setDoubleRange(0, 10);
    slider.setDoubleValue(7);
    slider.setStringValue(text);
    COMPARE_EXACTLY(slider.doubleValue(), value);
}

void SliderValueTest::changingTheRangeClampsAtOnce()
{
    Slider slider;
    slider.setDoubleRange(0, 10);
    slider.setIntegerValue(99);
    COMPARE_EXACTLY(slider.doubleValue(), 10.0);
    slider.setMaximumValue(5);
    COMPARE_EXACTLY(slider.doubleValue(), 5.0);
    slider.setMaximumValue(10);
    COMPARE_EXACTLY(slider.doubleValue(), 5.0);
    slider.setMinimumValue(7);
    COMPARE_EXACTLY(slider.doubleValue(), 7.0);
    slider.setMinimumValue(12);
    COMPARE_EXACTLY(slider.maximumValue(), 12.0);
    COMPARE_EXACTLY(slider.doubleValue(), 12.0);
    slider.setMaximumValue(3);
    COMPARE_EXACTLY(slider.minimumValue(), 3.0);
    COMPARE_EXACTLY(slider.doubleValue(), 3.0);
    slider.setDoubleRange(5, 2);
    COMPARE_EXACTLY(slider.minimumValue(), 5.0);
    COMPARE_EXACTLY(slider.maximumValue(), 5.0);
}

void SliderValueTest::ignoresRangesThatCannotBeCounted_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::newRow("nan below") << notANumber << 5.0;
    QTest::newRow("nan above") << 0.0 << notANumber;
    QTest::newRow("infinite") << 0.0 << infinity;
    QTest::newRow("infinite below") << -infinity << 0.0;
    QTest::newRow("too large") << 0.0 << 1e18;
    QTest::newRow("too small") << -1e18 << 0.0;
}

void SliderValueTest::ignoresRangesThatCannotBeCounted()
{
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    Slider slider;
    slider.setDoubleRange(0, 200);
    slider.setDoubleValue(100);
    slider.setDoubleRange(minimum, maximum);
    COMPARE_EXACTLY(slider.minimumValue(), 0.0);
    COMPARE_EXACTLY(slider.maximumValue(), 200.0);
    COMPARE_EXACTLY(slider.doubleValue(), 100.0);

    slider.setPositionsPerUnit(0);
    QCOMPARE(slider.positionsPerUnit(), 10);
    slider.setPositionsPerUnit(std::numeric_limits<int>::max());
    QCOMPARE(slider.positionsPerUnit(), 10);
}

void SliderValueTest::codeFiresNothing()
{
    SliderFixture fixture;
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    fixture.slider->setDoubleValue(33.3);
    fixture.slider->setIntegerValue(50);
    fixture.slider->setStringValue(u"60"_s);
    fixture.slider->setMaximumValue(40);
    fixture.slider->setMinimumValue(45);
    fixture.slider->setDoubleRange(0, 10);
    fixture.slider->setPositionsPerUnit(1);
    fixture.slider->setEnabled(false);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 10.0);
    QCOMPARE(spy.count(), 0);
}

void SliderValueTest::setterInsideTheActionFiresNoSecondOne()
{
    SliderFixture fixture;
    int fired = 0;
    connect(fixture.slider, &Slider::changedByUser, fixture.slider, [&] {
        ++fired;
        fixture.slider->setDoubleValue(52.0833);
    });
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Right);
    QCOMPARE(fired, 1);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 52.0833);
    QCOMPARE(fixture.slider->sliderPosition(), 521);
}

TESSALY_GUI_TEST_MAIN(SliderValueTest)
#include "slider_value_test.moc"
