#include "platform/notification_center.h"
#include "platform/paths.h"
#include "support/seen.h"
#include "support/test_case.h"
#include "ui/drag.h"
#include "ui/image_drop_view.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::Answer;
using tessaly::test::copied;
using tessaly::test::Drag;
using tessaly::test::refused;

class DropOnViewTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();
    void answersAtEntry_data();
    void answersAtEntry();
    void announcesTheFile_data();
    void announcesTheFile();
    void onlyTheFirstFileCounts();
    void isAnnouncedBeforeTheDropReturns();
    void neverReportsAMove_data();
    void neverReportsAMove();
    void keepsTheFileOfTheLastDrop();
    void leavingChangesNothing();
    void aFileThatVanishedAfterEntryIsAnnounced();
    void aDropThatCarriesNoFileIsRefused();
    void aNameThatIsNotUTF8IsToldApart();
    void theGuardIsAskedAtEveryStep_data();
    void theGuardIsAskedAtEveryStep();

private:
    QByteArray uri(const QString &name) const { return absoluteString(fileURL(path(name))).toLatin1(); }
    QString path(const QString &name) const { return m_folder.path() + u'/' + name; }
    void makeFile(const QByteArray &name) const;

    QTemporaryDir m_folder;
    ImageDropView m_view;
    QList<NotificationCenter::Notification> m_posted;
};

void DropOnViewTest::makeFile(const QByteArray &name) const
{
    const int file =
        ::open((QFile::encodeName(m_folder.path()) + '/' + name).constData(), O_CREAT | O_WRONLY, 0600);
    QVERIFY(file >= 0);
    ::close(file);
}

void DropOnViewTest::initTestCase()
{
    makeFile("clip.mp4");
    makeFile("notes.txt");
    makeFile("a \"b\" <b>&%41;\n.mp4");
    makeFile("caf\xE9.mp4");
    QVERIFY(QDir().mkdir(path(u"folder"_s)));
    QVERIFY(QFile::link(path(u"clip.mp4"_s), path(u"link.mp4"_s)));
    QVERIFY(QFile::link(path(u"folder"_s), path(u"link to folder"_s)));
    NotificationCenter::defaultCenter().addObserver(
        this, u"FileAddedByDragAnadDrop"_s,
        [this](const NotificationCenter::Notification &notification) { m_posted += notification; });
}

void DropOnViewTest::cleanup()
{
    m_posted.clear();
    m_view.setDropGuard({});
}

void DropOnViewTest::cleanupTestCase()
{
    // Qt cannot remove what it cannot name.
    ::unlink((QFile::encodeName(m_folder.path()) + "/caf\xE9.mp4").constData());
}

void DropOnViewTest::answersAtEntry_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<bool>("welcome");
    QTest::newRow("file") << uri(u"clip.mp4"_s) << true;
    QTest::newRow("a text is a file too") << uri(u"notes.txt"_s) << true;
    QTest::newRow("link to a file") << uri(u"link.mp4"_s) << true;
    QTest::newRow("file://localhost") << uri(u"clip.mp4"_s).replace("file://", "file://localhost") << true;
    QTest::newRow("folder") << uri(u"folder"_s) << false;
    QTest::newRow("link to a folder") << uri(u"link to folder"_s) << false;
    QTest::newRow("vanished file") << uri(u"gone.mp4"_s) << false;
    QTest::newRow("folder before a file") << uri(u"folder"_s) + "\r\n" + uri(u"clip.mp4"_s) << false;
    QTest::newRow("vanished file before a file") << uri(u"gone.mp4"_s) + "\r\n" + uri(u"clip.mp4"_s) << false;
    QTest::newRow("web page") << QByteArray("http://example.org/v.mp4") << false;
    QTest::newRow("other machine") << uri(u"clip.mp4"_s).replace("file://", "file://elsewhere") << false;
    QTest::newRow("no file") << QByteArray() << false;
}

void DropOnViewTest::answersAtEntry()
{
    QFETCH(QByteArray, list);
    QFETCH(bool, welcome);
    const test::RawDrag data(list);
    Drag drag(m_view, data);
    const Answer answer = drag.enter();
    test::seen(u"%1; announced: %2"_s.arg(answer.accepted ? u"accepted as a copy"_s : u"refused"_s)
                   .arg(m_posted.size()));
    QCOMPARE(answer, welcome ? copied : refused);
    drag.leave();
    QVERIFY(m_posted.isEmpty());
}

