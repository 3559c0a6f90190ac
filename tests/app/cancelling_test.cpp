// A cancel from the first moment on, and with converters that do not obey.
#include "app/app_harness.h"
#include "jobs/poster_frames.h"
#include "platform/child_process.h"
#include "platform/printing.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QThreadPool>
#include <QTimer>

#include <csignal>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// How many children there are at the moment in which the sheet goes.
class SheetWatch : public QObject
{
public:
    explicit SheetWatch(AppHarness &app) : m_app(app)
    {
        app.delegate.progressWindow->installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Hide)
            childrenAtTheEnd = m_app.tools.runningProcesses(u"creator"_s).size();
        return false;
    }
    std::optional<qsizetype> childrenAtTheEnd;

private:
    AppHarness &m_app;
};

// As the system names it: 'T' is stopped.
char stateOfProcess(pid_t process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly)) return '-';
    const QByteArray text = file.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1).front();
}

// Keeps every thread of the pool busy.
class FullPool
{
public:
    FullPool()
    {
        for (int i = 0; i < QThreadPool::globalInstance()->maxThreadCount(); ++i)
            QThreadPool::globalInstance()->start([this] { m_doors.acquire(); });
    }
    ~FullPool()
    {
        m_doors.release(QThreadPool::globalInstance()->maxThreadCount());
        QThreadPool::globalInstance()->waitForDone();
    }
    FullPool(const FullPool &) = delete;
    FullPool &operator=(const FullPool &) = delete;

private:
    QSemaphore m_doors;
};

} // namespace

