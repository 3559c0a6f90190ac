#include "platform/paths.h"
#include "support/seen.h"
#include "support/test_case.h"
#include "ui/desktop_services.h"
#include "ui/private_bus.h"

#include <QApplication>
#include <QDBusContext>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace std::chrono_literals;

class FakeFileManager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    enum class Manner { answers, fails, hangs };

    Manner manner = Manner::answers;
    QStringList shown;
    QString startupId = u"never asked"_s;

public Q_SLOTS:
    void ShowItems(const QStringList &uris, const QString &id)
    {
        shown += uris;
        startupId = id;
        if (manner == Manner::fails) sendErrorReply(QDBusError::Failed, u"no window"_s);
        if (manner == Manner::hangs) setDelayedReply(true);
    }
};

class DesktopServicesTest : public tessaly::test::TestCase
{
    Q_OBJECT

public Q_SLOTS:
    void recordOpened(const QUrl &url) { m_opened += url; }

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();
    void showsTheFileInItsFolder_data();
    void showsTheFileInItsFolder();
    void opensTheFolderInstead_data();
    void opensTheFolderInstead();
    void saysThatTheFolderDoesNotOpen();
    void doesNotWaitForTheFileManager();
    void plays();
    void saysThatNothingPlays();
    void saysThatTheFileIsGone_data();
    void saysThatTheFileIsGone();

private:
    QString path(const QString &name) const { return m_folder.path() + u'/' + name; }
    static bool isWaiting()
    {
        return !QCoreApplication::instance()->findChildren<QDBusPendingCallWatcher *>().isEmpty();
    }
    void registerFileManager(FakeFileManager::Manner manner);
    DesktopFailure recordFailure()
    {
        return [this](const QString &sentence) { m_failures += sentence; };
    }

    test::PrivateBus m_bus;
    QDBusConnection m_ours{u"unconnected"_s};
    QDBusConnection m_theirs{u"unconnected"_s};
    FakeFileManager m_fileManager;
    QTemporaryDir m_folder;
    QList<QUrl> m_opened; // by the desktop
    QStringList m_failures;
};

void DesktopServicesTest::initTestCase()
{
    QVERIFY(m_bus.start());
    m_ours = m_bus.connection(u"ours"_s);
    m_theirs = m_bus.connection(u"theirs"_s);
    QVERIFY(m_ours.isConnected() && m_theirs.isConnected());
    QVERIFY(m_theirs.registerObject(u"/org/freedesktop/FileManager1"_s, &m_fileManager,
                                    QDBusConnection::ExportAllSlots));
    for (const QString &name : {u"out.mp4"_s, u"a \"b\";é #1%41.mp4"_s}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QDesktopServices::setUrlHandler(u"file"_s, this, "recordOpened");
}

void DesktopServicesTest::cleanup()
{
    QTRY_VERIFY(!isWaiting()); // nothing stays behind
    m_theirs.unregisterService(u"org.freedesktop.FileManager1"_s);
    m_fileManager.shown.clear();
    m_opened.clear();
    m_failures.clear();
    QDesktopServices::setUrlHandler(u"file"_s, this, "recordOpened");
}

void DesktopServicesTest::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(u"file"_s);
}

void DesktopServicesTest::registerFileManager(FakeFileManager::Manner manner)
{
    m_fileManager.manner = manner;
    QVERIFY(m_theirs.registerService(u"org.freedesktop.FileManager1"_s));
}

void DesktopServicesTest::showsTheFileInItsFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("uriEnd");
    QTest::newRow("plain") << u"out.mp4"_s << u"/out.mp4"_s;
    QTest::newRow("encoded") << u"a \"b\";é #1%41.mp4"_s << u"/a%20%22b%22%3B%C3%A9%20%231%2541.mp4"_s;
}

