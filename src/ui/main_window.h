// The one window, as its form lays it out. What the controls do is the controller's matter.
#pragma once

#include <QMainWindow>
#include <QTimer>

#include <memory>

class QLabel;

namespace tessaly {

namespace Ui {
class MainWindowForm;
}

class ProgressSheet;
class Slider;

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

    // What stands in the place of a picture: how a video comes in, with a button for it; that there is no
    // picture of the open video; that there is none of this part of it.
    enum class PosterText { none, howToOpen, noPreview, otherStills };
    void showPosterText(PosterText text);

    // The size in percent of the input beside the slider, which cannot go as far. A change of the slider
    // shows its own value.
    void showPercent(double percent);

    // A quiet fact in the status line, as plain text.
    void showStatus(const QString &text);

    // The same, and a screen reader says it, where Qt can tell one (from 6.8 on).
    void announce(const QString &text);

    // To be called when the controls of the size show another one. The size slider is named after it, for
    // screen readers, from the event loop: once for all calls until then.
    void tellSize();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addPosterSlider();
    void addIcons();
    void styleHint();
    void followPercent();
    void followControls();
    void sizeFields();
    void alignLabels();
    void greyCaptions();
    void fitScreen();
    void followNames(); // main_window_names.cpp
    void nameSizeSlider();
    void namePosterSlider();
    void namePoster(const QString &fileName);

    std::unique_ptr<Ui::MainWindowForm> m_form;
    QLabel *m_posterTitle = nullptr;
    Slider *m_posterSlider = nullptr;
    double m_percent = 0; // as shown beside the slider
    QTimer m_sizeTold;    // runs until that is done
    bool m_hasIcon = false;
};

} // namespace tessaly
