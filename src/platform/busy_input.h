// Times in which windows repaint but take no input.
#pragma once

class QEvent;

namespace tessaly {

// Whether the event is something that a person does with a window: mouse, wheel, keys, shortcuts, touch,
// tablet, gestures, context menus, input methods, drags and drops.
bool isUserInput(const QEvent &event);

// While one of these lives, what the user does is thrown away and not delivered later: keys, mouse, wheel,
// touch, tablet, gestures, shortcuts, context menus, input methods, drags and drops (which are told that
// nothing is accepted), and the window's close button. Everything else goes on: painting, timers, calls from
// other threads. May be nested. On the application object's thread only. Code that wants a window gone from
// within a callback of that time hides it: a close would be taken for the user's. The end of the last one
// runs the event loop once more, so that input that is already waiting is thrown away too, with what is
// posted meanwhile. Ending the application is not held up.
class BusyInput
{
public:
    BusyInput();
    ~BusyInput();
    BusyInput(const BusyInput &) = delete;
    BusyInput &operator=(const BusyInput &) = delete;

    static bool isBusy();
};

} // namespace tessaly
