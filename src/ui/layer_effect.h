// Paints a layer and its view: shadow, background, contents, border, in this order.
#pragma once

#include "ui/layer.h"

#include <QGraphicsEffect>
#include <QImage>

namespace tessaly {

// Whether a view with this layer looks different from one without a layer.
bool paintsSomething(const Layer &layer);

// Blurs are painted up to this standard deviation, and offsets up to this distance, in points.
constexpr double largestShadowRadius = 100.0;
constexpr double largestShadowOffset = 10000.0;

class LayerEffect : public QGraphicsEffect
{
    Q_OBJECT

public:
    // Paints `view`, which must be the widget that the effect is set on.
    LayerEffect(QWidget *view, const Layer &layer);

    void setLayer(const Layer &layer);

    QRectF boundingRectFor(const QRectF &rect) const override;

protected:
    void draw(QPainter *painter) override;

private:
    // Background, contents and border, from the view's corner on.
    void drawParts(QPainter *painter, const QPixmap &contents) const;
    QImage picture(const QPixmap &contents) const;
    void drawClipped(QPainter *painter, QImage whole) const;
    void drawShadow(QPainter *painter, const QImage &picture);

    QWidget *m_view;
    Layer m_layer;
    // The last shadow and what it was made from: most repaints leave the outline as it was.
    QImage m_outline;
    QImage m_shadow;
    double m_sigma = 0.0;
};

} // namespace tessaly
