// What is for someone who looks: it does not open while another program is in front.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace tessaly {

// Whether the desktop says which program is in front. Without a window manager, and without a display, nobody
// does. Main thread only.
bool desktopTellsWhoIsInFront();

// Main thread only.
class Attention : public QObject
{
public:
    // For this window with its sheets and alerts, which outlives it.
    explicit Attention(QWidget *window, bool canBeTold = desktopTellsWhoIsInFront());

    // Whether the window or a sheet of it is in front; true where that cannot be told.
    bool isThere() const;

    // Runs the work at once when the attention is there (as judged by the caller, before its own sheets came
    // and went). Otherwise the window asks for it (a mark in the task bar, say), and the work runs from the
    // event loop as soon as the window comes to the front. One piece of work at a time.
    void whenThere(bool isThere, std::function<void()> work);
    bool isAwaited() const { return static_cast<bool>(m_work); }

    // Brings the window to the front, as far as the desktop lets it. The token is the desktop's permission,
    // on Wayland; it may be empty.
    void bringToFront(const QString &activationToken = {});

private:
    void runWhenThere();

    QWidget *m_window;
    bool m_canBeTold;
    std::function<void()> m_work;
};

} // namespace tessaly
