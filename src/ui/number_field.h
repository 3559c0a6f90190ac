// A text field for a number: it holds the number that code has set, or the text that a person has typed.
#pragma once

#include <QLineEdit>
#include <QPointF>

#include <optional>
#include <variant>

namespace tessaly {

// An edit is open while the text differs from the one last set or committed. It ends when
//   - it is committed: by Return, by commitEdit(), or because the focus goes to another control. A menu or
//     another window only borrows the focus: the edit stays open.
//   - it is dropped: by Escape or discardEdit();
//   - a value is set from code.
// The keys Up and Down enter the next number but one, not below 0.
//
// A field that loses the focus by being disabled commits nothing. Any text may be typed; none can be dropped.
class NumberField : public QLineEdit
{
    Q_OBJECT

public:
    explicit NumberField(QWidget *parent = nullptr);

    // These end an open edit and fire nothing.
    void setIntegerValue(qint64 value); // plain digits, never grouped
    void setDoubleValue(double value);  // as generalText()
    void setStringValue(const QString &text);
    // The same. Hides the one of QLineEdit, which would open an edit; the form's property lands here.
    void setText(const QString &text) { setStringValue(text); }

    // The number that code has set, or else the text as it stands, also the one of an open edit, read as
    // integerFromText() and doubleFromText() do. A double is truncated towards zero; out of range it gives
    // the nearest integer, nan gives 0.
    qint64 integerValue() const;
    // In 32 bits: the nearest such integer for a text, the low bits of a number.
    int intValue() const;
    double doubleValue() const;
    QString stringValue() const { return text(); }

    bool hasOpenEdit() const;
    // Commits an open edit and fires committed(); without one nothing happens.
    void commitEdit();
    // Replaces the text as a person does by typing, and commits it as Return does.
    void enter(const QString &text);
    // Brings the text back to the one last set or committed, without firing.
    void discardEdit();

Q_SIGNALS:
    // Once for every edit that was committed, and for Return in an unchanged field.
    void committed();
    // A single click with the primary button, the pointer kept in its place between press and release; the
    // caret has been placed. Neither the clicks that select a word, a line or up to the caret, nor a drag.
    void clickedPlainly();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    using Number = std::variant<qint64, double>;

    void display(const QString &text, std::optional<Number> number);
    void commit();
    // Nothing while the text is one that a person typed.
    std::optional<Number> numberFromCode() const;
    bool hasLeftPressPoint(QPointF position) const;

    QString m_settledText;              // last set or committed
    std::optional<Number> m_number;     // what m_settledText shows, when code has set a number
    std::optional<QPointF> m_pressedAt; // where a plain click may have begun
};

} // namespace tessaly
