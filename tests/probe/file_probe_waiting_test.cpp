#include "probe/file_probe.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::FakeTools;

namespace {

const QString prober = u"sniffer"_s;
const QString report = uR"({"streams": [{"codec_type": "audio"}]})"_s;

// Counts what a user does to it.
class Target : public QObject
{
public:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress) ++keys;
        if (event->type() == QEvent::MouseButtonPress) ++clicks;
        return QObject::event(event);
    }
    void use()
    {
        QCoreApplication::postEvent(this, new QEvent(QEvent::KeyPress));
        QCoreApplication::postEvent(this, new QEvent(QEvent::MouseButtonPress));
    }

    int keys = 0;
    int clicks = 0;
};

} // namespace

class FileProbeWaitingTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void inAnEventLoopTimersFireAndInputIsThrownAway();
    void inAnEventLoopTheTimeLimitHolds();
    void withoutAnEventLoopNothingHappensMeanwhile();
    void onAPoolThread();
};

void FileProbeWaitingTest::inAnEventLoopTimersFireAndInputIsThrownAway()
{
    FakeTools tools;
    const QTemporaryDir folder;
    const QString goAhead = folder.filePath(u"go ahead"_s);
    tools.setSteps(prober, {{u"wait-for-file"_s, goAhead}, {u"print"_s, report}});
    Target target;
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &target, [&] {
        if (++ticks == 5) QVERIFY(QFile(goAhead).open(QIODevice::WriteOnly));
        target.use();
    });
    FileProbe probe;
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        timer.start(1);
        probe = FileProbe(u"/videos/film.mp4"_s);
        timer.stop();
        loop.quit();
    });
    loop.exec();
    QVERIFY(probe.isValidMediaFile);
    QVERIFY(ticks >= 5); // for these the prober waited

    // Nothing of that time comes later; what comes later arrives.
    target.use();
    QTRY_COMPARE(target.clicks, 1);
    QCOMPARE(target.keys, 1);
}

void FileProbeWaitingTest::inAnEventLoopTheTimeLimitHolds()
{
    FakeTools tools;
    tools.setBehaviour(prober, u"hang"_s);
    FileProbe probe;
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        probe = FileProbe(u"/videos/film.mp4"_s, std::chrono::milliseconds(200));
        loop.quit();
    });
    loop.exec();
    QVERIFY(probe.proberFailure);
    QVERIFY(tools.runningProcesses(prober).isEmpty());
}

void FileProbeWaitingTest::withoutAnEventLoopNothingHappensMeanwhile()
{
    FakeTools tools;
    tools.setSteps(prober, {{u"pause"_s, u"100"_s}, {u"print"_s, report}});
    Target target;
    bool ticked = false;
    QTimer::singleShot(0, &target, [&] { ticked = true; });
    target.use();
    const FileProbe probe(u"/videos/film.mp4"_s);
    QVERIFY(probe.isValidMediaFile);
    QVERIFY(!ticked);
    QCOMPARE(target.keys, 0);
    QTRY_VERIFY(ticked);
    QCOMPARE(target.keys, 1); // kept: no window was there to be busy
}

void FileProbeWaitingTest::onAPoolThread()
{
    FakeTools tools;
    tools.setBehaviour(prober, u"print"_s, {report});
    FileProbe probe;
    QThreadPool::globalInstance()->start([&] { probe = FileProbe(u"/videos/film.mp4"_s); });
    QVERIFY(QThreadPool::globalInstance()->waitForDone(test::waitLimit));
    QVERIFY(probe.isValidMediaFile);
}

TESSALY_TEST_MAIN(FileProbeWaitingTest)
#include "file_probe_waiting_test.moc"
