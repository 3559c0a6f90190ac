#include "ui/slider.h"

#include "platform/number_text.h"

#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QStylePainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace tessaly {

namespace {

constexpr double mostPositions = 1e9; // on either side of zero, so that their difference still fits an int

// Styles that put the handle above the ticks ask for less than they paint.
constexpr QSize roomForHandle(0, 6);

constexpr int tickDistance = 3; // pixels at 100 % screen scale, from the handle
constexpr int tickLength = 4;
constexpr float tickStrength = 0.6F; // of the ink

bool canBeCounted(double value, int positionsPerUnit)
{
    return std::abs(value) * positionsPerUnit <= mostPositions; // false for nan
}

} // namespace

Slider::Slider(QWidget *parent) : QSlider(Qt::Horizontal, parent)
{
    // A click takes the focus on every platform, so that an edit open in a field is committed before the
    // slider moves.
    setFocusPolicy(Qt::StrongFocus);
    applyRange();
    connect(this, &QAbstractSlider::actionTriggered, this, &Slider::followAction);
}

void Slider::setDoubleRange(double minimum, double maximum)
{
    if (!canBeCounted(minimum, m_positionsPerUnit) || !canBeCounted(maximum, m_positionsPerUnit)) return;
    m_minimum = minimum;
    m_maximum = std::max(minimum, maximum);
    applyRange();
}

void Slider::setMinimumValue(double minimum)
{
    setDoubleRange(minimum, m_maximum);
}

void Slider::setMaximumValue(double maximum)
{
    setDoubleRange(std::min(m_minimum, maximum), maximum);
}

void Slider::setPositionsPerUnit(int positions)
{
    if (positions < 1 || !canBeCounted(m_minimum, positions) || !canBeCounted(m_maximum, positions)) return;
    m_positionsPerUnit = positions;
    applyRange();
}

qint64 Slider::integerValue() const
{
    return static_cast<qint64>(m_value);
}

int Slider::intValue() const
{
    return static_cast<int>(m_value);
}

void Slider::setDoubleValue(double value)
{
    store(bounded(value));
}

void Slider::setIntegerValue(qint64 value)
{
    setDoubleValue(static_cast<double>(value));
}

void Slider::setStringValue(const QString &text)
{
    setDoubleValue(doubleFromText(text));
}

QSize Slider::sizeHint() const
{
    return QSlider::sizeHint() + roomForHandle;
}

AccessibleValue Slider::accessibleValue() const
{
    const double shown = std::round(m_value * m_positionsPerUnit) / m_positionsPerUnit;
    return {m_value, m_minimum, m_maximum, double(singleStep()), generalText(shown) + m_unit};
}

void Slider::setValueByUser(double value)
{
    const double before = m_value;
    store(bounded(value));
    if (m_value != before) Q_EMIT changedByUser();
}

void Slider::initStyleOption(QStyleOptionSlider *option) const
{
    QSlider::initStyleOption(option);
    // Styles draw ticks and outlines in a darker shade of the window: on a dark one nobody would see them.
    const QColor ground = option->palette.color(QPalette::Window);
    const QColor ink = option->palette.color(QPalette::WindowText);
    if (ground.lightness() < ink.lightness()) option->palette.setColor(QPalette::Window, ink);
}

// Styles draw the ticks in the shade of the groove's filled part, too faint on a dark ground.
void Slider::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionSlider option;
    initStyleOption(&option);
    option.subControls = QStyle::SC_SliderGroove | QStyle::SC_SliderHandle;
    if (isSliderDown()) {
        option.activeSubControls = QStyle::SC_SliderHandle;
        option.state |= QStyle::State_Sunken;
    }
    painter.drawComplexControl(QStyle::CC_Slider, option);
    if (tickPosition() != NoTicks) drawTicks(painter, option);
}

