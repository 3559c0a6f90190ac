#include "platform/main_queue.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QThread>
#include <QThreadPool>
#include <atomic>
#include <memory>

using namespace Qt::StringLiterals;

namespace tessaly::test {

class MainQueueTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void neverRunsInsideTheCall()
    {
        bool done = false;
        asyncOnMainQueue([&] { done = true; });
        QVERIFY(!done);
        QTRY_VERIFY(done);
    }

    void runsOnTheApplicationsThreadInOrder()
    {
        QString order;
        bool onMain = true;
        QObject context;
        QThread *main = QThread::currentThread();
        asyncOnGlobalQueue([&, main] {
            asyncOnMainQueue([&, main] { order += u'1', onMain &= QThread::currentThread() == main; });
            asyncOnMainQueue(&context,
                             [&, main] { order += u'2', onMain &= QThread::currentThread() == main; });
            asyncOnMainQueue([&, main] { order += u'3', onMain &= QThread::currentThread() == main; });
        });
        QTRY_COMPARE(order, u"123"_s);
        QVERIFY(onMain);
    }

    void workOfADeadContextIsDropped()
    {
        bool dropped = true;
        bool done = false;
        auto context = std::make_unique<QObject>();
        asyncOnMainQueue(context.get(), [&] { dropped = false; });
        asyncOnMainQueue([&] { done = true; });
        context.reset();
        QTRY_VERIFY(done);
        QVERIFY(dropped);
    }

    void theGlobalQueueIsAnotherThread()
    {
        QSemaphore finished;
        std::atomic<QThread *> thread = nullptr;
        asyncOnGlobalQueue([&] {
            thread = QThread::currentThread();
            finished.release();
        });
        QVERIFY(finished.tryAcquire(1, waitLimit));
        QVERIFY(thread != QThread::currentThread());
        QVERIFY(QThreadPool::globalInstance()->waitForDone(waitLimit));
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::MainQueueTest)
#include "main_queue_test.moc"
