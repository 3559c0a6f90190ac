#include "slider_fixture.h"
#include "support/test_case.h"

#include <QProxyStyle>
#include <QScopeGuard>
#include <QSignalSpy>

#include <cmath>
#include <set>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class SliderMouseTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAnExactValueWhileNothingMoves_data();
    void keepsAnExactValueWhileNothingMoves();
    void oneMovedPixelChangesTheValue();
    void pressBesideTheHandleBringsItThere_data();
    void pressBesideTheHandleBringsItThere();
    void samePressGoesOnAsADrag();
    void dragFromTheHandleKeepsItsGrip();
    void dragReachesBothEnds();
    void mousePicksTheRoundestValueOfAPixel();
    void mouseSetsTenthsWhereTheyHavePixels();
    void posterSliderHasWholeSteps();
    void otherButtonsAndDisabledSlidersTakeNoPress();
    void pressTakesTheFocus();
    void pressTakesTheFocusInEveryStyle();
};

void SliderMouseTest::keepsAnExactValueWhileNothingMoves_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("left to right") << Qt::LeftToRight;
    QTest::newRow("right to left") << Qt::RightToLeft;
}

void SliderMouseTest::keepsAnExactValueWhileNothingMoves()
{
    QFETCH(Qt::LayoutDirection, direction);
    SliderFixture fixture(0, 200, 1100);
    fixture.window.setLayoutDirection(direction);
    // Every second position lies on the border of two pixels.
    fixture.slider->resize(fixture.slider->width() + 1000 - fixture.slider->travel(), 30);
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    for (int width = 853; width < 853 * 2; width += 7) {
        const double exact = width / 1706.0 * 100; // no value that any position stands for
        fixture.slider->setDoubleValue(exact);
        const QPoint center = fixture.slider->handleCenter();
        pressAt(fixture.slider, center);
        moveTo(fixture.slider, center + QPoint(0, 5));
        moveTo(fixture.slider, center + QPoint(0, -5));
        releaseAt(fixture.slider, center);
        COMPARE_EXACTLY(fixture.slider->doubleValue(), exact);
    }
    QCOMPARE(spy.count(), 0);
}

void SliderMouseTest::oneMovedPixelChangesTheValue()
{
    constexpr double exact = 1000.0 / 1920 * 100; // 52.0833…
    SliderFixture fixture;
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    fixture.slider->setDoubleValue(exact);
    const QPoint center = fixture.slider->handleCenter();
    pressAt(fixture.slider, center);
    moveTo(fixture.slider, center + QPoint(1, 0));
    releaseAt(fixture.slider, center + QPoint(1, 0));
    QVERIFY(fixture.slider->doubleValue() > exact);
    QCOMPARE(spy.count(), 1);
}

void SliderMouseTest::pressBesideTheHandleBringsItThere_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::newRow("left to right") << Qt::LeftToRight << Qt::Horizontal;
    QTest::newRow("right to left") << Qt::RightToLeft << Qt::Horizontal;
    QTest::newRow("upright") << Qt::LeftToRight << Qt::Vertical;
}

void SliderMouseTest::pressBesideTheHandleBringsItThere()
{
    QFETCH(Qt::LayoutDirection, direction);
    QFETCH(Qt::Orientation, orientation);
    SliderFixture fixture;
    fixture.window.setLayoutDirection(direction);
    fixture.slider->setOrientation(orientation);
    if (orientation == Qt::Vertical) {
        fixture.window.resize(120, 480);
        fixture.slider->resize(30, 420);
    }
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);

    fixture.slider->setDoubleValue(50);
    const QPoint at50 = fixture.slider->handleCenter();
    fixture.slider->setDoubleValue(150);
    const QPoint at150 = fixture.slider->handleCenter();
    QVERIFY((at150 - at50).manhattanLength() > 100);

    clickAt(fixture.slider, at50);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 50.0);
    QCOMPARE(spy.count(), 1);
    clickAt(fixture.slider, at150);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 150.0);
    QCOMPARE(spy.count(), 2);
}

void SliderMouseTest::samePressGoesOnAsADrag()
{
    SliderFixture fixture;
    fixture.slider->setDoubleValue(150);
    const QPoint at150 = fixture.slider->handleCenter();
    fixture.slider->setDoubleValue(50);
    const QPoint at50 = fixture.slider->handleCenter();
    fixture.slider->setDoubleValue(0);
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);

    pressAt(fixture.slider, at50);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 50.0);
    QVERIFY(fixture.slider->isSliderDown());
    for (int x = at50.x() + 1; x <= at150.x(); ++x)
        moveTo(fixture.slider, QPoint(x, at50.y()));
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 150.0);
    QCOMPARE(spy.count(), 1 + at150.x() - at50.x()); // continuous
    releaseAt(fixture.slider, at150);
    QVERIFY(!fixture.slider->isSliderDown());
    moveTo(fixture.slider, at50);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 150.0);
}

void SliderMouseTest::dragFromTheHandleKeepsItsGrip()
{
    SliderFixture fixture;
    const QPoint edge = fixture.slider->handle().topLeft() + QPoint(1, 8);
    const int pixels = 20;
    const double expected = 100.0 + 200.0 * pixels / fixture.slider->travel();
    pressAt(fixture.slider, edge);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 100.0);
    moveTo(fixture.slider, edge + QPoint(pixels, 0));
    releaseAt(fixture.slider, edge + QPoint(pixels, 0));
    QVERIFY2(std::abs(fixture.slider->doubleValue() - expected) <= 100.0 / fixture.slider->travel() + 0.1,
             qPrintable(QString::number(fixture.slider->doubleValue())));
}

