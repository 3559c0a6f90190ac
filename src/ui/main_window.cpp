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
    followPercent();
    applyFormStyling(this);
    new ProgressSheet(this);
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
    auto *title = new QLabel(tr("&Frame"), box);
    auto *slider = new Slider(box);
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
    slider->setAccessibleName(tr("Poster frame, 1 to 11"));
    title->setBuddy(slider);

    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(12, 0, 12, 0);
    layout->addStretch();
    layout->addWidget(title);
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

void MainWindow::styleHint()
{
    // The poster's ground is dark in every colour scheme.
    QPalette palette = m_form->dropHintLBL->palette();
    palette.setColor(QPalette::WindowText, QColor(0xc3, 0xc9, 0xd6));
    m_form->dropHintLBL->setPalette(palette);
    m_form->dropHintLBL->setAttribute(Qt::WA_TransparentForMouseEvents);
    QFont font = m_form->dropHintLBL->font();
    font.setPointSizeF(font.pointSizeF() * 1.25);
    m_form->dropHintLBL->setFont(font);
}

void MainWindow::sizeFields()
{
    for (NumberField *field : {m_form->widthTF, m_form->heightTF}) {
        field->setAlignment(Qt::AlignRight);
        field->setFixedWidth(field->fontMetrics().horizontalAdvance(u"0000000"_s) + 24);
    }
    QLabel *percent = m_form->percentLBL;
    percent->setFixedWidth(percent->fontMetrics().horizontalAdvance(u"200.0 %"_s) + percent->indent() + 4);
}

// The slider's positions are as fine as the text.
void MainWindow::followPercent()
{
    const auto show = [this] {
        m_form->percentLBL->setText(QString::number(m_form->sizeSLDR->doubleValue(), 'f', 1) + u" %"_s);
    };
    connect(m_form->sizeSLDR, &QSlider::valueChanged, this, show);
    show();
}

void MainWindow::fitScreen()
{
    const QSize available = screen()->availableSize();
    resize(size().boundedTo(available * 0.92));
}

void MainWindow::showFileName(const QString &path)
{
    setWindowFilePath(path);
    if (path.isEmpty()) {
        setWindowTitle(u"Tessaly"_s);
        return;
    }
    // "[*]" in a title stands for the mark of a changed document; doubled it stands for itself.
    QString name = QFileInfo(path).fileName();
    name.replace("[*]"_L1, "[*][*]"_L1);
    setWindowTitle(name + u" - Tessaly"_s);
}

void MainWindow::showDropHint(bool visible)
{
    m_form->dropHintLBL->setVisible(visible);
}

void MainWindow::showStatus(const QString &text)
{
    // A fact that begins with a number has no direction of its own.
    constexpr QChar leftToRightMark(0x200e);
    m_form->statusBar->showMessage(isRightToLeft() ? leftToRightMark + text : text);
}

} // namespace tessaly
