#include "platform/main_queue.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThreadPool>
#include <utility>

namespace tessaly {

void asyncOnMainQueue(std::function<void()> work)
{
    QCoreApplication *application = QCoreApplication::instance();
    if (application) QMetaObject::invokeMethod(application, std::move(work), Qt::QueuedConnection);
}

void asyncOnMainQueue(QObject *context, std::function<void()> work)
{
    asyncOnMainQueue([guard = QPointer<QObject>(context), work = std::move(work)] {
        if (guard) work();
    });
}

void asyncOnGlobalQueue(std::function<void()> work)
{
    QThreadPool::globalInstance()->start(std::move(work));
}

} // namespace tessaly