void DropOnViewTest::announcesTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"clip.mp4"_s;
    QTest::newRow("quotes, markup, escapes, a line break") << u"a \"b\" <b>&%41;\n.mp4"_s;
}

void DropOnViewTest::announcesTheFile()
{
    QFETCH(QString, name);
    const test::RawDrag data(uri(name));
    Drag drag(m_view, data);
    QCOMPARE(drag.enter(), copied);
    QCOMPARE(drag.move(), copied);
    QVERIFY(m_posted.isEmpty());
    QCOMPARE(drag.drop(), copied);

    QCOMPARE(m_posted.size(), 1);
    const NotificationCenter::Notification posted = m_posted.first();
    QCOMPARE(posted.name, u"FileAddedByDragAnadDrop"_s);
    QCOMPARE(posted.object, nullptr);
    QCOMPARE(posted.userInfo.keys(), QStringList{u"key"_s});
    QCOMPARE(posted.userInfo.first().typeId(), qMetaTypeId<QUrl>());
    QCOMPARE(posted.userInfo.first().toUrl(), fileURL(path(name)));
    QCOMPARE(m_view.filePath(), path(name));
}

void DropOnViewTest::onlyTheFirstFileCounts()
{
    const test::RawDrag data(uri(u"notes.txt"_s) + "\r\n" + uri(u"clip.mp4"_s) + "\r\n" + uri(u"folder"_s));
    Drag drag(m_view, data);
    QCOMPARE(drag.enter(), copied);
    QCOMPARE(drag.drop(), copied);
    QCOMPARE(m_posted.size(), 1);
    QCOMPARE(m_posted.first().userInfo.value(u"key"_s).toUrl(), fileURL(path(u"notes.txt"_s)));
}

void DropOnViewTest::isAnnouncedBeforeTheDropReturns()
{
    QObject context;
    std::optional<QString> filePathWhenPosted;
    NotificationCenter::defaultCenter().addObserver(
        &context, u"FileAddedByDragAnadDrop"_s,
        [this, &filePathWhenPosted](const auto &) { filePathWhenPosted = m_view.filePath(); });
    const test::RawDrag data(uri(u"notes.txt"_s));
    Drag drag(m_view, data);
    drag.enter();
    drag.drop();
    QCOMPARE(filePathWhenPosted, path(u"notes.txt"_s));
}

void DropOnViewTest::neverReportsAMove_data()
{
    QTest::addColumn<Qt::DropActions>("offered");
    QTest::addColumn<Qt::KeyboardModifiers>("keys");
    QTest::addColumn<bool>("welcome");
    const Qt::KeyboardModifiers none;
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier; // asks for a move
    QTest::newRow("copy") << Qt::DropActions(Qt::CopyAction) << none << true;
    QTest::newRow("copy and move") << (Qt::CopyAction | Qt::MoveAction) << none << true;
    QTest::newRow("everything") << (Qt::CopyAction | Qt::MoveAction | Qt::LinkAction) << none << true;
    QTest::newRow("copy and move, move wanted") << (Qt::CopyAction | Qt::MoveAction) << shift << true;
    QTest::newRow("move alone") << Qt::DropActions(Qt::MoveAction) << none << false;
    QTest::newRow("link alone") << Qt::DropActions(Qt::LinkAction) << none << false;
    QTest::newRow("move and link") << (Qt::MoveAction | Qt::LinkAction) << none << false;
}

void DropOnViewTest::neverReportsAMove()
{
    QFETCH(Qt::DropActions, offered);
    QFETCH(Qt::KeyboardModifiers, keys);
    QFETCH(bool, welcome);
    const test::RawDrag data(uri(u"clip.mp4"_s));
    Drag drag(m_view, data, offered, keys);
    const QList<Answer> answers{drag.enter(), drag.move(), drag.drop()};
    test::seen(
        u"%1; the file is %2"_s.arg(answers.first().accepted ? u"reported: Copy"_s : u"refused at entry"_s,
                                    QFile::exists(path(u"clip.mp4"_s)) ? u"there"_s : u"GONE"_s));
    for (const Answer &answer : answers)
        QCOMPARE(answer, welcome ? copied : refused);
    QCOMPARE(m_posted.size(), welcome ? 1 : 0);
}

