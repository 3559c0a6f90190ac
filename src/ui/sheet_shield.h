// A sheet that keeps the mouse and the keyboard from its window as a modal one does, but no drags.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace tessaly {

// Qt refuses every drag to a window under a modal sheet before anyone is asked. So the sheet is shown without
// being modal, and its shield does the rest. While the sheet is visible:
//   - what a person does with mouse, keys or touch in the window, or in a sheet that was up on it before, is
//     thrown away; a press there, or activating it, brings the sheet to front.
//   - the window can be closed, which ends the sheet's visit as well as the window's.
//   - a drag onto the sheet counts as one onto the window.
// Belongs to the sheet. Main thread only.
class SheetShield : public QObject
{
public:
    // To be made before the sheet is shown; the sheet is a window of its own.
    SheetShield(QWidget *window, QWidget *sheet);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool covers(const QObject *watched) const;
    bool keepOff(QEvent *event);
    void bringSheetToFront();

    QPointer<QWidget> m_window;
    QWidget *m_sheet;
    QList<QPointer<QWidget>> m_covered; // the window and the sheets on it
};

} // namespace tessaly
