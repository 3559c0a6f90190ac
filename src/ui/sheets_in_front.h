// The sheets of a window on a desktop where a program cannot bring them to front.
#pragma once

#include <QObject>

class QDialog;
class QWidget;

namespace tessaly {

// The sheet on top of all that are on the window, those on its sheets included; null when there is none. A
// panel of the desktop's own is none. Main thread only.
QDialog *topSheetOn(const QWidget *window);

// On Wayland a program can only ask for the keyboard. A desktop that grants it to the window under a sheet
// (it was clicked, say) and lays that window over the sheet leaves the person with a window that answers
// nothing. While one of these lives, a sheet whose window becomes active there asks for the keyboard, and
// where that is not granted it is shown anew: what comes up, comes up in front. Elsewhere nothing happens.
// Main thread only.
class SheetsInFront : public QObject
{
public:
    SheetsInFront();

private:
    void follow();
};

} // namespace tessaly
