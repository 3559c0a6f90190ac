// The sheets of a window on a desktop where a program cannot bring them to front.
#pragma once

#include <QDialog>
#include <QPointer>

class QWidget;

namespace tessaly {

// The sheet on top of all that are on the window, those on its sheets included; null when there is none. A
// panel of the desktop's own is none. Main thread only.
QDialog *topSheetOn(const QWidget *window);

// On Wayland a program can only ask for the keyboard. A desktop that grants it to the window under a sheet
// (it was clicked, say) and lays that window over the sheet leaves the person with a window that answers
// nothing. While one of these lives, a sheet whose window is active there, at a change or a moment after the
// sheet was shown, asks for the keyboard, and where that is not granted it is shown anew, some few times:
// what comes up, comes up in front. Elsewhere nothing happens. Main thread only.
class SheetsInFront : public QObject
{
public:
    SheetsInFront();
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void follow();

    QPointer<QDialog> m_sheet; // under its window when last looked
    int m_showings = 0;        // anew, of this sheet, since it last was in front
};

} // namespace tessaly
