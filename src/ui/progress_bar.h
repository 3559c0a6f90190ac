// A progress bar that gives back exactly the value it was given.
#pragma once

#include "ui/value_accessibility.h"

#include <QProgressBar>
#include <QTimer>

#include <chrono>
#include <optional>

namespace tessaly {

// Meant as 0 to 100 percent, but never clamped: only the drawing stays within the bar. A value that is not
// finite is drawn as a busy bar, until a finite one follows. No text is written on the bar unless the form
// asks for it.
//
// Assistive technology can ask for the value at any time, and is told of it at a calm pace while the bar is
// shown.
class ProgressBar : public QProgressBar, public AccessibleValueSource
{
    Q_OBJECT
    Q_PROPERTY(double doubleValue READ doubleValue WRITE setDoubleValue)

public:
    explicit ProgressBar(QWidget *parent = nullptr);

    double doubleValue() const { return m_value; }
    void setDoubleValue(double percent);
    bool isBusy() const; // the value is not finite
    QString text() const override;

    // How long at least from one announcement to the next. Each tells the value of its moment, in whole
    // percent, and is left out while that stays the same.
    void setAnnouncementPace(std::chrono::milliseconds pace) { m_announcement.setInterval(pace); }

    QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }
    AccessibleValue accessibleValue() const override;

Q_SIGNALS:
    void announced(int percent);

protected:
    void initStyleOption(QStyleOptionProgressBar *option) const override;
    void hideEvent(QHideEvent *event) override;

private:
    // The range and the value of QProgressBar stay as they are: it tells every small step of them.
    using QProgressBar::reset;
    using QProgressBar::setMaximum;
    using QProgressBar::setMinimum;
    using QProgressBar::setRange;
    using QProgressBar::setValue;

    void announce();

    double m_value = 0;
    QTimer m_announcement;
    std::optional<int> m_announced; // whole percent
};

} // namespace tessaly
