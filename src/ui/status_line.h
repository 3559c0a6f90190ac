// The line of quiet facts at the foot of the window.
#pragma once

#include <QStatusBar>

namespace tessaly {

// Its text begins on the left edge of all that stands above it, and one that is too long ends in dots.
class StatusLine : public QStatusBar
{
    Q_OBJECT

public:
    using QStatusBar::QStatusBar;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tessaly
