#include "slider_fixture.h"
#include "support/test_case.h"

#include <QAccessible>
#include <QSignalSpy>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

namespace {

// As the guidelines for accessible contents of the web define it.
double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double mostContrast(const QImage &image, const QColor &ground)
{
    double most = 1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto [darker, lighter] =
                std::minmax({luminance(image.pixelColor(x, y)), luminance(ground)});
            most = std::max(most, (lighter + 0.05) / (darker + 0.05));
        }
    }
    return most;
}

} // namespace

class SliderLookTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void posterSliderDrawsTicks();
    void cutsNothingOffAtItsOwnHeight();
    void handleAndTicksStandOutFromTheGround_data();
    void handleAndTicksStandOutFromTheGround();
    void drawsTheHandleAtTheValue();
    void tellsAssistiveTechnologyTheValue();
    void assistiveTechnologySetsTheValueLikeAPerson();
};

void SliderLookTest::posterSliderDrawsTicks()
{
    SliderFixture fixture(1, 11);
    fixture.slider->setPositionsPerUnit(1);
    fixture.slider->setTickInterval(1);
    const QImage without = fixture.slider->grab().toImage();
    fixture.slider->setTickPosition(QSlider::TicksBelow);
    const QImage with = fixture.slider->grab().toImage();
    int marks = 0;
    for (int y = fixture.slider->handle().bottom() + 2; y < with.height(); ++y) {
        int inRow = 0;
        for (int x = 1; x < with.width(); ++x)
            inRow += with.pixel(x, y) != with.pixel(0, y) && with.pixel(x - 1, y) == with.pixel(0, y);
        marks = std::max(marks, inRow);
    }
    QCOMPARE(marks, 11);
    QVERIFY(with != without);
}

void SliderLookTest::handleAndTicksStandOutFromTheGround_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QColor>("ink");
    QTest::newRow("light") << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(45, 45, 48) << QColor(Qt::white);
}

void SliderLookTest::handleAndTicksStandOutFromTheGround()
{
    QFETCH(QColor, ground);
    QFETCH(QColor, ink);
    SliderFixture fixture(1, 11);
    QPalette colours = fixture.window.palette();
    colours.setColor(QPalette::Window, ground);
    colours.setColor(QPalette::WindowText, ink);
    fixture.window.setPalette(colours);
    fixture.slider->setPositionsPerUnit(1);
    fixture.slider->setTickInterval(1);
    fixture.slider->setTickPosition(QSlider::TicksBelow);
    const QImage image = fixture.slider->grab().toImage();
    const QRect handle = fixture.slider->handle();
    const QRect belowHandle(0, handle.bottom() + 2, image.width(), image.height() - handle.bottom() - 2);
    for (const QRect &part : {handle, belowHandle}) {
        const double contrast = mostContrast(image.copy(part), ground);
        QVERIFY2(contrast >= 3, qPrintable(QString::number(contrast)));
    }
}

void SliderLookTest::cutsNothingOffAtItsOwnHeight()
{
    SliderFixture fixture(1, 11);
    fixture.slider->setTickPosition(QSlider::TicksBelow);
    const auto paintedRows = [&](int height) {
        fixture.slider->resize(fixture.slider->width(), height);
        const QImage image = fixture.slider->grab().toImage();
        const int x = fixture.slider->handle().center().x();
        int rows = 0;
        for (int y = 0; y < image.height(); ++y)
            rows += image.pixel(x, y) != image.pixel(0, 0);
        return rows;
    };
    const int own = fixture.slider->sizeHint().height();
    QCOMPARE(fixture.slider->minimumSizeHint().height(), own);
    QCOMPARE(paintedRows(own), paintedRows(own + 20));
}

void SliderLookTest::drawsTheHandleAtTheValue()
{
    SliderFixture fixture;
    fixture.slider->setDoubleValue(0);
    const int left = fixture.slider->handle().left();
    for (const double percent : {0.0, 33.3, 52.0833, 100.0, 200.0}) {
        fixture.slider->setDoubleValue(percent);
        const double expected = left + percent / 200 * fixture.slider->travel();
        QVERIFY(std::abs(fixture.slider->handle().left() - expected) <= 0.6);
    }
}

void SliderLookTest::tellsAssistiveTechnologyTheValue()
{
    SliderFixture fixture;
    fixture.slider->setUnit(u" %"_s);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(fixture.slider);
    QVERIFY(interface != nullptr);
    QCOMPARE(interface->role(), QAccessible::Slider);
    QAccessibleValueInterface *value = interface->valueInterface();
    QVERIFY(value != nullptr);
    COMPARE_EXACTLY(value->currentValue().toDouble(), 100.0);
    QCOMPARE(value->minimumValue().toDouble(), 0.0);
    QCOMPARE(value->maximumValue().toDouble(), 200.0);
    QCOMPARE(value->minimumStepSize().toDouble(), 1.0);
    QCOMPARE(interface->text(QAccessible::Value), u"100 %"_s);
    fixture.slider->setDoubleValue(52.0833);
    COMPARE_EXACTLY(value->currentValue().toDouble(), 52.0833);
    QCOMPARE(interface->text(QAccessible::Value), u"52.1 %"_s);
    fixture.slider->setAccessibleName(u"Output size"_s);
    QCOMPARE(interface->text(QAccessible::Name), u"Output size"_s);
}

void SliderLookTest::assistiveTechnologySetsTheValueLikeAPerson()
{
    SliderFixture fixture;
    QSignalSpy spy(fixture.slider, &Slider::changedByUser);
    QAccessible::queryAccessibleInterface(fixture.slider)->valueInterface()->setCurrentValue(62.5);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 62.5);
    QCOMPARE(spy.count(), 1);
    QAccessible::queryAccessibleInterface(fixture.slider)->valueInterface()->setCurrentValue(900);
    COMPARE_EXACTLY(fixture.slider->doubleValue(), 200.0);
    QCOMPARE(spy.count(), 2);
}

TESSALY_GUI_TEST_MAIN(SliderLookTest)
#include "slider_look_test.moc"
