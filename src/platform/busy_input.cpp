#include "platform/busy_input.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

namespace tessaly {

namespace {

bool isUserInput(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::NonClientAreaMouseButtonRelease:
    case QEvent::NonClientAreaMouseButtonDblClick:
    case QEvent::NonClientAreaMouseMove:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::TabletMove:
    case QEvent::TabletEnterProximity:
    case QEvent::TabletLeaveProximity:
    case QEvent::NativeGesture:
    case QEvent::Gesture:
    case QEvent::GestureOverride:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return true;
    case QEvent::Close:
        return event.spontaneous();
    default:
        return false;
    }
}

// What the sender of a discarded event reads as the answer. A drag learns that nothing is accepted. A close
// that is part of the application's end must not stop that end, and a key must not be tried as a shortcut.
bool answer(const QEvent &event)
{
    return event.type() == QEvent::Close || event.type() == QEvent::ShortcutOverride;
}

class Discarder : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (!isUserInput(*event)) return false;
        event->setAccepted(answer(*event));
        return true;
    }
};

int nesting = 0;
QPointer<Discarder> discarder;

} // namespace

BusyInput::BusyInput()
{
    if (nesting++ > 0 || !QCoreApplication::instance()) return;
    discarder = new Discarder;
    QCoreApplication::instance()->installEventFilter(discarder);
}

BusyInput::~BusyInput()
{
    if (nesting == 1 && QCoreApplication::instance()) QCoreApplication::processEvents();
    if (--nesting == 0) delete discarder;
}

bool BusyInput::isBusy()
{
    return nesting > 0;
}

} // namespace tessaly
