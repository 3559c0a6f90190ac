#include "ui/view_styling.h"

#include "ui/tracking_area.h"

#include <QWidget>

#include <cmath>

namespace tessaly {

namespace {

template<class Value>
Value layerValue(const QWidget *view, Value Layer::*member, const Value &withoutLayer)
{
    const ViewLayer *layer = ViewLayer::of(view);
    return layer ? layer->values().*member : withoutLayer;
}

std::optional<QColor> validColor(const std::optional<QColor> &color)
{
    return color && color->isValid() ? color : std::nullopt;
}

// Hundredths of a point, cut towards zero; nothing when they do not fit a signed 64-bit integer.
std::optional<double> storedCornerRadius(double radius)
{
    const double hundredths = std::trunc(radius * 100.0);
    constexpr double limit = 0x1p63;
    if (!(hundredths >= -limit && hundredths < limit)) return std::nullopt;
    return std::abs(hundredths / 100.0);
}

} // namespace

template<class Change>
void ViewStyling::change(Change change)
{
    ViewLayer *layer = ViewLayer::wantedFor(m_view);
    Layer values = layer->values();
    change(values);
    layer->setValues(values);
}

std::optional<QColor> ViewStyling::backgroundColor() const
{
    return layerValue(m_view, &Layer::backgroundColor, {});
}

void ViewStyling::setBackgroundColor(const std::optional<QColor> &color)
{
    change([&](Layer &layer) { layer.backgroundColor = validColor(color); });
}

std::optional<QColor> ViewStyling::borderColor() const
{
    return layerValue(m_view, &Layer::borderColor, {});
}

void ViewStyling::setBorderColor(const std::optional<QColor> &color)
{
    change([&](Layer &layer) { layer.borderColor = validColor(color); });
}

double ViewStyling::borderWidth() const
{
    return layerValue(m_view, &Layer::borderWidth, 0.0);
}

void ViewStyling::setBorderWidth(double width)
{
    change([&](Layer &layer) { layer.borderWidth = width; });
}

double ViewStyling::cornerRadius() const
{
    return layerValue(m_view, &Layer::cornerRadius, 0.0);
}

void ViewStyling::setCornerRadius(double radius)
{
    change([&](Layer &layer) {
        layer.masksToBounds = true;
        layer.cornerRadius = storedCornerRadius(radius).value_or(layer.cornerRadius);
    });
}

std::optional<QColor> ViewStyling::shadowColor() const
{
    return layerValue(m_view, &Layer::shadowColor, {});
}

void ViewStyling::setShadowColor(const std::optional<QColor> &color)
{
    change([&](Layer &layer) { layer.shadowColor = validColor(color); });
}

QSizeF ViewStyling::shadowOffset() const
{
    return layerValue(m_view, &Layer::shadowOffset, QSizeF(0.0, 0.0));
}

void ViewStyling::setShadowOffset(const QSizeF &offset)
{
    change([&](Layer &layer) { layer.shadowOffset = offset; });
}

float ViewStyling::shadowOpacity() const
{
    return layerValue(m_view, &Layer::shadowOpacity, 0.0F);
}

void ViewStyling::setShadowOpacity(float opacity)
{
    change([&](Layer &layer) { layer.shadowOpacity = opacity; });
}

double ViewStyling::shadowRadius() const
{
    return layerValue(m_view, &Layer::shadowRadius, 0.0);
}

void ViewStyling::setShadowRadius(double radius)
{
    change([&](Layer &layer) { layer.shadowRadius = radius; });
}

QPoint ViewStyling::origin() const
{
    return m_view->geometry().topLeft();
}

void ViewStyling::setOrigin(const QPoint &origin)
{
    m_view->setGeometry(QRect(QPoint(origin.x(), m_view->geometry().y()), m_view->size()));
    m_view->setGeometry(QRect(QPoint(m_view->geometry().x(), origin.y()), m_view->size()));
}

QSize ViewStyling::size() const
{
    return m_view->size();
}

void ViewStyling::setSize(const QSize &size)
{
    setWidth(size.width());
    setHeight(size.height());
}

int ViewStyling::width() const
{
    return m_view->width();
}

void ViewStyling::setWidth(int width)
{
    m_view->setGeometry(QRect(origin(), QSize(width, m_view->height())));
}

int ViewStyling::height() const
{
    return m_view->height();
}

void ViewStyling::setHeight(int height)
{
    m_view->setGeometry(QRect(origin(), QSize(m_view->width(), height)));
}

TrackingArea *ViewStyling::addTrackingArea(const QRect &rectangle, QObject *owner)
{
    return new TrackingArea(m_view, rectangle, owner);
}

} // namespace tessaly
