#include "ui/breaking_row.h"

#include <QBoxLayout>
#include <QEvent>

#include <algorithm>

namespace tessaly {

namespace {

int outerWidth(const QLayout &layout)
{
    const QMargins margins = layout.contentsMargins();
    return margins.left() + margins.right();
}

} // namespace

QSize BreakingRow::minimumSizeHint() const
{
    const auto *parts = static_cast<const QBoxLayout *>(layout());
    int widest = 0;
    for (int i = 0; i < parts->count(); ++i)
        widest = std::max(widest, parts->itemAt(i)->minimumSize().width());
    return {widest + outerWidth(*parts), parts->minimumSize().height()};
}

void BreakingRow::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    arrange();
}

// A larger type needs more room.
bool BreakingRow::event(QEvent *event)
{
    const bool result = QFrame::event(event);
    if (event->type() == QEvent::LayoutRequest) arrange();
    return result;
}

void BreakingRow::arrange()
{
    auto *parts = static_cast<QBoxLayout *>(layout());
    int needed = outerWidth(*parts) + parts->spacing() * (parts->count() - 1);
    for (int i = 0; i < parts->count(); ++i)
        needed += parts->itemAt(i)->minimumSize().width();
    const auto direction = width() < needed ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
    if (parts->direction() == direction) return;
    parts->setDirection(direction);
    updateGeometry();
}

} // namespace tessaly
