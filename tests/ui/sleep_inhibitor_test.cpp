#include "support/test_case.h"
#include "ui/private_bus.h"
#include "ui/sleep_inhibitor.h"

#include <QApplication>
#include <QDBusContext>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly;

// As the real one: it hands out the end of a pipe and sees when all copies of it are closed.
class FakeLoginManager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    enum class Manner { answers, answersLate, refuses };

    ~FakeLoginManager() override { forget(); }

    Manner manner = Manner::answers;
    QList<QStringList> requests; // what, who, why, mode

    bool isHeld() const
    {
        pollfd seen{.fd = m_ourEnd, .events = POLLIN, .revents = 0};
        return hasGivenALock() && ::poll(&seen, 1, 0) == 0;
    }
    bool hasGivenALock() const { return m_ourEnd >= 0; }
    void answerNow()
    {
        m_theirs.send(m_asked.createReply(QVariant::fromValue(makeLock())));
        m_asked = {};
    }
    bool isAsked() const { return m_asked.type() == QDBusMessage::MethodCallMessage; }
    void forget()
    {
        if (m_ourEnd >= 0) ::close(m_ourEnd);
        m_ourEnd = -1;
        requests.clear();
    }

public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &who, const QString &why,
                                    const QString &mode)
    {
        requests.append(QStringList{what, who, why, mode});
        if (manner == Manner::answers) return makeLock();
        if (manner == Manner::refuses) sendErrorReply(QDBusError::AccessDenied, u"no"_s);
        if (manner == Manner::answersLate) {
            setDelayedReply(true);
            m_asked = message();
            m_theirs = connection();
        }
        return {};
    }

private:
    QDBusUnixFileDescriptor makeLock()
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) qFatal("no pipe");
        if (m_ourEnd >= 0) ::close(m_ourEnd);
        m_ourEnd = ends[0];
        QDBusUnixFileDescriptor lock;
        lock.giveFileDescriptor(ends[1]);
        return lock;
    }

    int m_ourEnd = -1;
    QDBusMessage m_asked;
    QDBusConnection m_theirs{u"unconnected"_s};
};

class SleepInhibitorTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_bus.start());
        m_ours = m_bus.connection(u"ours"_s);
        m_theirs = m_bus.connection(u"theirs"_s);
        QVERIFY(m_ours.isConnected() && m_theirs.isConnected());
        QVERIFY(m_theirs.registerObject(u"/org/freedesktop/login1"_s, &m_manager,
                                        QDBusConnection::ExportAllSlots));
    }
    void cleanup()
    {
        m_theirs.unregisterService(u"org.freedesktop.login1"_s);
        m_manager.forget();
    }

    void keepsAwakeAsLongAsItLives()
    {
        letManager(FakeLoginManager::Manner::answers);
        for (const QString &reason : {u"A video is being resized"_s, u"Another one is"_s}) {
            std::optional<SleepInhibitor> inhibitor(std::in_place, reason, m_ours);
            QVERIFY(m_manager.requests.isEmpty()); // it was not waited for
            QTRY_VERIFY(m_manager.isHeld());
            const QStringList request{u"sleep:idle"_s, u"Tessaly"_s, reason, u"block"_s};
            QCOMPARE(m_manager.requests, QList<QStringList>{request});
            inhibitor.reset();
            QTRY_VERIFY(!m_manager.isHeld());
            m_manager.forget();
        }
    }

    void letsGoWhenTheAnswerComesTooLate()
    {
        letManager(FakeLoginManager::Manner::answersLate);
        {
            const SleepInhibitor inhibitor(u"A video is being resized"_s, m_ours);
            QTRY_VERIFY(m_manager.isAsked());
        }
        m_manager.answerNow();
        QVERIFY(m_manager.hasGivenALock()); // it may be closed by now
        QTRY_VERIFY(!m_manager.isHeld());
    }

    void letsGoWhenTheProgramDies()
    {
        letManager(FakeLoginManager::Manner::answers);
        QProcess program;
        program.start(QStringLiteral(TESSALY_SLEEP_HOLDER), {m_bus.address()});
        QTRY_VERIFY(m_manager.isHeld());
        program.kill();
        QVERIFY(program.waitForFinished(test::waitLimit));
        QTRY_VERIFY(!m_manager.isHeld());
    }

    void isSilentWithoutManager_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::addColumn<bool>("registered");
        QTest::newRow("no bus") << false << false;
        QTest::newRow("no login manager") << true << false;
        QTest::newRow("the login manager refuses") << true << true;
    }
    void isSilentWithoutManager()
    {
        QFETCH(bool, connected);
        QFETCH(bool, registered);
        if (registered) letManager(FakeLoginManager::Manner::refuses);
        const SleepInhibitor inhibitor(u"A video is being resized"_s,
                                       connected ? m_ours : QDBusConnection(u"unconnected"_s));
        if (registered) QTRY_COMPARE(m_manager.requests.size(), 1);
        QVERIFY(!m_manager.isHeld());
    }

private:
    void letManager(FakeLoginManager::Manner manner)
    {
        m_manager.manner = manner;
        QVERIFY(m_theirs.registerService(u"org.freedesktop.login1"_s));
    }

    test::PrivateBus m_bus;
    QDBusConnection m_ours{u"unconnected"_s};
    QDBusConnection m_theirs{u"unconnected"_s};
    FakeLoginManager m_manager;
};

TESSALY_GUI_TEST_MAIN(SleepInhibitorTest)
#include "sleep_inhibitor_test.moc"
