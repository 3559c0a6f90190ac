// The three ways in which a run may wait for its child.
#pragma once

#include "platform/main_queue.h"

#include <QEventLoop>
#include <QTest>
#include <QThreadPool>
#include <QTimer>
#include <functional>
#include <utility>

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

inline const std::pair<const char *, Waiting> waitingModes[] = {{"plainly", Waiting::plainly},
                                                                {"in an event loop", Waiting::inEventLoop},
                                                                {"in a pool thread", Waiting::inPoolThread}};

template<class... Values>
void addRows(const char *name, const Values &...values)
{
    for (const auto &[modeName, mode] : waitingModes) {
        QTestData &row = QTest::addRow("%s, waiting %s", name, modeName) << mode;
        ((row << values), ...);
    }
}

} // namespace tessaly::test

Q_DECLARE_METATYPE(tessaly::test::Waiting)
