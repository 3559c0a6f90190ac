#include "ui/sheet_shield.h"

#include "platform/busy_input.h"

#include <QApplication>
#include <QDialog>
#include <QWindow>

#include <algorithm>

namespace tessaly {

namespace {

bool isDrag(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        return true;
    default:
        return false;
    }
}

bool isPress(const QEvent &event)
{
    return event.type() == QEvent::MouseButtonPress || event.type() == QEvent::TouchBegin ||
           event.type() == QEvent::TabletPress;
}

// An action or a shortcut is of the window of its widget; a QWindow is asked for itself.
const QWidget *widgetOf(const QObject *object)
{
    while (object && !object->isWidgetType())
        object = object->parent();
    return static_cast<const QWidget *>(object);
}

// What happens to a window is told to each of its widgets as well.
bool isWindow(const QObject *object)
{
    return object->isWidgetType() && static_cast<const QWidget *>(object)->isWindow();
}

void closePopups()
{
    while (QWidget *popup = QApplication::activePopupWidget()) {
        if (!popup->close()) return;
    }
}

} // namespace

SheetShield::SheetShield(QWidget *window, QWidget *sheet)
    : QObject(sheet), m_window(window), m_sheet(sheet), m_covered{window}
{
    const QList<QDialog *> sheets = window->findChildren<QDialog *>(QString(), Qt::FindDirectChildrenOnly);
    for (QDialog *other : sheets)
        if (other != sheet && other->isVisible()) m_covered << other;
    sheet->setAcceptDrops(true);
    closePopups(); // the menu of a window that takes no input could not be left
    QCoreApplication::instance()->installEventFilter(this);
}

bool SheetShield::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_sheet->isVisible() || !m_window) return false;
    if (isDrag(*event)) return watched == m_sheet && static_cast<QObject *>(m_window)->event(event);
    if (event->type() == QEvent::WindowActivate && isWindow(watched) && covers(watched))
        QMetaObject::invokeMethod(this, &SheetShield::bringSheetToFront, Qt::QueuedConnection);
    return isUserInput(*event) && covers(watched) && keepOff(event);
}

bool SheetShield::covers(const QObject *watched) const
{
    const QWidget *widget = widgetOf(watched);
    return std::any_of(m_covered.begin(), m_covered.end(), [&](const QPointer<QWidget> &window) {
        return window && (widget ? widget->window() == window : watched == window->windowHandle());
    });
}

bool SheetShield::keepOff(QEvent *event)
{
    if (isPress(*event)) bringSheetToFront();
    // The sender reads this as the answer: a key is not tried as a shortcut.
    event->setAccepted(event->type() == QEvent::ShortcutOverride);
    return true;
}

void SheetShield::bringSheetToFront()
{
    if (!m_sheet->isVisible()) return;
    m_sheet->raise();
    m_sheet->activateWindow();
}

} // namespace tessaly
