#include "platform/workspace_test_case.h"
#include "support/seen.h"

namespace tessaly::test {

// What is not ours stays: other copies' folders, other users' folders, what links lead to.
class WorkspaceSafetyTest : public WorkspaceTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aUserFolderThatIsNotOursIsLeftAlone_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("a link to somewhere else") << u"link"_s;
        QTest::newRow("a link that leads nowhere") << u"broken link"_s;
        QTest::newRow("a file") << u"file"_s;
        if (geteuid() == 0) QTest::newRow("another user's") << u"foreign"_s;
    }

    void aUserFolderThatIsNotOursIsLeftAlone()
    {
        QFETCH(QString, kind);
        if (kind == "link"_L1) QVERIFY(QFile::link(outside, userFolder));
        if (kind == "broken link"_L1) QVERIFY(QFile::link(place->filePath(u"nothing"_s), userFolder));
        if (kind == "file"_L1) makeFile(userFolder);
        if (kind == "foreign"_L1) {
            QVERIFY(QDir().mkdir(userFolder));
            QVERIFY(chown(QFile::encodeName(userFolder).constData(), 12345, 12345) == 0);
        }
        const QString folder = NSTemporaryDirectory();
        QVERIFY(folder.startsWith(userFolder + u'-'));
        QVERIFY(isPrivateFolder(folder.chopped(1)));
        QVERIFY(isPrivateFolder(QFileInfo(folder.chopped(1)).path()));
        QCOMPARE(NSTemporaryDirectory(), folder);
        removeDeadSiblings();
        removeOwnWorkspace();
        QCOMPARE(contents(base), QStringList(QFileInfo(userFolder).fileName()));
        QCOMPARE(contents(outside), QStringList(u"file"_s));
    }

    void aFolderReplacedByALinkIsNotFollowed()
    {
        const QString folder = NSTemporaryDirectory();
        QVERIFY(QDir().rmdir(folder));
        QVERIFY(QFile::link(outside, folder.chopped(1)));
        QCOMPARE(NSTemporaryDirectory(), folder);
        QVERIFY(isPrivateFolder(folder.chopped(1)));
        QVERIFY(QDir().rmdir(folder));
        QVERIFY(QFile::link(outside, folder.chopped(1)));
        removeTemporaryDirectory();
        seen(u"the link is %1; behind it: %2"_s.arg(
            QFileInfo(folder.chopped(1)).isSymLink() ? u"there"_s : u"gone"_s, contents(outside).join(u' ')));
        QVERIFY(!QFileInfo(folder.chopped(1)).isSymLink());
        QCOMPARE(contents(outside), QStringList(u"file"_s));
    }

    void aUserFolderReplacedByALinkIsNotFollowed()
    {
        const QString folder = NSTemporaryDirectory();
        const QString name = QFileInfo(folder.chopped(1)).fileName();
        QVERIFY(QDir().rename(userFolder, userFolder + "-moved"_L1));
        QVERIFY(QFile::link(outside, userFolder));
        QVERIFY(QDir(outside).mkdir(name));
        makeFile(outside + u'/' + name + "/file"_L1);
        makeFile(outside + "/copy-dead.lock"_L1);
        QVERIFY(QDir(outside).mkdir(u"copy-dead"_s));
        const QStringList before = contents(outside);
        removeTemporaryDirectory();
        removeDeadSiblings();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"own lock file"_s));
        const QString elsewhere = NSTemporaryDirectory();
        QVERIFY(elsewhere.startsWith(userFolder + u'-'));
        QVERIFY(isPrivateFolder(elsewhere.chopped(1)));
        seen(u"behind the link before: %1; after: %2; now used: %3"_s.arg(
            before.join(u' '), contents(outside).join(u' '),
            QFileInfo(elsewhere.chopped(1)).path().section(u'/', -1)));
        QVERIFY(QFile::exists(outside + u'/' + name + "/file"_L1));
        QCOMPARE(contents(outside), before);
    }

    void twoCopiesLeaveEachOtherAlone()
    {
        Copy other(base, u"hold-workspace"_s);
        makeFile(other.folder + "frame"_L1);
        const QString own = NSTemporaryDirectory();
        makeFile(own + "frame"_L1);
        QVERIFY(own != other.folder);
        removeTemporaryDirectory();
        removeDeadSiblings();
        QVERIFY(QFileInfo::exists(other.folder + "frame"_L1));
        makeFile(NSTemporaryDirectory() + "frame"_L1);
        Copy third(base, u"clear-workspaces"_s);
        QVERIFY(third.endInTheOrdinaryWay());
        QVERIFY(QFileInfo::exists(own + "frame"_L1));
        QVERIFY(QFileInfo::exists(other.folder + "frame"_L1));
        removeOwnWorkspace();
        QVERIFY(QFileInfo::exists(other.folder + "frame"_L1));
        QVERIFY(other.endInTheOrdinaryWay());
        QVERIFY(contents(base).isEmpty());
    }

    void leftoversOfACrashGoAtTheNextLaunch()
    {
        Copy crashed(base, u"hold-workspace"_s);
        QVERIFY(QDir().mkdir(crashed.folder + "Images"_L1));
        makeFile(crashed.folder + "Images/out1.jpg"_L1);
        crashed.kill();
        QVERIFY(QFileInfo::exists(crashed.folder + "Images/out1.jpg"_L1));
        removeDeadSiblings();
        QVERIFY(contents(userFolder).isEmpty());
    }

    void aLeftoverThatBecameALinkIsNotFollowed()
    {
        Copy crashed(base, u"hold-workspace"_s);
        crashed.kill();
        QVERIFY(QDir().rmdir(crashed.folder));
        QVERIFY(QFile::link(outside, crashed.folder.chopped(1)));
        removeDeadSiblings();
        seen(u"left of the crash: %1; behind the link: %2"_s.arg(contents(userFolder).size())
                 .arg(contents(outside).join(u' ')));
        QVERIFY(contents(userFolder).isEmpty());
        QCOMPARE(contents(outside), QStringList(u"file"_s));
    }

    void foldersWithoutAMarkOfOursStay()
    {
        NSTemporaryDirectory();
        QVERIFY(QDir(userFolder).mkdir(u"copy-without-lock"_s));
        QVERIFY(QDir(userFolder).mkdir(u"somebody"_s));
        makeFile(userFolder + "/somebody.lock"_L1);
        QVERIFY(QDir(userFolder).mkdir(u"copy-linked"_s));
        QVERIFY(QFile::link(outside + "/file"_L1, userFolder + "/copy-linked.lock"_L1));
        const QStringList before = contents(userFolder);
        removeDeadSiblings();
        QCOMPARE(contents(userFolder), before);
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::WorkspaceSafetyTest)
#include "workspace_safety_test.moc"
