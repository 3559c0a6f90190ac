#include "ui/attention.h"

#include "platform/main_queue.h"
#include "ui/unmanaged_focus.h"

#include <QApplication>

#include <utility>

namespace tessaly {

using namespace Qt::StringLiterals;

bool desktopTellsWhoIsInFront()
{
    const QString platform = QGuiApplication::platformName();
    const bool hasDisplay = platform != "offscreen"_L1 && platform != "minimal"_L1;
    return hasDisplay && !isDisplayUnmanaged();
}

Attention::Attention(QWidget *window, bool canBeTold) : m_window(window), m_canBeTold(canBeTold)
{
    connect(qApp, &QGuiApplication::focusWindowChanged, this, [this] {
        // Which widget is active is known a moment later.
        if (isAwaited()) asyncOnMainQueue(this, [this] { runWhenThere(); });
    });
}

bool Attention::isThere() const
{
    if (!m_canBeTold) return true;
    for (const QWidget *active = QApplication::activeWindow(); active; active = active->parentWidget()) {
        if (active == m_window) return true;
    }
    return false;
}

void Attention::whenThere(bool isThere, std::function<void()> work)
{
    if (isThere) {
        work();
        return;
    }
    m_work = std::move(work);
    QApplication::alert(m_window);
}

void Attention::runWhenThere()
{
    if (isThere() && m_work) std::exchange(m_work, nullptr)();
}

void Attention::bringToFront(const QString &activationToken)
{
    if (!activationToken.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

} // namespace tessaly
