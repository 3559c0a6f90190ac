#include "ui/layer_effect.h"

#include "ui/gaussian_blur.h"

#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace tessaly {

namespace {

bool isVisible(const std::optional<QColor> &color)
{
    return color && color->isValid() && color->alpha() > 0;
}

// Not-a-number counts as nothing.
double inRange(double value, double low, double high)
{
    return std::isnan(value) ? std::clamp(0.0, low, high) : std::clamp(value, low, high);
}

bool hasBorder(const Layer &layer)
{
    return layer.borderWidth > 0.0 && isVisible(layer.borderColor);
}

bool clipsContents(const Layer &layer)
{
    return layer.masksToBounds && layer.cornerRadius > 0.0;
}

bool hasShadow(const Layer &layer)
{
    return !layer.masksToBounds && layer.shadowOpacity > 0.0F && isVisible(layer.shadowColor);
}

double sigma(const Layer &layer)
{
    return inRange(layer.shadowRadius, 0.0, largestShadowRadius);
}

// In Qt's coordinates, where y points down.
QPointF shadowShift(const Layer &layer)
{
    return {inRange(layer.shadowOffset.width(), -largestShadowOffset, largestShadowOffset),
            inRange(-layer.shadowOffset.height(), -largestShadowOffset, largestShadowOffset)};
}

// Pixels (or points) outside the outline that the blur reaches.
int blurReach(double sigma)
{
    return sigma > 0.0 ? static_cast<int>(std::ceil(3.0 * sigma)) + 2 : 0;
}

QPainterPath roundedShape(const QRectF &rect, double radius)
{
    const double drawn = inRange(radius, 0.0, std::min(rect.width(), rect.height()) / 2.0);
    QPainterPath shape;
    shape.addRoundedRect(rect, drawn, drawn);
    return shape;
}

// What the border leaves free; without area when the border takes all.
QPainterPath insideOfBorder(const Layer &layer, const QRectF &bounds)
{
    const double shortSide = std::min(bounds.width(), bounds.height());
    const double width = inRange(layer.borderWidth, 0.0, shortSide / 2.0);
    const double outerRadius = inRange(layer.cornerRadius, 0.0, shortSide / 2.0);
    return roundedShape(bounds.adjusted(width, width, -width, -width), outerRadius - width);
}

// The blurred outline as an 8-bit picture whose colour table holds the shadow's colour in all its strengths.
void tint(QImage &shadow, const Layer &layer)
{
    QColor color = *layer.shadowColor;
    const double strength = color.alphaF() * inRange(layer.shadowOpacity, 0.0, 1.0);
    QList<QRgb> table(256);
    for (int i = 0; i < 256; ++i) {
        color.setAlphaF(static_cast<float>(strength * i / 255.0));
        table[i] = color.rgba();
    }
    shadow.setColorTable(table);
}

} // namespace

bool paintsSomething(const Layer &layer)
{
    return isVisible(layer.backgroundColor) || hasBorder(layer) || clipsContents(layer) || hasShadow(layer);
}

LayerEffect::LayerEffect(QWidget *view, const Layer &layer) : m_view(view), m_layer(layer) {}

void LayerEffect::setLayer(const Layer &layer)
{
    m_layer = layer;
    updateBoundingRect();
    update();
}

QRectF LayerEffect::boundingRectFor(const QRectF &rect) const
{
    if (!hasShadow(m_layer)) return rect;
    const int reach = blurReach(sigma(m_layer)) + 1;
    return rect | rect.translated(shadowShift(m_layer)).adjusted(-reach, -reach, reach, reach);
}

void LayerEffect::draw(QPainter *painter)
{
    if (m_view->rect().isEmpty()) return;
    // The contents always go through a picture: painting the source in place while a view inside it has a
    // layer of its own makes Qt open a second painter on the same device.
    QPoint origin;
    const QPixmap contents = sourcePixmap(Qt::LogicalCoordinates, &origin, NoPad);
    if (m_view->isWindow()) painter->fillRect(m_view->rect(), m_view->palette().window());
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(origin);
    if (clipsContents(m_layer)) {
        drawClipped(painter, picture(contents));
    } else if (hasShadow(m_layer)) {
        const QImage whole = picture(contents);
        drawShadow(painter, whole);
        painter->drawImage(0, 0, whole);
    } else {
        drawParts(painter, contents);
    }
    painter->translate(-origin);
}

QImage LayerEffect::picture(const QPixmap &contents) const
{
    QImage result(contents.size(), QImage::Format_ARGB32_Premultiplied);
    result.setDevicePixelRatio(contents.devicePixelRatio());
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::Antialiasing);
    drawParts(&painter, contents);
    return result;
}

void LayerEffect::drawParts(QPainter *painter, const QPixmap &contents) const
{
    const QRectF bounds = m_view->rect();
    QPainterPath outline;
    if (clipsContents(m_layer))
        outline.addRect(bounds);
    else
        outline = roundedShape(bounds, m_layer.cornerRadius);

    if (isVisible(m_layer.backgroundColor)) painter->fillPath(outline, *m_layer.backgroundColor);
    painter->drawPixmap(0, 0, contents);
    if (hasBorder(m_layer)) {
        QPainterPath border = outline;
        border.addPath(insideOfBorder(m_layer, bounds)); // the inner path makes a hole
        painter->fillPath(border, *m_layer.borderColor);
    }
}

// All parts are cut together, in one step, so that nothing shines through at the edge.
void LayerEffect::drawClipped(QPainter *painter, QImage whole) const
{
    const double ratio = whole.devicePixelRatio();
    whole.setDevicePixelRatio(1.0);
    QBrush pattern(whole);
    pattern.setTransform(QTransform::fromScale(1.0 / ratio, 1.0 / ratio));
    painter->fillPath(roundedShape(m_view->rect(), m_layer.cornerRadius), pattern);
}

void LayerEffect::drawShadow(QPainter *painter, const QImage &picture)
{
    const double ratio = picture.devicePixelRatio();
    const double pixelSigma = sigma(m_layer) * ratio;
    const int reach = blurReach(pixelSigma);
    QImage outline = picture.convertToFormat(QImage::Format_Alpha8);
    if (m_shadow.isNull() || pixelSigma != m_sigma || outline != m_outline) {
        outline.setDevicePixelRatio(1.0);
        const QRect padded = outline.rect().adjusted(-reach, -reach, reach, reach);
        m_shadow = blurredAlpha(outline.copy(padded), pixelSigma);
        m_shadow.reinterpretAsFormat(QImage::Format_Indexed8);
        // When a view inside the view has changed, Qt repaints the area of that view, but not of its shadow.
        if (!m_outline.isNull())
            QMetaObject::invokeMethod(this, &QGraphicsEffect::update, Qt::QueuedConnection);
        m_outline = outline;
        m_sigma = pixelSigma;
    }
    tint(m_shadow, m_layer);
    m_shadow.setDevicePixelRatio(ratio);
    const QPoint place = (shadowShift(m_layer) * ratio).toPoint() - QPoint(reach, reach);
    painter->drawImage(QPointF(place) / ratio, m_shadow);
}

} // namespace tessaly