void Slider::drawTicks(QPainter &painter, const QStyleOptionSlider &option) const
{
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const int span = style()->pixelMetric(QStyle::PM_SliderSpaceAvailable, &option, this);
    const int first =
        handle.left() + handle.width() / 2 -
        QStyle::sliderPositionFromValue(minimum(), maximum(), sliderPosition(), span, option.upsideDown);
    const int step = std::max(1, tickInterval() > 0 ? tickInterval() : pageStep());
    QColor colour = palette().color(QPalette::WindowText);
    colour.setAlphaF(tickStrength);
    for (int position = minimum(); position <= maximum(); position += step) {
        const int x =
            first + QStyle::sliderPositionFromValue(minimum(), maximum(), position, span, option.upsideDown);
        painter.fillRect(x, handle.bottom() + tickDistance, 1, tickLength, colour);
    }
}

void Slider::mousePressEvent(QMouseEvent *event)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    if (handle.contains(event->position().toPoint())) {
        QSlider::mousePressEvent(event);
        return;
    }
    // Takes the handle where it stands and pulls it to the mouse.
    QMouseEvent grab(QEvent::MouseButtonPress, handle.center(), mapToGlobal(handle.center()), event->button(),
                     event->buttons(), event->modifiers());
    QSlider::mousePressEvent(&grab);
    QMouseEvent pull(QEvent::MouseMove, event->position(), event->globalPosition(), Qt::NoButton,
                     event->buttons(), event->modifiers());
    QSlider::mouseMoveEvent(&pull);
    event->setAccepted(grab.isAccepted());
}

void Slider::wheelEvent(QWheelEvent *event)
{
    if (!hasFocus()) {
        event->ignore();
        return;
    }
    const int up = event->angleDelta().y();
    m_wheelAngle += event->inverted() ? -up : up;
    const int notches = m_wheelAngle / QWheelEvent::DefaultDeltasPerStep;
    m_wheelAngle -= notches * QWheelEvent::DefaultDeltasPerStep;
    if (notches != 0) setValueByUser(stepped(notches * singleStep()));
}

// QAbstractSlider has moved the position, but not yet the value, when it tells of an action.
void Slider::followAction(int action)
{
    setValueByUser(valueAskedFor(action));
}

double Slider::valueAskedFor(int action) const
{
    switch (action) {
    case SliderSingleStepAdd:
        return stepped(singleStep());
    case SliderSingleStepSub:
        return stepped(-singleStep());
    case SliderPageStepAdd:
        return stepped(pageStep());
    case SliderPageStepSub:
        return stepped(-pageStep());
    case SliderToMinimum:
        return m_minimum;
    case SliderToMaximum:
        return m_maximum;
    default:
        return valueUnderMouse();
    }
}

double Slider::valueUnderMouse() const
{
    const int pixel = pixelOf(sliderPosition());
    if (pixel == pixelOf(positionOf(m_value))) return m_value;
    const double exact = valueAt(sliderPosition());
    for (const int step : {pageStep(), singleStep()}) {
        const double round = bounded(m_minimum + std::round((exact - m_minimum) / step) * step);
        if (pixel == pixelOf(positionOf(round))) return round;
    }
    return exact;
}

double Slider::stepped(double amount) const
{
    const double steps = (m_value - m_minimum) / singleStep();
    const double whole = (amount > 0 ? std::floor(steps) : std::ceil(steps)) * singleStep();
    return bounded(m_minimum + whole + amount);
}

double Slider::bounded(double value) const
{
    return std::isnan(value) ? m_minimum : std::clamp(value, m_minimum, m_maximum);
}

double Slider::valueAt(int position) const
{
    if (position >= maximum()) return m_maximum;
    return m_minimum + double(position) / m_positionsPerUnit;
}

int Slider::positionOf(double value) const
{
    return qRound((value - m_minimum) * m_positionsPerUnit);
}

int Slider::pixelOf(int position) const
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const int span = style()->pixelMetric(QStyle::PM_SliderSpaceAvailable, &option, this);
    return QStyle::sliderPositionFromValue(minimum(), maximum(), position, span, option.upsideDown);
}

void Slider::store(double value)
{
    const bool isNew = value != m_value;
    const int before = QSlider::value();
    m_value = value;
    setValue(positionOf(value)); // tells assistive technology, unless the position stands still
    if (!isNew || QSlider::value() != before) return;
    QAccessibleValueChangeEvent event(this, value);
    QAccessible::updateAccessibility(&event);
}

void Slider::applyRange()
{
    setRange(0, positionOf(m_maximum));
    store(bounded(m_value));
}

} // namespace tessaly
