// Two parts beside each other, or one below the other where there is no room for both.
#pragma once

#include <QFrame>

namespace tessaly {

// Its layout, given by the form, is a QBoxLayout of two widgets. It asks for the width of the wider part
// only, so that it never keeps its window from being narrow.
class BreakingRow : public QFrame
{
    Q_OBJECT

public:
    using QFrame::QFrame;

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;

private:
    void arrange();
};

} // namespace tessaly
