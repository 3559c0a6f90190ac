#include "ui/unmanaged_focus.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace tessaly {

namespace {

struct Free
{
    void operator()(void *reply) const { std::free(reply); }
};

bool takesKeyboard(const QWidget &widget)
{
    if (widget.testAttribute(Qt::WA_ShowWithoutActivating)) return false;
    const Qt::WindowType type = widget.windowType();
    return type == Qt::Window || type == Qt::Dialog || type == Qt::Sheet;
}

} // namespace

// A window manager is whoever has asked to decide about the windows on the root, which only one can do.
bool isDisplayUnmanaged()
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    // The platform without a screen has the interface in newer versions of Qt, too, but no display behind it.
    xcb_connection_t *display = x11 ? x11->connection() : nullptr;
    if (!display) return false;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
    const std::unique_ptr<xcb_get_window_attributes_reply_t, Free> attributes(
        xcb_get_window_attributes_reply(display, xcb_get_window_attributes(display, root), nullptr));
    return attributes && (attributes->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) == 0;
}

UnmanagedFocus::UnmanagedFocus()
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool UnmanagedFocus::eventFilter(QObject *watched, QEvent *event)
{
    const bool isShown = event->type() == QEvent::Show;
    if (!watched->isWidgetType() || (!isShown && event->type() != QEvent::Hide)) return false;
    auto *window = static_cast<QWidget *>(watched);
    if (!takesKeyboard(*window)) return false;
    m_shown.removeAll(window);
    if (isShown) m_shown << window;
    // Later: the window is not on the screen yet, or not yet away.
    QMetaObject::invokeMethod(this, &UnmanagedFocus::follow, Qt::QueuedConnection);
    return false;
}

void UnmanagedFocus::follow()
{
    m_shown.removeAll(nullptr);
    if (!m_shown.isEmpty() && !m_shown.last()->isActiveWindow() && isDisplayUnmanaged())
        m_shown.last()->activateWindow();
}

} // namespace tessaly
