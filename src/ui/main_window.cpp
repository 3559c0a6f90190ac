#include "ui/main_window.h"

#include "ui/progress_sheet.h"
#include "ui/slider.h"
#include "ui/symbol_icon.h"
#include "ui/view_styling.h"
#include "ui_main_window.h"

#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QScreen>
#include <QShortcut>
#include <QStatusTipEvent>
#include <QWidgetAction>

namespace tessaly {

using namespace Qt::StringLiterals;

MainWindow::MainWindow(QWidget *parent) : QMainWindow(parent), m_form(std::make_unique<Ui::MainWindowForm>())
{
    m_form->setupUi(this);
    setAcceptDrops(true);
    addPosterSlider();
    addIcons();
    styleHint();
    sizeFields();
    alignLabels();
    followPercent();
    followControls();
    followNames();
    applyFormStyling(this);
    new ProgressSheet(this);
    showPosterText(PosterText::howToOpen);
    connect(m_form->emptyOpenBTN, &QPushButton::clicked, m_form->openBTN, &QAction::trigger);
    m_form->quitBTN->setShortcuts({Qt::CTRL | Qt::Key_Q, Qt::CTRL | Qt::Key_W});
    auto *menuKey = new QShortcut(Qt::Key_F10, this);
    connect(menuKey, &QShortcut::activated, this, [this] {
        m_form->menuBar->setFocus(Qt::MenuBarFocusReason);
        m_form->menuBar->setActiveAction(m_form->fileMenu->menuAction());
    });
    connect(m_form->quitBTN, &QAction::triggered, this, &QWidget::close);
    fitScreen();
}

MainWindow::~MainWindow() = default;

bool MainWindow::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop: {
        QObject *poster = m_form->posterView;
        return poster->event(event);
    }
    case QEvent::StatusTip: // a menu that has nothing to say does not take away what stands there
        return static_cast<QStatusTipEvent *>(event)->tip().isEmpty() || QMainWindow::event(event);
    default:
        return QMainWindow::event(event);
    }
}

void MainWindow::paintEvent(QPaintEvent *event)
{
    QMainWindow::paintEvent(event);
    if (m_hasIcon) return;
    m_hasIcon = true;
    // Drawn from vectors in several sizes, for which the window's first picture does not wait.
    QMetaObject::invokeMethod(
        this, [] { QApplication::setWindowIcon(applicationIcon()); }, Qt::QueuedConnection);
}

// A form cannot put a slider into a tool bar.
void MainWindow::addPosterSlider()
{
    auto *box = new QWidget;
    box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_posterTitle = new QLabel(tr("F&rame"), box);
    auto *slider = new Slider(box);
    m_posterSlider = slider;
    slider->setObjectName(u"posterPositionSlider"_s);
    slider->setOrientation(Qt::Horizontal);
    slider->setDoubleRange(1, 11);
    slider->setPositionsPerUnit(1);
    slider->setTickPosition(QSlider::TicksBelow);
    slider->setTickInterval(1);
    slider->setPageStep(1);
    slider->setMaximumWidth(320);
    slider->setMinimumWidth(120);
    slider->setToolTip(tr("Which still of the video is shown"));
    m_posterTitle->setBuddy(slider);

    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(12, 0, 12, 0);
    layout->addStretch();
    layout->addWidget(m_posterTitle);
    layout->addWidget(slider, 1);
    layout->addStretch();

    auto *item = new QWidgetAction(this);
    item->setObjectName(u"posterPositionSliderTBI"_s);
    item->setDefaultWidget(box);
    m_form->toolBar->insertAction(m_form->helpBTN, item);
}

void MainWindow::addIcons()
{
    m_form->openBTN->setIcon(symbolIcon(u"open"_s));
    m_form->saveBTN->setIcon(symbolIcon(u"save"_s));
    m_form->helpBTN->setIcon(symbolIcon(u"help"_s));
}

// The slider's positions are as fine as the text.
void MainWindow::followPercent()
{
    const auto show = [this] { showPercent(m_form->sizeSLDR->doubleValue()); };
    connect(m_form->sizeSLDR, &QSlider::valueChanged, this, show);
    show();
}

void MainWindow::followControls()
{
    for (QWidget *control : std::initializer_list<QWidget *>{m_form->sizeSLDR, m_form->widthTF,
                                                             m_form->heightTF, m_posterSlider})
        control->installEventFilter(this);
    greyCaptions();
}

void MainWindow::fitScreen()
{
    const QSize available = screen()->availableSize();
    resize(size().boundedTo(available * 0.92));
}

void MainWindow::showFileName(const QString &path)
{
    setWindowFilePath(path);
    QString name = QFileInfo(path).fileName();
    namePoster(name);
    if (path.isEmpty()) {
        setWindowTitle(u"Tessaly"_s);
        return;
    }
    // "[*]" in a title stands for the mark of a changed document; doubled it stands for itself.
    name.replace("[*]"_L1, "[*][*]"_L1);
    setWindowTitle(name + u" — Tessaly"_s); // as Qt writes it under the other windows' titles
}

void MainWindow::showStatus(const QString &text)
{
    // A fact that begins with a number has no direction of its own.
    constexpr QChar leftToRightMark(0x200e);
    m_form->statusBar->showMessage(isRightToLeft() ? leftToRightMark + text : text);
}

} // namespace tessaly
