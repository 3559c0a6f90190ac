// How the parts of the window look: what no form can say.
#include "ui/main_window.h"
#include "ui/percent_text.h"
#include "ui/symbol_icon.h"
#include "ui_main_window.h"

#include <QEvent>

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// The poster's ground is dark in every colour scheme.
constexpr QColor hintColour(0xc3, 0xc9, 0xd6);
constexpr int symbolSide = 56;   // pixels at 100 % screen scale
constexpr qreal hintSize = 1.25; // of the normal type

int widthOf(const QWidget *widget, const QString &text)
{
    return widget->fontMetrics().horizontalAdvance(text);
}

// Lines in two columns lie level when one control of each is as high as the highest.
void levelOut(std::initializer_list<const QWidget *> controls, std::initializer_list<QWidget *> stretched)
{
    int height = 0;
    for (const QWidget *control : controls)
        height = std::max(height, control->sizeHint().height());
    for (QWidget *control : stretched)
        control->setMinimumHeight(height);
}

} // namespace

void MainWindow::styleHint()
{
    QPalette palette; // holds no other colour, so that the rest follows the theme
    palette.setColor(QPalette::WindowText, hintColour);
    m_form->dropHintLBL->setPalette(palette);
    for (QLabel *label : {m_form->dropHintLBL, m_form->emptySymbolLBL})
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_form->emptySymbolLBL->setPixmap(
        symbolPixmap(u"open"_s, {symbolSide, symbolSide}, devicePixelRatio(), hintColour));
}

// All that depends on the type, which may change while the window is up.
void MainWindow::sizeFields()
{
    QFont hintFont = font();
    hintFont.setPointSizeF(hintFont.pointSizeF() * hintSize);
    m_form->dropHintLBL->setFont(hintFont);
    for (NumberField *field : {m_form->widthTF, m_form->heightTF}) {
        field->setAlignment(Qt::AlignRight);
        field->setFixedWidth(widthOf(field, u"0000000"_s) + 24);
    }
    QLabel *caption = m_form->sliderTitleLBL;
    int widest = 0;
    for (const QString &text : {u"Scale:"_s, u"Width:"_s, u"Height:"_s})
        widest = std::max(widest, widthOf(caption, text));
    caption->setMinimumWidth(widest);
    QLabel *percent = m_form->percentLBL;
    percent->setMinimumWidth(widthOf(percent, u"000.0 %"_s) + percent->indent() + 4);
    levelOut({m_form->inputLBL, m_form->proportionalCBX}, {m_form->inputLBL, m_form->proportionalCBX});
    levelOut({m_form->sizeSLDR, m_form->widthTF}, {m_form->sizeSLDR, m_form->pixelsLBL});
}

// A label's text is mirrored by the direction of its letters, not by that of the window.
void MainWindow::alignLabels()
{
    const auto side = isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
    for (QLabel *label : {m_form->inputLBL, m_form->sliderTitleLBL})
        label->setAlignment(Qt::AlignAbsolute | side | Qt::AlignVCenter);
}

// What describes a control is greyed with it.
void MainWindow::greyCaptions()
{
    const auto follow = [](const QWidget *control, std::initializer_list<QWidget *> captions) {
        for (QWidget *caption : captions)
            caption->setEnabled(control->isEnabled());
    };
    follow(m_form->sizeSLDR, {m_form->inputLBL, m_form->sliderTitleLBL, m_form->percentLBL});
    follow(m_form->widthTF, {m_form->widthLBL, m_form->pixelsLBL});
    follow(m_form->heightTF, {m_form->heightLBL});
    follow(m_posterSlider, {m_posterTitle});
}

void MainWindow::showPercent(double percent)
{
    m_percent = percent;
    m_form->percentLBL->setText(percentText(percent) + u" %"_s);
}

void MainWindow::showPosterText(PosterText text)
{
    const bool isEmpty = text == PosterText::howToOpen;
    m_form->emptySymbolLBL->setVisible(isEmpty);
    m_form->emptyOpenBTN->setVisible(isEmpty);
    m_form->dropHintLBL->setVisible(text != PosterText::none);
    switch (text) {
    case PosterText::none:
        break;
    case PosterText::howToOpen:
        m_form->dropHintLBL->setText(tr("Drop a video here, or press Ctrl+O to open one"));
        break;
    case PosterText::noPreview:
        m_form->dropHintLBL->setText(tr("No preview"));
        break;
    case PosterText::otherStills:
        m_form->dropHintLBL->setText(tr("No preview here. The slider shows other frames."));
        break;
    }
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (!m_posterSlider) return; // still being made
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) sizeFields();
    if (event->type() == QEvent::LayoutDirectionChange) alignLabels();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::EnabledChange) greyCaptions();
    return QMainWindow::eventFilter(watched, event);
}

} // namespace tessaly
