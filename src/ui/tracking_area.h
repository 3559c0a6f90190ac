// A rectangle of a view whose owner hears what the mouse does there.
#pragma once

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>

class QWidget;

namespace tessaly {

class TrackingArea;

// What the owner receives in its event() or in an event filter.
class TrackingEvent : public QEvent
{
public:
    enum class Kind { mouseEntered, mouseExited, mouseMoved };

    TrackingEvent(Kind kind, const QPoint &position, TrackingArea *area);

    static QEvent::Type eventType();

    Kind kind() const { return m_kind; }
    QPoint position() const { return m_position; } // points, in the view
    TrackingArea *area() const { return m_area; }

private:
    Kind m_kind;
    QPoint m_position;
    TrackingArea *m_area;
};

// Watches the pointer whether or not the window is active or the view enabled, also over the views inside the
// view. As long as a button is held nothing is told; what has changed meanwhile is told with the first
// movement after it.
class TrackingArea : public QObject
{
    Q_OBJECT

public:
    // The rectangle in the view's coordinates. The view owns the area; delete it to end the tracking. An
    // owner that is gone is told nothing.
    TrackingArea(QWidget *view, const QRect &rectangle, QObject *owner);

    QRect rectangle() const { return m_rectangle; }
    QObject *owner() const { return m_owner; }

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void pointerIsAt(const QPoint &position, bool inView);
    void tell(TrackingEvent::Kind kind, const QPoint &position);

    QRect m_rectangle;
    QPointer<QObject> m_owner;
    bool m_inside = false;
    QPoint m_position; // where the pointer was last
};

} // namespace tessaly
