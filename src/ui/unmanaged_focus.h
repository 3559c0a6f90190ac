// The keyboard on a display without a window manager.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace tessaly {

// Whether this is an X display on which nobody manages the windows. Main thread only.
bool isDisplayUnmanaged();

// Where nobody manages the windows, as on a kiosk or a bare X server, nobody gives the keyboard to a window
// that comes up, nor to the one behind it when it goes. While one of these lives, the windows and sheets of
// the application ask for it themselves there; where a window manager runs, or there is no X server, nothing
// happens. Main thread only.
class UnmanagedFocus : public QObject
{
public:
    UnmanagedFocus();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow();

    QList<QPointer<QWidget>> m_shown; // newest last
};

} // namespace tessaly