void DesktopServicesTest::showsTheFileInItsFolder()
{
    QFETCH(QString, name);
    QFETCH(QString, uriEnd);
    registerFileManager(FakeFileManager::Manner::answers);
    revealInFileManager(path(name), recordFailure(), m_ours);
    QTRY_COMPARE(m_fileManager.shown,
                 QStringList{absoluteString(fileURL(m_folder.path())).chopped(1) + uriEnd});
    QCOMPARE(m_fileManager.startupId, QString());
    QTRY_VERIFY(!isWaiting());
    QVERIFY(m_opened.isEmpty());
    QVERIFY(m_failures.isEmpty());
}

void DesktopServicesTest::opensTheFolderInstead_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<bool>("registered");
    QTest::addColumn<FakeFileManager::Manner>("manner");
    using Manner = FakeFileManager::Manner;
    QTest::newRow("no bus") << false << false << Manner::answers;
    QTest::newRow("no file manager") << true << false << Manner::answers;
    QTest::newRow("the file manager fails") << true << true << Manner::fails;
    QTest::newRow("the file manager does not answer") << true << true << Manner::hangs;
}

void DesktopServicesTest::opensTheFolderInstead()
{
    QFETCH(bool, connected);
    QFETCH(bool, registered);
    QFETCH(FakeFileManager::Manner, manner);
    if (registered) registerFileManager(manner);
    const QDBusConnection bus = connected ? m_ours : QDBusConnection(u"unconnected"_s);
    revealInFileManager(path(u"out.mp4"_s), recordFailure(), bus, 50ms);
    QTRY_COMPARE(m_opened, QList<QUrl>{fileURL(m_folder.path())});
    test::seen(u"opened: %1; failures told: %2"_s
                   .arg(m_opened.first() == fileURL(m_folder.path()) ? u"the folder of the file"_s
                                                                     : m_opened.first().toString())
                   .arg(m_failures.size()));
    QVERIFY(m_failures.isEmpty());
}

void DesktopServicesTest::saysThatTheFolderDoesNotOpen()
{
    QDesktopServices::unsetUrlHandler(u"file"_s);
    revealInFileManager(path(u"out.mp4"_s), recordFailure(), m_ours);
    QTRY_COMPARE(m_failures, QStringList{u"The folder “%1” could not be opened."_s.arg(m_folder.path())});
}

void DesktopServicesTest::doesNotWaitForTheFileManager()
{
    registerFileManager(FakeFileManager::Manner::answers);
    revealInFileManager(path(u"out.mp4"_s), recordFailure(), m_ours);
    QVERIFY(m_fileManager.shown.isEmpty()); // it lives on this thread, so it was not asked meanwhile
    QTRY_VERIFY(!m_fileManager.shown.isEmpty());
}

void DesktopServicesTest::plays()
{
    playInVideoPlayer(path(u"a \"b\";é #1%41.mp4"_s), recordFailure());
    QCOMPARE(m_opened, QList<QUrl>{fileURL(path(u"a \"b\";é #1%41.mp4"_s))});
    QVERIFY(m_failures.isEmpty());
}

void DesktopServicesTest::saysThatNothingPlays()
{
    QDesktopServices::unsetUrlHandler(u"file"_s);
    playInVideoPlayer(path(u"out.mp4"_s), recordFailure());
    QCOMPARE(m_failures, QStringList{u"No program was found that can open “out.mp4”."_s});
}

void DesktopServicesTest::saysThatTheFileIsGone_data()
{
    QTest::addColumn<bool>("reveals");
    QTest::newRow("reveal") << true;
    QTest::newRow("play") << false;
}

void DesktopServicesTest::saysThatTheFileIsGone()
{
    QFETCH(bool, reveals);
    registerFileManager(FakeFileManager::Manner::answers);
    if (reveals) {
        revealInFileManager(path(u"gone %1.mp4"_s), recordFailure(), m_ours);
    } else {
        playInVideoPlayer(path(u"gone %1.mp4"_s), recordFailure());
    }
    test::seen(m_failures.join(u' '));
    QCOMPARE(m_failures, QStringList{u"“gone %1.mp4” is no longer there. It was moved or deleted."_s});
    QVERIFY(!isWaiting());
    QVERIFY(m_opened.isEmpty());
}

TESSALY_GUI_TEST_MAIN(DesktopServicesTest)
#include "desktop_services_test.moc"
