#include "ui/view_styling.h"

#include <QDynamicPropertyChangeEvent>
#include <QSet>
#include <QVariant>
#include <QWidget>

#include <array>

namespace tessaly {

namespace {

using MaybeColor = std::optional<QColor>;

// A cleared colour is an engaged answer that holds none; what cannot be read is no answer at all.
std::optional<MaybeColor> readColor(const QVariant &value)
{
    if (!value.isValid()) return MaybeColor();
    if (value.typeId() == QMetaType::QColor) return MaybeColor(value.value<QColor>());
    if (value.typeId() != QMetaType::QString) return std::nullopt;
    const QString name = value.toString();
    if (name.isEmpty()) return MaybeColor();
    if (!QColor::isValidColorName(name)) return std::nullopt;
    return MaybeColor(QColor(name));
}

std::optional<double> readNumber(const QVariant &value)
{
    if (!value.isValid()) return 0.0;
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<float> readOpacity(const QVariant &value)
{
    const std::optional<double> number = readNumber(value);
    return number ? std::optional(static_cast<float>(*number)) : std::nullopt;
}

std::optional<QSizeF> readSize(const QVariant &value)
{
    if (!value.isValid()) return QSizeF(0.0, 0.0);
    if (value.typeId() != QMetaType::QString)
        return value.canConvert<QSizeF>() ? std::optional(value.toSizeF()) : std::nullopt;
    const QStringList parts = value.toString().split(u',');
    if (parts.size() != 2) return std::nullopt;
    const std::optional<double> width = readNumber(parts.at(0));
    const std::optional<double> height = readNumber(parts.at(1));
    if (!width || !height) return std::nullopt;
    return QSizeF(*width, *height);
}

// Applies a value; false when it cannot be read.
using Write = bool (*)(ViewStyling view, const QVariant &value);
using Read = QVariant (*)(ViewStyling view);

template<auto reader, auto setter>
bool write(ViewStyling view, const QVariant &value)
{
    const auto read = reader(value);
    if (!read) return false;
    (view.*setter)(*read);
    return true;
}

template<auto getter>
QVariant read(ViewStyling view)
{
    return QVariant::fromValue((view.*getter)());
}

template<auto getter>
QVariant readColorValue(ViewStyling view)
{
    return (view.*getter)().value_or(QColor());
}

struct StylingProperty
{
    const char *name;
    Write write;
    Read read;
};

constexpr std::array properties{
    StylingProperty{"backgroundColor", write<readColor, &ViewStyling::setBackgroundColor>,
                    readColorValue<&ViewStyling::backgroundColor>},
    StylingProperty{"borderColor", write<readColor, &ViewStyling::setBorderColor>,
                    readColorValue<&ViewStyling::borderColor>},
    StylingProperty{"borderWidth", write<readNumber, &ViewStyling::setBorderWidth>,
                    read<&ViewStyling::borderWidth>},
    StylingProperty{"cornerRadius", write<readNumber, &ViewStyling::setCornerRadius>,
                    read<&ViewStyling::cornerRadius>},
    StylingProperty{"shadowColor", write<readColor, &ViewStyling::setShadowColor>,
                    readColorValue<&ViewStyling::shadowColor>},
    StylingProperty{"shadowOffset", write<readSize, &ViewStyling::setShadowOffset>,
                    read<&ViewStyling::shadowOffset>},
    StylingProperty{"shadowOpacity", write<readOpacity, &ViewStyling::setShadowOpacity>,
                    read<&ViewStyling::shadowOpacity>},
    StylingProperty{"shadowRadius", write<readNumber, &ViewStyling::setShadowRadius>,
                    read<&ViewStyling::shadowRadius>},
};

void apply(QWidget *view, const StylingProperty &property)
{
    const QVariant value = view->property(property.name);
    if (!property.write(ViewStyling(view), value))
        qWarning("The view \"%s\" cannot take this value for %s", qUtf8Printable(view->objectName()),
                 property.name);
}

// Follows the views of all forms.
class FormStyling : public QObject
{
public:
    static FormStyling &instance();

    void follow(QWidget *view);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void publish(QWidget *view);

    QSet<QObject *> m_followed;
    // While a layer's values are written into properties, these changes are no wishes for other values.
    bool m_publishing = false;
};

FormStyling &FormStyling::instance()
{
    static FormStyling styling;
    return styling;
}

void FormStyling::follow(QWidget *view)
{
    if (m_followed.contains(view)) return;
    m_followed.insert(view);
    connect(view, &QObject::destroyed, this, [this](QObject *gone) { m_followed.remove(gone); });
    const QList<QByteArray> names = view->dynamicPropertyNames();
    for (const StylingProperty &property : properties)
        if (names.contains(property.name)) apply(view, property);
    view->installEventFilter(this);
    if (ViewLayer::of(view)) publish(view);
}

bool FormStyling::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == ViewLayer::changeEvent()) {
        publish(static_cast<QWidget *>(watched));
    } else if (event->type() == QEvent::DynamicPropertyChange && !m_publishing) {
        const QByteArray name = static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName();
        for (const StylingProperty &property : properties)
            if (name == property.name) apply(static_cast<QWidget *>(watched), property);
    }
    return false;
}

void FormStyling::publish(QWidget *view)
{
    m_publishing = true;
    for (const StylingProperty &property : properties)
        view->setProperty(property.name, property.read(ViewStyling(view)));
    m_publishing = false;
}

} // namespace

const QStringList &stylingPropertyNames()
{
    static const QStringList names = [] {
        QStringList list;
        for (const StylingProperty &property : properties)
            list << QString::fromLatin1(property.name);
        return list;
    }();
    return names;
}

void applyFormStyling(QWidget *root)
{
    FormStyling &styling = FormStyling::instance();
    styling.follow(root);
    const QList<QWidget *> views = root->findChildren<QWidget *>();
    for (QWidget *view : views)
        styling.follow(view);
}

} // namespace tessaly
