// A progress bar that gives back exactly the value it was given.
#pragma once

#include "ui/value_accessibility.h"

#include <QProgressBar>

namespace tessaly {

// Meant as 0 to 100 percent, but never clamped: only the drawing stays within the bar. A value that is not
// finite is drawn as a busy bar, until a finite one follows. No text is written on the bar unless the form
// asks for it.
class ProgressBar : public QProgressBar, public AccessibleValueSource
{
    Q_OBJECT
    Q_PROPERTY(double doubleValue READ doubleValue WRITE setDoubleValue)

public:
    explicit ProgressBar(QWidget *parent = nullptr);

    double doubleValue() const { return m_value; }
    void setDoubleValue(double percent);

    QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }
    AccessibleValue accessibleValue() const override;

private:
    // They would draw something else than the value says.
    using QProgressBar::reset;
    using QProgressBar::setMaximum;
    using QProgressBar::setMinimum;
    using QProgressBar::setRange;
    using QProgressBar::setValue;

    double m_value = 0;
};

} // namespace tessaly