class TestCancelling : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    QString output() const { return app->folder.filePath(u"out.mp4"_s); }
    bool isConverting() const { return app->delegate.progressWindow->isVisible(); }
    qsizetype children() const { return app->tools.runningProcesses(u"creator"_s).size(); }

    void openPlainClip() { app->openForReal(app->copyOfClip(u"plain.mp4"_s, u"input.mp4"_s)); }
    void letConverter(const QList<QStringList> &steps)
    {
        app->tools.forgetCalls(u"creator"_s);
        app->tools.setSteps(u"creator"_s, steps);
    }
    QString ending() const
    {
        return u"%1 children left, output %2, %3"_s.arg(children())
            .arg(QFile::exists(output()) ? u"there"_s : u"gone"_s,
                 app->alert() ? u"alert: "_s + app->told() : u"no alert"_s);
    }
    // The job is over and has left nothing but silence.
    void checkThatItWasCancelled() const
    {
        QCOMPARE(children(), 0);
        QVERIFY(!isConverting());
        QVERIFY(!QFile::exists(output()));
        QCOMPARE(app->alertText(), QString());
        QCOMPARE(app->delegate.isProcessCancelledByUser, std::optional(true));
        QVERIFY(app->delegate.saveBTN->isEnabled());
    }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>();
    }
    void cleanup()
    {
        app.reset();
        letRunsStart();
    }

    void beforeTheChildRuns()
    {
        openPlainClip();
        {
            const FullPool pool;
            app->delegate.saveResponse(1, output());
            app->delegate.closeBTNInsideProgressWindowClicked(nullptr);
        }
        QTRY_VERIFY(!app->delegate.isBusy());
        seen(u"converter started %1 times, "_s.arg(app->tools.calls(u"creator"_s).size()) + ending());
        checkThatItWasCancelled();
        QVERIFY(app->tools.calls(u"creator"_s).isEmpty());
    }

    void soonAfterTheStart_data()
    {
        QTest::addColumn<int>("delay"); // milliseconds
        for (const int delay : {0, 5, 15, 25, 35, 50})
            QTest::addRow("%d ms", delay) << delay;
    }
    void soonAfterTheStart()
    {
        QFETCH(int, delay);
        openPlainClip();
        QElapsedTimer clock;
        std::optional<qint64> cancelledAt;
        QTimer::singleShot(delay, Qt::PreciseTimer, &app->window, [&] {
            cancelledAt = clock.elapsed();
            if (app->delegate.progressCancel->isVisible())
                app->delegate.progressCancel->click();
            else
                app->delegate.closeBTNInsideProgressWindowClicked(nullptr);
        });
        clock.start();
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(cancelledAt && !app->delegate.isBusy());
        seen(u"cancelled %1 ms after the start: "_s.arg(*cancelledAt) + ending());
        checkThatItWasCancelled();
    }

    void twiceIsOnce_data()
    {
        QTest::addColumn<bool>("byEscape");
        QTest::newRow("two clicks") << false;
        QTest::newRow("Escape twice") << true;
    }
    void twiceIsOnce()
    {
        QFETCH(bool, byEscape);
        openPlainClip();
        letConverter({{u"write-output"_s, u"half"_s}, {u"slow-flush"_s, u"200"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting() && QFile::exists(output()));
        SheetWatch watch(*app);
        for (int i = 0; i < 2; ++i) {
            if (byEscape)
                QTest::keyClick(app->delegate.progressWindow.get(), Qt::Key_Escape);
            else
                QTest::mouseClick(app->delegate.progressCancel.get(), Qt::LeftButton);
        }
        QVERIFY(isConverting());
        QTRY_VERIFY(!app->delegate.isBusy());
        seen(u"children when the sheet went: %1; "_s.arg(watch.childrenAtTheEnd.value_or(-1)) + ending());
        QCOMPARE(watch.childrenAtTheEnd, std::optional<qsizetype>(0));
        checkThatItWasCancelled();
    }

    void theSheetStaysUntilTheChildHasEnded_data()
    {
        QTest::addColumn<QList<QStringList>>("steps");
        QTest::addColumn<bool>("suspended");
        QTest::addColumn<int>("limit"); // milliseconds
        const QStringList half{u"write-output"_s, u"half"_s};
        QTest::newRow("flushes for less than it may")
            << QList<QStringList>{half, {u"slow-flush"_s, u"2000"_s}} << false << 60000;
        QTest::newRow("flushes for longer than it may")
            << QList<QStringList>{half, {u"slow-flush"_s, u"60000"_s}} << false << 700;
        QTest::newRow("ignores SIGTERM")
            << QList<QStringList>{{u"ignore-terminate"_s}, half, {u"hang"_s}} << false << 700;
        QTest::newRow("is stopped") << QList<QStringList>{half, {u"hang"_s}} << true << 700;
    }
    void theSheetStaysUntilTheChildHasEnded()
    {
        QFETCH(QList<QStringList>, steps);
        QFETCH(bool, suspended);
        QFETCH(int, limit);
        QCOMPARE(app->delegate.cancelLimit, 2s);
        app->delegate.cancelLimit = std::chrono::milliseconds(limit);
        openPlainClip();
        letConverter(steps);
        app->saveTo(output());
        QTRY_VERIFY(isConverting() && QFile::exists(output()));
        const auto child = static_cast<pid_t>(app->tools.runningProcesses(u"creator"_s).value(0));
        if (suspended) {
            QCOMPARE(::kill(child, SIGSTOP), 0);
            QTRY_COMPARE(stateOfProcess(child), 'T'); // before that, SIGTERM would overtake it
        }
        SheetWatch watch(*app);
        QElapsedTimer clock;
        clock.start();
        QTest::mouseClick(app->delegate.progressCancel.get(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(!app->delegate.isBusy(), 30000);
        const qint64 spent = clock.elapsed();
        seen(u"sheet up for %1 ms (limit %2), children when it went: %3; "_s.arg(spent).arg(limit).arg(
                 watch.childrenAtTheEnd.value_or(-1)) +
             ending());
        QCOMPARE(watch.childrenAtTheEnd, std::optional<qsizetype>(0));
        QVERIFY2(spent >= qMin(limit, 2000), qPrintable(QString::number(spent)));
        checkThatItWasCancelled();
    }

    // As the desktop tells of it, and with what the program installs.
    void theEndOfTheSession_data()
    {
        QTest::addColumn<bool>("converting");
        QTest::newRow("while converting") << true;
        QTest::newRow("while opening") << false;
    }
    void theEndOfTheSession()
    {
        QFETCH(bool, converting);
        const QString input = app->copyOfClip(u"long.mp4"_s, u"input.mp4"_s);
        app->useRealProber();
        app->useRealConverter();
        QCoreApplication::instance()->installEventFilter(&app->delegate);
        QTimer watch;
        bool told = false;
        connect(&watch, &QTimer::timeout, this, [&] {
            const bool isInTheMiddle =
                converting ? QFile::exists(output()) : QFile::exists(posterFramePath(3));
            if (!isInTheMiddle || !isConverting() || told) return;
            told = true;
            QEvent quit(QEvent::Quit);
            QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
        });
        watch.start(10);
        QTimer::singleShot(0, this, [&] {
            if (!converting) {
                app->delegate.openVideo(QUrl::fromLocalFile(input));
                return;
            }
            app->openForReal(input);
            app->delegate.saveResponse(1, output());
        });
        QTimer::singleShot(20000, &watch, [] { QCoreApplication::exit(1); });
        const int status = QApplication::exec();
        app->delegate.applicationWillTerminate(nullptr);
        seen(u"the program ended with %1, %2, %3 frames left"_s.arg(status).arg(ending()).arg(
            QDir(posterFrameFolder()).entryList(QDir::Files).size()));
        QVERIFY(told);
        QCOMPARE(status, 0);
        QCOMPARE(children(), 0);
        QVERIFY(!QFile::exists(output()));
        QVERIFY(!QFile::exists(posterFrameFolder()));
    }
};

TESSALY_GUI_TEST_MAIN(TestCancelling)
#include "cancelling_test.moc"
