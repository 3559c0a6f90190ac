// What the desktop hears of a conversion, on a bus of the test's own that stands for both of the desktop's.
#include "app/app_harness.h"
#include "platform/printing.h"
#include "support/test_case.h"
#include "ui/private_bus.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class FakeLoginManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    ~FakeLoginManager() override { ::close(m_ourEnd); }

    QStringList reasons;

    // Whether the other end of the pipe, the lock that was handed out, is still open anywhere.
    bool isHeld() const
    {
        pollfd seen{.fd = m_ourEnd, .events = POLLIN, .revents = 0};
        return m_ourEnd >= 0 && ::poll(&seen, 1, 0) == 0;
    }

public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString & /*what*/, const QString & /*who*/, const QString &why,
                                    const QString & /*mode*/)
    {
        reasons += why;
        ::close(m_ourEnd);
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) qFatal("no pipe");
        m_ourEnd = ends[0];
        QDBusUnixFileDescriptor lock;
        lock.giveFileDescriptor(ends[1]);
        return lock;
    }

private:
    int m_ourEnd = -1;
};

class FakeNotifications : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    int asked = 0;
    QStringList shown; // "title|text"

public Q_SLOTS:
    QStringList GetCapabilities()
    {
        ++asked;
        return {u"body"_s};
    }
    uint Notify(const QString & /*application*/, uint /*replaces*/, const QString & /*icon*/,
                const QString &title, const QString &text, const QStringList & /*actions*/,
                const QVariantMap & /*hints*/, int /*duration*/)
    {
        shown += title + u'|' + text;
        return 1;
    }
};

// As when a window of another program comes to the front. Qt has deprecated its only way to say that without
// one.
void lookElsewhere()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setActiveWindow(nullptr);
    QT_WARNING_POP
}

class TestDesktop : public TestCase
{
    Q_OBJECT

private:
    PrivateBus bus;
    QDBusConnection theirs{u"unconnected"_s};
    FakeLoginManager manager;
    FakeNotifications notifications;
    QStringList progress; // "hidden", or the part that is done
    std::unique_ptr<AppHarness> app;

public Q_SLOTS:
    void recordProgress(const QString & /*application*/, const QVariantMap &properties)
    {
        progress += properties.value(u"progress-visible"_s).toBool()
                        ? QString::number(properties.value(u"progress"_s).toDouble())
                        : u"hidden"_s;
    }

    static void bringToFront(QWidget &window)
    {
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(bus.start());
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toLatin1());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().toLatin1());
        theirs = bus.connection(u"theirs"_s);
        QVERIFY(
            theirs.registerObject(u"/org/freedesktop/login1"_s, &manager, QDBusConnection::ExportAllSlots));
        QVERIFY(theirs.registerObject(u"/org/freedesktop/Notifications"_s, &notifications,
                                      QDBusConnection::ExportAllSlots));
        QVERIFY(theirs.registerService(u"org.freedesktop.login1"_s));
        QVERIFY(theirs.registerService(u"org.freedesktop.Notifications"_s));
        QVERIFY(theirs.connect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s,
                               this, SLOT(recordProgress(QString, QVariantMap))));
    }
    void init()
    {
        TestCase::init();
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>(true);
        app->letProberReport(640, 360, u"10.0"_s);
        app->drop(app->makeFile(u"clip.mov"_s));
        manager.reasons.clear();
        notifications.shown.clear();
        notifications.asked = 0;
        progress.clear();
    }
    void cleanup() { app.reset(); }

    void tellsOfTheEndToWhoLooksElsewhere_data()
    {
        QTest::addColumn<bool>("looksElsewhere");
        QTest::addColumn<QStringList>("end"); // of the converter
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<QString>("shown");
        const QStringList done{u"write-output"_s, u"video"_s};
        const QStringList failed{u"exit"_s, u"1"_s};
        QTest::newRow("done") << true << done << false << u"Video Resized Successfully!|small.mp4"_s;
        QTest::newRow("done in front") << false << done << false << QString();
        QTest::newRow("failed") << true << failed << false << u"Video could not be resized.|"_s;
        QTest::newRow("failed in front") << false << failed << false << QString();
        QTest::newRow("cancelled") << true << QStringList{u"hang"_s} << true << QString();
    }
    void tellsOfTheEndToWhoLooksElsewhere()
    {
        QFETCH(bool, looksElsewhere);
        QFETCH(QStringList, end);
        QFETCH(bool, cancelled);
        QFETCH(QString, shown);
        const QString goAhead = app->folder.filePath(u"go ahead"_s);
        app->tools.setSteps(
            u"creator"_s,
            {{u"progress"_s, u"0"_s, u"time=00:00:02.50 \r"_s}, {u"wait-for-file"_s, goAhead}, end});
        app->saveTo(app->folder.filePath(u"small.mp4"_s));
        QTRY_COMPARE(progress, (QStringList{u"0"_s, u"0.25"_s}));
        QCOMPARE(manager.reasons, QStringList{u"A video is being resized"_s});
        QVERIFY(manager.isHeld());
        QVERIFY(app->delegate.progressWindow->isVisible());
        QWidget elsewhere; // plays another program
        if (looksElsewhere) bringToFront(elsewhere);
        app->makeFile(u"go ahead"_s);
        if (cancelled) app->delegate.closeBTNInsideProgressWindowClicked(nullptr);

        QTRY_COMPARE(progress, (QStringList{u"0"_s, u"0.25"_s, u"hidden"_s}));
        QTRY_VERIFY(!app->delegate.progressWindow->isVisible());
        QTRY_VERIFY(!manager.isHeld());
        QTRY_VERIFY(app->tools.runningProcesses(u"creator"_s).isEmpty());
        const bool waits = looksElsewhere && !cancelled;
        QTRY_COMPARE(app->delegate.isBusy(), waits);
        QCOMPARE(app->alert() == nullptr, looksElsewhere);
        if (waits) { // the keyboard stays where it is until the person comes back
            QCOMPARE(QApplication::activeWindow(), &elsewhere);
            bringToFront(app->window);
            QTRY_VERIFY(app->alert());
            QVERIFY(!app->delegate.isBusy());
        }
        // What the other side hears after the first word of a note, if there is one.
        QDBusConnection::sessionBus().send(
            QDBusMessage::createSignal(u"/end"_s, u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s)
            << QString() << QVariantMap());
        QTRY_COMPARE(progress.size(), 4);
        if (shown.isEmpty()) {
            QCOMPARE(notifications.asked, 0);
        } else {
            QTRY_COMPARE(notifications.shown.size(), 1);
            QVERIFY2(notifications.shown.first().startsWith(shown), qPrintable(notifications.shown.first()));
        }
    }
};

TESSALY_GUI_TEST_MAIN(TestDesktop)
#include "desktop_test.moc"