void DropOnViewTest::keepsTheFileOfTheLastDrop()
{
    ImageDropView view;
    QVERIFY(!view.filePath());
    for (const QString &name : {u"clip.mp4"_s, u"notes.txt"_s}) {
        const test::RawDrag data(uri(name));
        Drag drag(view, data);
        QCOMPARE(drag.enter(), copied);
        QVERIFY(view.filePath() != path(name));
        QCOMPARE(drag.drop(), copied);
        QCOMPARE(view.filePath(), path(name));
    }
    QCOMPARE(m_posted.size(), 2);
}

void DropOnViewTest::leavingChangesNothing()
{
    ImageDropView view;
    view.resize(40, 40);
    const QImage before = view.grab().toImage();
    const test::RawDrag data(uri(u"clip.mp4"_s));
    Drag drag(view, data);
    drag.enter();
    QCOMPARE(view.grab().toImage(), before); // no highlight
    drag.leave();
    QCOMPARE(view.grab().toImage(), before);
    QVERIFY(!view.filePath());
    QVERIFY(m_posted.isEmpty());
}

void DropOnViewTest::aFileThatVanishedAfterEntryIsAnnounced()
{
    makeFile("short-lived.mp4");
    const test::RawDrag data(uri(u"short-lived.mp4"_s));
    Drag drag(m_view, data);
    QCOMPARE(drag.enter(), copied);
    QVERIFY(QFile::remove(path(u"short-lived.mp4"_s)));
    QCOMPARE(drag.drop(), copied);
    test::seen(u"announced: %1, for the alert of whoever opens it"_s.arg(m_posted.size()));
    QCOMPARE(m_posted.size(), 1); // whoever opens it says what is wrong
}

void DropOnViewTest::aDropThatCarriesNoFileIsRefused()
{
    const QSignalSpy spy(&m_view, &ImageDropView::unreadableNameDropped);
    const test::RawDrag data(uri(u"clip.mp4"_s));
    QCOMPARE(Drag(m_view, data).enter(), copied);
    const test::RawDrag emptied(QByteArray{});
    QCOMPARE(Drag(m_view, emptied).drop(), refused);
    QVERIFY(m_posted.isEmpty());
    QCOMPARE(spy.count(), 0);
}

void DropOnViewTest::aNameThatIsNotUTF8IsToldApart()
{
    ImageDropView view;
    const QSignalSpy spy(&view, &ImageDropView::unreadableNameDropped);
    const test::RawDrag data(uri(u"caf"_s) + "%E9.mp4");
    Drag drag(view, data);
    QCOMPARE(drag.enter(), copied);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(drag.drop(), refused);
    QCOMPARE(spy.count(), 1);
    QVERIFY(m_posted.isEmpty());
    QVERIFY(!view.filePath());
}

void DropOnViewTest::theGuardIsAskedAtEveryStep_data()
{
    QTest::addColumn<int>("freeSteps");
    QTest::addColumn<QList<bool>>("welcome");
    QTest::newRow("busy at entry") << 0 << QList<bool>{false, false, false};
    QTest::newRow("busy from the first move") << 1 << QList<bool>{true, false, false};
    QTest::newRow("busy at the drop") << 2 << QList<bool>{true, true, false};
    QTest::newRow("free") << 3 << QList<bool>{true, true, true};
}

void DropOnViewTest::theGuardIsAskedAtEveryStep()
{
    QFETCH(int, freeSteps);
    QFETCH(QList<bool>, welcome);
    m_view.setDropGuard([freeSteps]() mutable { return freeSteps-- > 0; });
    const test::RawDrag data(uri(u"clip.mp4"_s));
    Drag drag(m_view, data);
    const QList<bool> accepted{drag.enter() == copied, drag.move() == copied, drag.drop() == copied};
    QCOMPARE(accepted, welcome);
    QCOMPARE(m_posted.size(), welcome.last() ? 1 : 0);
}

TESSALY_GUI_TEST_MAIN(DropOnViewTest)
#include "drop_on_view_test.moc"
