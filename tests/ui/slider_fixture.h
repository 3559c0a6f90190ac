// A slider in a window of its own, with the focus, and what a person does to it.
#pragma once

#include "pointer.h"
#include "support/test_case.h"
#include "ui/slider.h"

#include <QApplication>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

// QCOMPARE lets doubles differ a little.
#define COMPARE_EXACTLY(actual, expected)                                                                    \
    QVERIFY2((actual) == (expected), qPrintable(QString::number((actual), 'g', 17)))

namespace tessaly::test {

class ShownSlider : public Slider
{
public:
    using Slider::Slider;

    // Where the style draws the handle.
    QRect handle() const
    {
        QStyleOptionSlider option;
        initStyleOption(&option);
        return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    }
    QPoint handleCenter() const { return handle().center(); }
    // Pixels between the handle's places at both ends.
    int travel() const
    {
        QStyleOptionSlider option;
        initStyleOption(&option);
        return style()->pixelMetric(QStyle::PM_SliderSpaceAvailable, &option, this);
    }
};

struct SliderFixture
{
    explicit SliderFixture(double minimum = 0, double maximum = 200, int width = 420)
    {
        slider = new ShownSlider(&window);
        slider->setDoubleRange(minimum, maximum);
        slider->setDoubleValue(100);
        slider->setGeometry(60, 15, width, 30);
        window.resize(width + 120, 60);
        window.show();
        slider->setFocus();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window, waitLimit)) qFatal("the window does not become active");
    }

    void turnWheel(int eighthsOfDegree, bool inverted = false)
    {
        const QPointF center = slider->rect().center();
        QWheelEvent event(center, slider->mapToGlobal(center), QPoint(), QPoint(0, eighthsOfDegree),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, inverted);
        QApplication::sendEvent(slider, &event);
        wheelTaken = event.isAccepted();
    }

    QWidget window;
    ShownSlider *slider;
    bool wheelTaken = false;
};

} // namespace tessaly::test
