#include "ui/number_field.h"

#include "platform/number_text.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessaly {

namespace {

constexpr qint64 largestStepped = std::numeric_limits<qint64>::max() - 2;

qint64 truncated(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(value)) return 0;
    if (value >= limit) return std::numeric_limits<qint64>::max();
    if (value < -limit) return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

// The focus is only lent out: it comes back to the field by itself.
bool willReturn(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
           reason == Qt::MenuBarFocusReason;
}

} // namespace

NumberField::NumberField(QWidget *parent) : QLineEdit(parent)
{
    // A path that is dropped here is meant for the window, and must not become a part of the number.
    setAcceptDrops(false);
    connect(this, &QLineEdit::returnPressed, this, &NumberField::commit);
}

void NumberField::setIntegerValue(qint64 value)
{
    // Grouped digits would be read back as the number before the first group once a person edits them.
    display(QString::number(value), value);
}

void NumberField::setDoubleValue(double value)
{
    display(generalText(value), value);
}

void NumberField::setStringValue(const QString &text)
{
    display(text, std::nullopt);
}

qint64 NumberField::integerValue() const
{
    const auto number = numberFromCode();
    if (!number) return integerFromText(text());
    if (const auto *integer = std::get_if<qint64>(&*number)) return *integer;
    return truncated(std::get<double>(*number));
}

int NumberField::intValue() const
{
    const qint64 value = integerValue();
    if (numberFromCode()) return static_cast<int>(value);
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qint64>(value, Limits::min(), Limits::max()));
}

double NumberField::doubleValue() const
{
    const auto number = numberFromCode();
    if (!number) return doubleFromText(text());
    return std::visit([](auto value) { return static_cast<double>(value); }, *number);
}

bool NumberField::hasOpenEdit() const
{
    return text() != m_settledText;
}

void NumberField::commitEdit()
{
    if (hasOpenEdit()) commit();
}

void NumberField::discardEdit()
{
    if (hasOpenEdit()) QLineEdit::setText(m_settledText);
}

void NumberField::enter(const QString &newText)
{
    selectAll();
    insert(newText);
    commit();
}

void NumberField::keyPressEvent(QKeyEvent *event)
{
    const bool isUp = event->key() == Qt::Key_Up;
    const bool isStep = (isUp || event->key() == Qt::Key_Down) && !(event->modifiers() & ~Qt::KeypadModifier);
    if (event->key() == Qt::Key_Escape && hasOpenEdit())
        discardEdit();
    else if (isStep)
        enter(
            QString::number(std::max<qint64>(0, std::min(integerValue(), largestStepped) + (isUp ? 2 : -2))));
    else
        QLineEdit::keyPressEvent(event);
}

void NumberField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    // A field that is disabled gives its focus away with its edit still open.
    if (isEnabled() && !willReturn(event->reason())) commitEdit();
}

void NumberField::mousePressEvent(QMouseEvent *event)
{
    QLineEdit::mousePressEvent(event);
    m_pressedAt.reset();
    if (event->button() == Qt::LeftButton && !hasSelectedText()) m_pressedAt = event->position();
}

void NumberField::mouseMoveEvent(QMouseEvent *event)
{
    QLineEdit::mouseMoveEvent(event);
    if (m_pressedAt && hasLeftPressPoint(event->position())) m_pressedAt.reset();
}

void NumberField::mouseReleaseEvent(QMouseEvent *event)
{
    QLineEdit::mouseReleaseEvent(event);
    const bool isPlain = m_pressedAt && !hasLeftPressPoint(event->position());
    m_pressedAt.reset();
    if (isPlain) Q_EMIT clickedPlainly();
}

void NumberField::display(const QString &newText, std::optional<Number> number)
{
    if (text() != newText) QLineEdit::setText(newText); // an equal text keeps its caret
    m_settledText = text();
    m_number = number;
}

void NumberField::commit()
{
    m_number = numberFromCode();
    m_settledText = text();
    Q_EMIT committed();
}

std::optional<NumberField::Number> NumberField::numberFromCode() const
{
    return hasOpenEdit() ? std::nullopt : m_number;
}

bool NumberField::hasLeftPressPoint(QPointF position) const
{
    return (position - *m_pressedAt).manhattanLength() >= QApplication::startDragDistance();
}

} // namespace tessaly
