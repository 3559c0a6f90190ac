#include "support/test_case.h"
#include "ui/desktop_notification.h"
#include "ui/private_bus.h"

#include <QApplication>
#include <QDBusContext>
#include <QDBusPendingCallWatcher>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace std::chrono_literals;

class FakeNotifications : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    bool answers = true;
    QStringList capabilities;
    int asked = 0;
    QStringList shown; // "title|text"
    QVariantMap hints;

public Q_SLOTS:
    QStringList GetCapabilities()
    {
        ++asked;
        if (!answers) setDelayedReply(true);
        return capabilities;
    }
    uint Notify(const QString &application, uint replaces, const QString &icon, const QString &title,
                const QString &text, const QStringList &actions, const QVariantMap &theHints, int duration)
    {
        shown += title + u'|' + text;
        hints = theHints;
        fixedValues = application == "Tessaly"_L1 && replaces == 0 && icon == "tessaly"_L1 &&
                      actions.isEmpty() && duration == -1;
        return 7;
    }

public:
    bool fixedValues = false;
};

class DesktopNotificationTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_bus.start());
        m_ours = m_bus.connection(u"ours"_s);
        m_theirs = m_bus.connection(u"theirs"_s);
        QVERIFY(m_ours.isConnected() && m_theirs.isConnected());
        QVERIFY(m_theirs.registerObject(u"/org/freedesktop/Notifications"_s, &m_service,
                                        QDBusConnection::ExportAllSlots));
    }
    void cleanup()
    {
        QTRY_VERIFY(!isWaiting()); // nothing stays behind
        m_theirs.unregisterService(u"org.freedesktop.Notifications"_s);
        m_service.shown.clear();
        m_service.asked = 0;
        m_service.answers = true;
    }

    void showsPlainText_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<QString>("shown");
        QTest::newRow("reads markup") << QStringList{u"body"_s, u"body-markup"_s}
                                      << u"Done & <b>over</b>|&lt;b&gt;a&lt;/b&gt; &amp; &quot;é&quot;.mp4"_s;
        QTest::newRow("shows it as it is")
            << QStringList{u"body"_s} << u"Done & <b>over</b>|<b>a</b> & \"é\".mp4"_s;
    }
    void showsPlainText()
    {
        QFETCH(QStringList, capabilities);
        QFETCH(QString, shown);
        registerService();
        m_service.capabilities = capabilities;
        notifyOnDesktop(u"Done & <b>over</b>"_s, u"<b>a</b> & \"é\".mp4"_s, m_ours);
        QVERIFY(m_service.shown.isEmpty()); // it lives on this thread, so it was not asked meanwhile
        QTRY_COMPARE(m_service.shown, QStringList{shown});
        QVERIFY(m_service.fixedValues);
        QCOMPARE(m_service.hints.value(u"desktop-entry"_s).toString(), u"tessaly"_s);
    }

    void isSilentWithoutService_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::addColumn<bool>("registered");
        QTest::newRow("no bus") << false << false;
        QTest::newRow("no service") << true << false;
        QTest::newRow("the service does not answer") << true << true;
    }
    void isSilentWithoutService()
    {
        QFETCH(bool, connected);
        QFETCH(bool, registered);
        if (registered) registerService();
        m_service.answers = false;
        notifyOnDesktop(u"Done"_s, u"a.mp4"_s, connected ? m_ours : QDBusConnection(u"unconnected"_s), 50ms);
        QCOMPARE(isWaiting(), connected);
        QTRY_VERIFY(!isWaiting());
        QCOMPARE(m_service.asked, registered ? 1 : 0);
        QVERIFY(m_service.shown.isEmpty());
    }

private:
    static bool isWaiting()
    {
        return !QCoreApplication::instance()->findChildren<QDBusPendingCallWatcher *>().isEmpty();
    }
    void registerService() { QVERIFY(m_theirs.registerService(u"org.freedesktop.Notifications"_s)); }

    test::PrivateBus m_bus;
    QDBusConnection m_ours{u"unconnected"_s};
    QDBusConnection m_theirs{u"unconnected"_s};
    FakeNotifications m_service;
};

TESSALY_GUI_TEST_MAIN(DesktopNotificationTest)
#include "desktop_notification_test.moc"
