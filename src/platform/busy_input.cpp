#include "platform/busy_input.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QThread>

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

int nesting = 0;
int outermostLoopLevel = 0;
bool discardingWhatWaits = false;

// Qt marks a close by code as spontaneous, too. The user's arrives in an event loop that was begun meanwhile.
bool isClosedByUser(const QEvent &event)
{
    if (event.type() != QEvent::Close || !event.spontaneous()) return false;
    return discardingWhatWaits || QThread::currentThread()->loopLevel() > outermostLoopLevel;
}

class Discarder : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (!isUserInput(*event) && !isClosedByUser(*event)) return false;
        event->setAccepted(answer(*event));
        return true;
    }
};

QPointer<Discarder> discarder;

} // namespace

BusyInput::BusyInput()
{
    if (nesting++ > 0 || !QCoreApplication::instance()) return;
    outermostLoopLevel = QThread::currentThread()->loopLevel();
    discarder = new Discarder;
    QCoreApplication::instance()->installEventFilter(discarder);
}

BusyInput::~BusyInput()
{
    if (nesting == 1 && QCoreApplication::instance()) {
        const QScopedValueRollback discarding(discardingWhatWaits, true);
        QCoreApplication::processEvents();
    }
    if (--nesting == 0) delete discarder;
}

bool BusyInput::isBusy()
{
    return nesting > 0;
}

} // namespace tessaly
