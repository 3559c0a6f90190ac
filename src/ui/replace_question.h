// The questions that a panel asks about what was chosen in it, as sheets of plain text.
#pragma once

#include <QString>

#include <functional>

class QMessageBox;
class QWidget;

namespace tessaly {

// A sheet of the parent, without buttons. It deletes itself when it is closed.
QMessageBox *makePlainQuestion(QWidget *parent, const QString &text);

// Asks on the parent whether the file may be replaced, and calls with the answer when the sheet is gone;
// never when the parent dies under it. Main thread only.
void askBeforeReplacing(QWidget *parent, const QString &path,
                        const std::function<void(bool replace)> &answer);

} // namespace tessaly
