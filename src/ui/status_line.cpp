#include "ui/status_line.h"

#include <QPainter>
#include <QSizeGrip>
#include <QStyle>
#include <QStyleOption>

namespace tessaly {

namespace {

constexpr int edge = 9; // pixels at 100 % screen scale, as in the form

} // namespace

// The base class has an edge of its own that cannot be set.
void StatusLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
    const auto *grip = findChild<QSizeGrip *>();
    const int atGrip = grip && grip->isVisible() ? grip->width() : edge;
    const QRect place = QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(edge, 0, -atGrip, 0));
    const auto side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(place, int(Qt::AlignAbsolute | side | Qt::AlignVCenter) | Qt::TextSingleLine,
                     fontMetrics().elidedText(currentMessage(), Qt::ElideRight, place.width()));
}

} // namespace tessaly
