// The three ways in which a run may wait for its child.
#pragma once

#include "platform/main_queue.h"

#include <QEventLoop>
#include <QThreadPool>
#include <QTimer>
#include <functional>

namespace tessaly::test {

enum class Waiting { plainly, inEventLoop, inPoolThread };

inline void inWaitingMode(Waiting waiting, const std::function<void()> &work)
{
    if (waiting == Waiting::plainly) work();
    if (waiting == Waiting::inEventLoop) {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, [&] {
            work();
            loop.quit();
        });
        loop.exec();
    }
    if (waiting == Waiting::inPoolThread) {
        asyncOnGlobalQueue(work);
        QThreadPool::globalInstance()->waitForDone();
    }
}

} // namespace tessaly::test

Q_DECLARE_METATYPE(tessaly::test::Waiting)
