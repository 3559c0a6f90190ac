// What the tests of layers share: a stage with one view, and pictures to compare it with.
#pragma once

#include "support/test_case.h"
#include "ui/layer.h"
#include "ui/layer_effect.h"
#include "ui/pixels.h"

#include <QApplication>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include <limits>

namespace tessaly::test {

using namespace Qt::StringLiterals;

inline const QColor ground(200, 200, 200);
inline const QRect place(40, 40, 100, 50);
inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

inline void fill(QWidget *widget, const QColor &color)
{
    QPalette palette;
    palette.setColor(QPalette::Window, color);
    widget->setPalette(palette);
    widget->setAutoFillBackground(true);
}

// A grey window of 180 x 130 points with one transparent view in its middle.
struct Stage
{
    Stage()
    {
        fill(&window, ground);
        window.setFixedSize(180, 130);
        view.setGeometry(place);
    }

    void setLayer(const Layer &layer) { ViewLayer::wantedFor(&view)->setValues(layer); }

    QWidget window;
    QWidget view{&window};
};

// Paints with `paint` on a grey picture like this one, in points.
template<class Paint>
QImage expectedPicture(const QImage &like, Paint paint)
{
    QImage expected = plainPicture(like, ground);
    QPainter painter(&expected);
    paint(painter);
    return expected;
}

inline double gaussianStep(double distance, double sigma)
{
    return 0.5 * std::erfc(distance / (sigma * std::sqrt(2.0)));
}

} // namespace tessaly::test
