// A slider that holds an exact value. QSlider draws the position next to it and takes mouse and keys.
#pragma once

#include "ui/value_accessibility.h"

#include <QSlider>

namespace tessaly {

// The value is always finite and within the range. The range is 0 to 1 at the start; a form sets it by the
// properties below.
//
// What a person does: a press beside the handle brings the handle there, and the same press can go on as a
// drag; the mouse picks the roundest value that the pixel stands for, and never moves a value off its own
// pixel. Arrow keys and notches of the wheel go by `singleStep` (1), the page keys by `pageStep` (10), from a
// value in between to the next whole step. The wheel moves the slider only when it has the keyboard focus.
//
// Units: singleStep and pageStep are amounts of the value; tickInterval counts positions.
class Slider : public QSlider, public AccessibleValueSource
{
    Q_OBJECT
    Q_PROPERTY(double minimumValue READ minimumValue WRITE setMinimumValue)
    Q_PROPERTY(double maximumValue READ maximumValue WRITE setMaximumValue)
    Q_PROPERTY(double doubleValue READ doubleValue WRITE setDoubleValue)
    Q_PROPERTY(int positionsPerUnit READ positionsPerUnit WRITE setPositionsPerUnit)
    Q_PROPERTY(QString unit READ unit WRITE setUnit)

public:
    explicit Slider(QWidget *parent = nullptr);

    double minimumValue() const { return m_minimum; }
    double maximumValue() const { return m_maximum; }
    // The value is clamped to the new range at once. A range that is not finite, or too large to count its
    // positions, is ignored. A maximum below the minimum counts as the minimum; set alone, each end pushes
    // the other one along.
    void setDoubleRange(double minimum, double maximum);
    void setMinimumValue(double minimum);
    void setMaximumValue(double maximum);

    // How finely the mouse can set the value: 10 at the start, that is steps of 0.1. At least 1.
    int positionsPerUnit() const { return m_positionsPerUnit; }
    void setPositionsPerUnit(int positions);

    // Behind the value where it is read out, with the blank in between: " %". Empty at the start.
    QString unit() const { return m_unit; }
    void setUnit(const QString &unit) { m_unit = unit; }

    double doubleValue() const { return m_value; }
    qint64 integerValue() const; // truncated towards zero
    int intValue() const;        // the same
    // Clamped to the range; nan becomes the minimum. These never fire changedByUser.
    void setDoubleValue(double value);
    void setIntegerValue(qint64 value);
    void setStringValue(const QString &text); // read as doubleFromText() does

    QSize sizeHint() const override;

    QAccessible::Role accessibleRole() const override { return QAccessible::Slider; }
    AccessibleValue accessibleValue() const override;
    void setValueByUser(double value) override;

Q_SIGNALS:
    // A person changed the value by mouse, key, wheel or assistive technology; again and again during a drag.
    void changedByUser();

protected:
    void initStyleOption(QStyleOptionSlider *option) const override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    // They would set a position behind the exact value's back.
    using QSlider::setMaximum;
    using QSlider::setMinimum;
    using QSlider::setRange;
    using QSlider::setSliderPosition;
    using QSlider::setValue;

    void drawTicks(QPainter &painter, const QStyleOptionSlider &option) const;
    void followAction(int action);
    double valueAskedFor(int action) const;
    double valueUnderMouse() const;
    double stepped(double amount) const;

    double bounded(double value) const;
    double valueAt(int position) const;
    int positionOf(double value) const;
    int pixelOf(int position) const;
    void store(double value);
    void applyRange();

    double m_minimum = 0;
    double m_maximum = 1;
    double m_value = 0;
    int m_positionsPerUnit = 10;
    int m_wheelAngle = 0; // turned since the last whole notch, in eighths of a degree
    QString m_unit;
};

} // namespace tessaly
