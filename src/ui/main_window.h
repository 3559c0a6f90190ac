// The one window, as its form lays it out. What the controls do is the controller's matter.
#pragma once

#include <QMainWindow>

#include <memory>

namespace tessaly {

namespace Ui {
class MainWindowForm;
}

class ProgressSheet;

// Every control is a child whose object name is its outlet's name. Beside those of the form there are the
// tool bar item "posterPositionSliderTBI" (an action) with its slider "posterPositionSlider", and the sheet
// "progressWindow" with its parts, which lies under the window as long as it is not shown.
//
// What is dragged anywhere onto the window goes to the poster view.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // Names the open file in the title bar; without a path there is none.
    void showFileName(const QString &path);

    // Where no picture is shown, a quiet line says how a video comes in.
    void showDropHint(bool visible);

    // A quiet fact in the status line, as plain text.
    void showStatus(const QString &text);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void addPosterSlider();
    void addIcons();
    void styleHint();
    void followPercent();
    void sizeFields();
    void fitScreen();

    std::unique_ptr<Ui::MainWindowForm> m_form;
    bool m_hasIcon = false;
};

} // namespace tessaly
