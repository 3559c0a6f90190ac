#include "ui/tracking_area.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QHoverEvent>
#include <QWidget>

namespace tessaly {

TrackingEvent::TrackingEvent(Kind kind, const QPoint &position, TrackingArea *area)
    : QEvent(eventType()), m_kind(kind), m_position(position), m_area(area)
{}

QEvent::Type TrackingEvent::eventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

TrackingArea::TrackingArea(QWidget *view, const QRect &rectangle, QObject *owner)
    : QObject(view), m_rectangle(rectangle), m_owner(owner)
{
    // Hover events, unlike mouse events, also come while the pointer is over a view inside this one.
    view->setAttribute(Qt::WA_Hover);
    view->installEventFilter(this);
}

bool TrackingArea::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        pointerIsAt(static_cast<QHoverEvent *>(event)->position().toPoint(), true);
        break;
    case QEvent::HoverLeave:
        pointerIsAt(static_cast<QHoverEvent *>(event)->oldPosF().toPoint(), false);
        break;
    default:
        break;
    }
    return false;
}

void TrackingArea::pointerIsAt(const QPoint &position, bool inView)
{
    if (QGuiApplication::mouseButtons() != Qt::NoButton) return;
    const bool wasInside = m_inside;
    const bool hasMoved = position != m_position;
    m_inside = inView && m_rectangle.contains(position);
    m_position = position;
    if (m_inside && !wasInside)
        tell(TrackingEvent::Kind::mouseEntered, position);
    else if (m_inside && hasMoved) // entering comes with a movement to the same place
        tell(TrackingEvent::Kind::mouseMoved, position);
    else if (!m_inside && wasInside)
        tell(TrackingEvent::Kind::mouseExited, position);
}

void TrackingArea::tell(TrackingEvent::Kind kind, const QPoint &position)
{
    if (!m_owner) return;
    TrackingEvent event(kind, position, this);
    QCoreApplication::sendEvent(m_owner, &event);
}

} // namespace tessaly
