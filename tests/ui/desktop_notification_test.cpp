#include "support/test_case.h"
#include "ui/desktop_notification.h"
#include "ui/private_bus.h"

#include <QApplication>
#include <QDBusContext>
#include <QDBusPendingCallWatcher>

#include <memory>

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
        offered = actions;
        fixedValues = application == "Tessaly"_L1 && replaces == 0 && icon == "tessaly"_L1 && duration == -1;
        return 7;
    }

Q_SIGNALS:
    void ActivationToken(uint id, const QString &token);
    void ActionInvoked(uint id, const QString &key);
    void NotificationClosed(uint id, uint reason);

public:
    QStringList offered; // keys and titles by turns
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
                                        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    }
    void cleanup()
    {
        m_context = std::make_unique<QObject>();
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
        notifyOnDesktop(m_context.get(),
                        {.title = u"Done & <b>over</b>"_s, .text = u"<b>a</b> & \"é\".mp4"_s}, m_ours);
        QVERIFY(m_service.shown.isEmpty()); // it lives on this thread, so it was not asked meanwhile
        QTRY_COMPARE(m_service.shown, QStringList{shown});
        QVERIFY(m_service.fixedValues);
        QVERIFY(m_service.offered.isEmpty());
        QTRY_VERIFY(!isWaiting()); // nothing stays behind
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
        notifyOnDesktop(m_context.get(), {.title = u"Done"_s, .text = u"a.mp4"_s},
                        connected ? m_ours : QDBusConnection(u"unconnected"_s), 50ms);
        QCOMPARE(isWaiting(), connected);
        QTRY_VERIFY(!isWaiting());
        QTRY_COMPARE(m_service.asked, registered ? 1 : 0);
        QVERIFY(m_service.shown.isEmpty());
    }

    void runsWhatWasClicked_data()
    {
        QTest::addColumn<uint>("id");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("ran");
        QTest::newRow("the note itself") << 7U << u"default"_s << u"note with token"_s;
        QTest::newRow("its action") << 7U << u"0"_s << u"folder with token"_s;
        QTest::newRow("an action that it has not") << 7U << u"1"_s << QString();
        QTest::newRow("another program's note") << 8U << u"default"_s << QString();
    }
    void runsWhatWasClicked()
    {
        QFETCH(uint, id);
        QFETCH(QString, key);
        QFETCH(QString, ran);
        registerService();
        m_service.capabilities = QStringList{u"body"_s, u"actions"_s};
        QStringList heard;
        const auto hear = [&heard](const QString &what) {
            return [&heard, what](const QString &token) { heard += what + u" with "_s + token; };
        };
        notifyOnDesktop(m_context.get(),
                        {.title = u"Done"_s,
                         .text = u"a.mp4"_s,
                         .whenClicked = hear(u"note"_s),
                         .actions = {{u"Show in Folder"_s, hear(u"folder"_s)}}},
                        m_ours);
        QTRY_COMPARE(m_service.shown.size(), 1);
        QCOMPARE(m_service.offered, (QStringList{u"default"_s, u"Show"_s, u"0"_s, u"Show in Folder"_s}));
        const QObject *note = m_context->children().value(0);
        QVERIFY(note);
        QTRY_VERIFY(note->findChildren<QDBusPendingCallWatcher *>().isEmpty()); // its number has arrived
        Q_EMIT m_service.ActivationToken(7, u"token"_s);
        Q_EMIT m_service.ActionInvoked(id, key);
        Q_EMIT m_service.NotificationClosed(7, 1);
        QTRY_VERIFY(!isWaiting());
        QCOMPARE(heard, ran.isEmpty() ? QStringList() : QStringList(ran));
    }

    void isForgottenWithItsContext()
    {
        registerService();
        m_service.capabilities = QStringList{u"actions"_s};
        bool ran = false;
        notifyOnDesktop(m_context.get(),
                        {.title = u"Done"_s, .whenClicked = [&ran](const QString &) { ran = true; }}, m_ours);
        QTRY_COMPARE(m_service.shown.size(), 1);
        m_context = std::make_unique<QObject>();
        Q_EMIT m_service.ActionInvoked(7, u"default"_s);
        notifyOnDesktop(m_context.get(), {.title = u"After it"_s}, m_ours); // heard in order
        QTRY_COMPARE(m_service.shown.size(), 2);
        QVERIFY(!ran);
    }

private:
    bool isWaiting() const { return !m_context->children().isEmpty(); }
    void registerService() { QVERIFY(m_theirs.registerService(u"org.freedesktop.Notifications"_s)); }

    std::unique_ptr<QObject> m_context = std::make_unique<QObject>();
    test::PrivateBus m_bus;
    QDBusConnection m_ours{u"unconnected"_s};
    QDBusConnection m_theirs{u"unconnected"_s};
    FakeNotifications m_service;
};

TESSALY_GUI_TEST_MAIN(DesktopNotificationTest)
#include "desktop_notification_test.moc"