void SliderMouseTest::dragReachesBothEnds()
{
    SliderFixture fixture(0, 33.24); // the last position is nearer to 33.2
    pressAt(fixture.slider, fixture.slider->handleCenter());
    moveTo(fixture.slider, QPoint(-50, 10));
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 0.0);
    moveTo(fixture.slider, QPoint(450, 10));
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 33.24);
    releaseAt(fixture.slider, QPoint(450, 10));
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 33.24);
}

void SliderMouseTest::mousePicksTheRoundestValueOfAPixel()
{
    SliderFixture fixture;
    const int travel = fixture.slider->travel();
    const double pitch = 200.0 / travel;
    QVERIFY(pitch < 1);
    fixture.slider->setDoubleValue(0);
    const QPoint start = fixture.slider->handleCenter();
    std::set<double> reached{0};
    pressAt(fixture.slider, start);
    for (int pixel = 1; pixel <= travel; ++pixel) {
        moveTo(fixture.slider, start + QPoint(pixel, 0));
        const double value = fixture.slider->doubleValue();
        QVERIFY2(std::abs(value - pixel * pitch) <= pitch / 2 + 0.1, qPrintable(QString::number(value)));
        reached.insert(value);
    }
    releaseAt(fixture.slider, start + QPoint(travel, 0));
    for (int percent = 0; percent <= 200; ++percent)
        QVERIFY2(reached.contains(percent), qPrintable(QString::number(percent)));

    // Too short for every percent, but the tens are there.
    fixture.slider->resize(80, 30);
    QVERIFY(fixture.slider->travel() < 100);
    for (int percent = 10; percent < 200; percent += 10) {
        fixture.slider->setDoubleValue(percent);
        const QPoint place = fixture.slider->handleCenter();
        fixture.slider->setDoubleValue(percent < 100 ? 200 : 0);
        clickAt(fixture.slider, place);
        COMPARE_EXACTLY(fixture.slider->doubleValue(), double(percent));
    }
}

void SliderMouseTest::mouseSetsTenthsWhereTheyHavePixels()
{
    SliderFixture fixture(0, 200, 2100);
    fixture.slider->setDoubleValue(33.3);
    const QPoint place = fixture.slider->handleCenter();
    fixture.slider->setDoubleValue(100);
    clickAt(fixture.slider, place);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 33.3);
}

void SliderMouseTest::posterSliderHasWholeSteps()
{
    SliderFixture fixture(1, 11, 130);
    fixture.slider->setPositionsPerUnit(1);
    fixture.slider->setIntegerValue(6);
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Right);
    QCOMPARE(fixture.slider->intValue(), 7);
    QTest::keyClick(fixture.window.windowHandle(), Qt::Key_Home);
    QCOMPARE(fixture.slider->intValue(), 1);

    std::set<double> reached{fixture.slider->doubleValue()};
    const QPoint start = fixture.slider->handleCenter();
    pressAt(fixture.slider, start);
    for (int pixel = 1; pixel <= fixture.slider->travel(); ++pixel) {
        moveTo(fixture.slider, start + QPoint(pixel, 0));
        reached.insert(fixture.slider->doubleValue());
    }
    QCOMPARE(reached, (std::set<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
    QCOMPARE(spy.count(), 2 + 10); // once for each still
}

void SliderMouseTest::otherButtonsAndDisabledSlidersTakeNoPress()
{
    SliderFixture fixture;
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    clickAt(fixture.slider, QPoint(30, 10), Qt::RightButton);
    QMouseEvent right(QEvent::MouseButtonPress, QPointF(30, 10), fixture.slider->mapToGlobal(QPointF(30, 10)),
                      Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(fixture.slider, &right);
    QVERIFY(!right.isAccepted()); // free for whoever lies below
    fixture.slider->setEnabled(false);
    clickAt(fixture.slider, QPoint(30, 10));
    fixture.slider->setEnabled(true);
    fixture.slider->setDoubleRange(100, 100);
    clickAt(fixture.slider, QPoint(300, 10));
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 100.0);
    QCOMPARE(spy.count(), 0);
}

void SliderMouseTest::pressTakesTheFocus()
{
    SliderFixture fixture;
    fixture.slider->clearFocus();
    QVERIFY(!fixture.slider->hasFocus());
    clickAt(fixture.slider, QPoint(30, 10));
    QVERIFY(fixture.slider->hasFocus());
}

void SliderMouseTest::pressTakesTheFocusInEveryStyle()
{
    struct FocusByTabOnly : QProxyStyle
    {
        int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                      QStyleHintReturn *data) const override
        {
            return hint == SH_Button_FocusPolicy ? Qt::TabFocus
                                                 : QProxyStyle::styleHint(hint, option, widget, data);
        }
    };
    const QString usual = QApplication::style()->name();
    const auto restore = qScopeGuard([&] { QApplication::setStyle(usual); });
    QApplication::setStyle(new FocusByTabOnly);
    QCOMPARE(QSlider().focusPolicy(), Qt::TabFocus);
    pressTakesTheFocus();
}

TESSALY_GUI_TEST_MAIN(SliderMouseTest)
#include "slider_mouse_test.moc"
