#include "ui/value_accessibility.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace tessaly {

namespace {

class ValueInterface : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    ValueInterface(QWidget *widget, AccessibleValueSource &source)
        : QAccessibleWidget(widget, source.accessibleRole()), m_source(source)
    {}

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? m_source.accessibleValue().text : QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override { return m_source.accessibleValue().current; }
    void setCurrentValue(const QVariant &value) override { m_source.setValueByUser(value.toDouble()); }
    QVariant minimumValue() const override { return m_source.accessibleValue().minimum; }
    QVariant maximumValue() const override { return m_source.accessibleValue().maximum; }
    QVariant minimumStepSize() const override { return m_source.accessibleValue().step; }

private:
    AccessibleValueSource &m_source;
};

QAccessibleInterface *makeInterface(const QString & /*className*/, QObject *object)
{
    auto *source = dynamic_cast<AccessibleValueSource *>(object);
    return source == nullptr ? nullptr : new ValueInterface(static_cast<QWidget *>(object), *source);
}

} // namespace

AccessibleValueSource::AccessibleValueSource()
{
    // Qt asks the factories from the last installed one to the first, and takes each function once.
    QAccessible::installFactory(makeInterface);
}

void AccessibleValueSource::setValueByUser(double /*value*/) {}

} // namespace tessaly
