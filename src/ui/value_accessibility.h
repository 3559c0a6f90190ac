// What a control with an exact value tells assistive technology. Qt's own interfaces would tell the integer
// position that is drawn.
#pragma once

#include <QAccessible>
#include <QString>

namespace tessaly {

struct AccessibleValue
{
    double current;
    double minimum;
    double maximum;
    double step;  // smallest change that a person can ask for; 0: none
    QString text; // as it is read out; empty: there is nothing to tell at the moment
};

// A base of widgets besides their Qt class. Main thread.
class AccessibleValueSource
{
public:
    AccessibleValueSource();
    virtual ~AccessibleValueSource() = default;

    virtual QAccessible::Role accessibleRole() const = 0;
    virtual AccessibleValue accessibleValue() const = 0;
    // A person asked for this value through assistive technology. Ignored unless a control has a use for it.
    virtual void setValueByUser(double value);
};

} // namespace tessaly
