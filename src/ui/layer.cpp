#include "ui/layer.h"

#include "ui/layer_effect.h"

#include <QCoreApplication>
#include <QWidget>

namespace tessaly {

ViewLayer::ViewLayer(QWidget *view) : QObject(view), m_view(view) {}

ViewLayer *ViewLayer::of(const QWidget *view)
{
    return view->findChild<ViewLayer *>(QString(), Qt::FindDirectChildrenOnly);
}

ViewLayer *ViewLayer::wantedFor(QWidget *view)
{
    ViewLayer *layer = of(view);
    return layer ? layer : new ViewLayer(view);
}

QEvent::Type ViewLayer::changeEvent()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

void ViewLayer::setValues(const Layer &values)
{
    m_values = values;
    if (!paintsSomething(values)) {
        // Without an effect the view is painted straight into its window, with all that is done there for
        // text.
        if (m_effect) m_view->setGraphicsEffect(nullptr);
    } else if (m_effect) {
        m_effect->setLayer(values);
    } else {
        m_effect = new LayerEffect(m_view, values);
        m_view->setGraphicsEffect(m_effect);
    }
    QEvent changed(changeEvent());
    QCoreApplication::sendEvent(m_view, &changed);
}

} // namespace tessaly
