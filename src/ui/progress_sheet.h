// The sheet that follows a longer piece of work: a title, a bar, a line of details in small type, Cancel.
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace tessaly {

class ProgressBar;

// Its object name is "progressWindow"; those of its parts are "progressTitle" (QLabel), "progressBar"
// (ProgressBar), "progressDetail" (QLabel) and "progressCancel" (QPushButton). All texts are plain text.
//
// Nobody but endSheet() takes it away. While Cancel can be clicked, Escape and the window manager's close
// command click on it; while Cancel is hidden or disabled they do nothing.
class ProgressSheet : public QDialog
{
    Q_OBJECT

public:
    explicit ProgressSheet(QWidget *parent = nullptr);

    // Shows it as a window-modal sheet of the window, which becomes its parent. Comes back at once.
    void beginSheet(QWidget *window);
    // Takes it away; it can be begun again. Nothing happens when it is not up.
    void endSheet();

public Q_SLOTS:
    void reject() override;

private:
    QLabel *m_title;
    ProgressBar *m_bar;
    QLabel *m_detail;
    QPushButton *m_cancel;
};

} // namespace tessaly
