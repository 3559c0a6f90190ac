#include "platform/busy_input.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QThread>

namespace tessaly {

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

namespace {

int nesting = 0;
int outermostLoopLevel = 0;
bool discardingWhatWaits = false;
bool applicationIsQuitting = false;

// Qt marks a close by code as spontaneous, too. The user's arrives in an event loop that was begun meanwhile;
// so do those by which the application ends all its windows, and they must get through: it tries for ever.
bool isClosedByUser(const QEvent &event)
{
    if (event.type() != QEvent::Close || !event.spontaneous() || applicationIsQuitting) return false;
    return discardingWhatWaits || QThread::currentThread()->loopLevel() > outermostLoopLevel;
}

class Discarder : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Quit) applicationIsQuitting = true;
        if (!isUserInput(*event) && !isClosedByUser(*event)) return false;
        // The sender reads this as the answer: a drag learns that nothing is accepted, a key is not tried as
        // a shortcut.
        event->setAccepted(event->type() == QEvent::ShortcutOverride);
        return true;
    }
};

QPointer<Discarder> discarder;

} // namespace

BusyInput::BusyInput()
{
    if (nesting++ > 0 || !QCoreApplication::instance()) return;
    outermostLoopLevel = QThread::currentThread()->loopLevel();
    applicationIsQuitting = false;
    discarder = new Discarder;
    QCoreApplication::instance()->installEventFilter(discarder);
}

BusyInput::~BusyInput()
{
    if (nesting == 1 && QCoreApplication::instance()) {
        const QScopedValueRollback discarding(discardingWhatWaits, true);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(); // what was posted during that pass, by a timer for instance
    }
    if (--nesting == 0) delete discarder;
}

bool BusyInput::isBusy()
{
    return nesting > 0;
}

} // namespace tessaly
