// What a screen reader says of the window.
#include "ui/main_window.h"
#include "ui/percent_text.h"
#include "ui_main_window.h"

#include <QAccessible>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// Each naming is told, a repeated one, too.
void rename(QWidget *control, const QString &name)
{
    if (control->accessibleName() != name) control->setAccessibleName(name);
}

} // namespace

void MainWindow::followNames()
{
    // The label is passed over by the keyboard; the button has the focus at the start.
    m_form->emptyOpenBTN->setAccessibleDescription(m_form->dropHintLBL->text());
    m_form->emptyOpenBTN->setFocus();
    m_sizeTold.setSingleShot(true);
    connect(&m_sizeTold, &QTimer::timeout, this, &MainWindow::nameSizeSlider);
    nameSizeSlider();
    connect(m_posterSlider, &QSlider::valueChanged, this, &MainWindow::namePosterSlider);
    namePosterSlider();
}

void MainWindow::tellSize()
{
    m_sizeTold.start(0);
}

void MainWindow::nameSizeSlider()
{
    Slider *slider = m_form->sizeSLDR;
    const QString caption = m_form->sliderTitleLBL->text().remove(u':');
    const QString percent = percentText(m_percent);
    const qint64 width = m_form->widthTF->integerValue();
    const qint64 height = m_form->heightTF->integerValue();
    if (!slider->isEnabled())
        rename(slider, slider->toolTip());
    else if (caption == "Width"_L1 || caption == "Height"_L1)
        rename(slider, tr("%1, %2 percent, %3 pixels")
                           .arg(caption, percent)
                           .arg(caption == "Width"_L1 ? width : height));
    else
        rename(slider, tr("%1, %2 percent, %3 by %4 pixels").arg(caption, percent).arg(width).arg(height));
}

void MainWindow::namePosterSlider()
{
    rename(m_posterSlider,
           tr("Frame %1 of %2").arg(m_posterSlider->intValue()).arg(m_posterSlider->maximumValue()));
}

void MainWindow::namePoster(const QString &fileName)
{
    rename(m_form->posterView, fileName.isEmpty() ? tr("Poster frame") : fileName);
}

void MainWindow::announce(const QString &text)
{
    showStatus(text);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent event(this, text);
    QAccessible::updateAccessibility(&event);
#endif
}

} // namespace tessaly
