#include "slider_fixture.h"
#include "support/test_case.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class SliderKeysTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void movesByKeys_data();
    void movesByKeys();
    void firesNothingAtTheEndOfTheRange();
    void wheelMovesTheFocusedSlider_data();
    void wheelMovesTheFocusedSlider();
    void partsOfANotchAddUp();
    void wheelPassesByWithoutFocusOrWhenDisabled();
};

void SliderKeysTest::movesByKeys_data()
{
    QTest::addColumn<double>("before");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::addColumn<double>("after");
    const auto row = [](const char *name, double before, Qt::Key key, double after,
                        Qt::LayoutDirection direction = Qt::LeftToRight) {
        QTest::newRow(name) << before << key << direction << after;
    };
    row("right", 100, Qt::Key_Right, 101);
    row("left", 100, Qt::Key_Left, 99);
    row("up", 100, Qt::Key_Up, 101);
    row("down", 100, Qt::Key_Down, 99);
    row("page up", 100, Qt::Key_PageUp, 110);
    row("page down", 100, Qt::Key_PageDown, 90);
    row("home", 100, Qt::Key_Home, 0);
    row("end", 100, Qt::Key_End, 200);
    row("right from between", 52.0833, Qt::Key_Right, 53);
    row("left from between", 52.0833, Qt::Key_Left, 52);
    row("page up from between", 52.0833, Qt::Key_PageUp, 62);
    row("page down from between", 52.0833, Qt::Key_PageDown, 43);
    row("just below a step", 99.99, Qt::Key_Right, 100);
    row("just above a step", 100.01, Qt::Key_Left, 100);
    row("near the end", 199.5, Qt::Key_Right, 200);
    row("near the start", 0.5, Qt::Key_Left, 0);
    row("page over the end", 195, Qt::Key_PageUp, 200);
    row("page over the start", 5, Qt::Key_PageDown, 0);
    row("left, right to left", 100, Qt::Key_Left, 101, Qt::RightToLeft);
    row("right, right to left", 100, Qt::Key_Right, 99, Qt::RightToLeft);
}

void SliderKeysTest::movesByKeys()
{
    QFETCH(double, before);
    QFETCH(Qt::Key, key);
    QFETCH(Qt::LayoutDirection, direction);
    QFETCH(double, after);
    SliderFixture fixture;
    fixture.window.setLayoutDirection(direction);
    fixture.slider->setDoubleValue(before);
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    QTest::keyClick(fixture.window.windowHandle(), key);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), after);
    QCOMPARE(spy.count(), 1);
}

void SliderKeysTest::firesNothingAtTheEndOfTheRange()
{
    SliderFixture fixture;
    fixture.slider->setDoubleValue(200);
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Right);
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_End);
    fixture.turnWheel(120);
    QCOMPARE(spy.count(), 0);
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Left);
    QCOMPARE(spy.count(), 1);
}

void SliderKeysTest::wheelMovesTheFocusedSlider_data()
{
    QTest::addColumn<double>("before");
    QTest::addColumn<int>("turn");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<double>("after");
    QTest::newRow("up") << 100.0 << 120 << false << 101.0;
    QTest::newRow("down") << 100.0 << -120 << false << 99.0;
    QTest::newRow("two notches") << 100.0 << 240 << false << 102.0;
    QTest::newRow("from between") << 52.0833 << 120 << false << 53.0;
    QTest::newRow("two notches down from between") << 52.0833 << -240 << false << 51.0;
    QTest::newRow("natural direction") << 100.0 << -120 << true << 101.0;
}

void SliderKeysTest::wheelMovesTheFocusedSlider()
{
    QFETCH(double, before);
    QFETCH(int, turn);
    QFETCH(bool, inverted);
    QFETCH(double, after);
    SliderFixture fixture;
    fixture.slider->setDoubleValue(before);
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    fixture.turnWheel(turn, inverted);
    QVERIFY(fixture.wheelTaken);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), after);
    QCOMPARE(spy.count(), 1);
}

void SliderKeysTest::partsOfANotchAddUp()
{
    SliderFixture fixture;
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    fixture.turnWheel(50);
    fixture.turnWheel(50);
    QCOMPARE(spy.count(), 0);
    fixture.turnWheel(50);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 101.0);
    fixture.turnWheel(90);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 102.0);
    QCOMPARE(spy.count(), 2);
}

void SliderKeysTest::wheelPassesByWithoutFocusOrWhenDisabled()
{
    SliderFixture fixture;
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    fixture.slider->clearFocus();
    fixture.turnWheel(120);
    QVERIFY(!fixture.wheelTaken);
    fixture.slider->setFocus();
    fixture.slider->setEnabled(false);
    fixture.turnWheel(120);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 100.0);
    QCOMPARE(spy.count(), 0);
}

TESSALY_GUI_TEST_MAIN(SliderKeysTest)
#include "slider_keys_test.moc"
