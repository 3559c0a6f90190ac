// A pointer that goes through the window, so that focus and routing are those of a real one.
#pragma once

#include <QTest>
#include <QWidget>
#include <QWindow>

namespace tessaly::test {

inline QPoint inWindow(const QWidget *widget, QPoint point)
{
    return widget->mapTo(widget->window(), point);
}

inline void pressAt(const QWidget *widget, QPoint point, Qt::MouseButton button = Qt::LeftButton,
                    Qt::KeyboardModifiers modifiers = {})
{
    QTest::mousePress(widget->window()->windowHandle(), button, modifiers, inWindow(widget, point));
}

inline void moveTo(const QWidget *widget, QPoint point)
{
    QTest::mouseMove(widget->window()->windowHandle(), inWindow(widget, point));
}

inline void releaseAt(const QWidget *widget, QPoint point, Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = {})
{
    QTest::mouseRelease(widget->window()->windowHandle(), button, modifiers, inWindow(widget, point));
}

inline void clickAt(const QWidget *widget, QPoint point, Qt::MouseButton button = Qt::LeftButton,
                    Qt::KeyboardModifiers modifiers = {})
{
    pressAt(widget, point, button, modifiers);
    releaseAt(widget, point, button, modifiers);
}

} // namespace tessaly::test
