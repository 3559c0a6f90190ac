#include "platform/workspace_test_case.h"

#include <thread>
#include <vector>

namespace tessaly::test {

class TemporaryDirectoryTest : public WorkspaceTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isAPrivateFolderOfThisCopy()
    {
        const QString folder = NSTemporaryDirectory();
        QVERIFY(folder.startsWith(userFolder + "/copy-"_L1));
        QVERIFY(folder.endsWith(u'/') && !folder.endsWith("//"_L1));
        QVERIFY(isPrivateFolder(folder.chopped(1)));
        QVERIFY(isPrivateFolder(userFolder));
        QVERIFY(contents(folder).isEmpty());
        // The lock is not in the folder that a launch deletes whole.
        QVERIFY(QFileInfo(folder.chopped(1) + ".lock"_L1).isFile());
        QCOMPARE(NSTemporaryDirectory(), folder);
        QCOMPARE(contents(userFolder).size(), 2);
    }

    void isTheSameForAllThreads()
    {
        QString folders[8];
        {
            std::vector<std::jthread> threads;
            for (QString &folder : folders)
                threads.emplace_back([&folder] { folder = NSTemporaryDirectory(); });
        }
        for (const QString &folder : folders)
            QCOMPARE(folder, folders[0]);
    }

    void aUserFolderThatIsOpenToOthersIsClosed()
    {
        QVERIFY(QDir().mkdir(userFolder));
        QVERIFY(chmod(QFile::encodeName(userFolder).constData(), 0777) == 0);
        QVERIFY(NSTemporaryDirectory().startsWith(userFolder + u'/'));
        QVERIFY(isPrivateFolder(userFolder));
    }

    void whichBaseIsUsed_data()
    {
        QTest::addColumn<QString>("wish");
        QTest::addColumn<bool>("used");
        QTest::newRow("a folder") << u"/base"_s << true;
        QTest::newRow("a folder, with a slash at the end") << u"/base/"_s << true;
        QTest::newRow("a name with a percent sign") << u"/100%d"_s << false;
        QTest::newRow("missing") << u"/missing"_s << false;
        QTest::newRow("a file") << u"/outside/file"_s << false;
        QTest::newRow("relative") << u"."_s << false;
        QTest::newRow("empty") << QString() << false;
    }

    void whichBaseIsUsed()
    {
        QFETCH(QString, wish);
        QFETCH(bool, used);
        QVERIFY(QDir().mkdir(place->filePath(u"100%d"_s)));
        const QString wished = wish.startsWith(u'/') ? place->path() + wish : wish;
        Copy copy(wished, u"hold-workspace"_s);
        QVERIFY(copy.folder.startsWith(used ? userFolder + u'/' : u"/tmp/tessaly-"_s));
        QVERIFY(!copy.folder.contains(u'%'));
        QVERIFY(QFileInfo(copy.folder).isDir());
        QVERIFY(copy.endInTheOrdinaryWay());
        QVERIFY(!QFileInfo::exists(copy.folder));
    }

    void removalTakesEverythingInIt()
    {
        const QString folder = NSTemporaryDirectory();
        QVERIFY(QDir().mkdir(folder + "/Images"_L1));
        makeFile(folder + "/Images/out1.jpg"_L1);
        makeFile(folder + "other"_L1);
        QVERIFY(QFile::link(outside, folder + "link"_L1));
        removeTemporaryDirectory();
        QVERIFY(!QFileInfo::exists(folder));
        removeTemporaryDirectory(); // nothing there is no error
        // The copy still lives: its place is kept, and made again.
        QVERIFY(QFileInfo::exists(folder.chopped(1) + ".lock"_L1));
        QCOMPARE(NSTemporaryDirectory(), folder);
        QVERIFY(isPrivateFolder(folder.chopped(1)));
    }

    void removalBeforeAnyUseDoesNothing()
    {
        removeTemporaryDirectory();
        removeDeadSiblings();
        QVERIFY(contents(base).isEmpty());
    }

    void aVanishedUserFolderIsMadeAgain()
    {
        const QString folder = NSTemporaryDirectory();
        QVERIFY(QDir(userFolder).removeRecursively());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"own lock file"_s));
        const QString again = NSTemporaryDirectory();
        QVERIFY(isPrivateFolder(again.chopped(1)));
        QVERIFY(QFileInfo::exists(again.chopped(1) + ".lock"_L1));
    }

    // Paths that are just too long fail at each step in turn, as a full disk would.
    void whenItCannotBeMade_data()
    {
        QTest::addColumn<QString>("lastPathThatFits");
        QTest::newRow("not even the user's folder") << u""_s;
        QTest::newRow("not the folder") << userFolderName();
        QTest::newRow("not the lock") << userFolderName() + "/copy-XXXXXX"_L1;
    }

    void whenItCannotBeMade()
    {
        QFETCH(QString, lastPathThatFits);
        const qsizetype longest = 4095;
        QString deep = base;
        const qsizetype length = longest - lastPathThatFits.size();
        while (deep.size() < length) {
            const qsizetype left = length - deep.size() - 1;
            // Never ends with room for a slash only.
            deep += u'/' + QString(left <= 200 ? left : qMin<qsizetype>(200, left - 2), u'x');
        }
        QVERIFY(QDir().mkpath(deep));
        setTemporaryRoot(deep);
        const QString folder = NSTemporaryDirectory();
        QVERIFY(folder.endsWith(u'/') && !folder.contains(u'%'));
        QVERIFY(!QDir().mkpath(folder + "/Images"_L1));
        QVERIFY(!QFile(folder + "out1.jpg"_L1).open(QIODevice::WriteOnly));
        removeTemporaryDirectory();
        QVERIFY(contents(deep).isEmpty());
        setTemporaryRoot(base);
        QVERIFY(isPrivateFolder(NSTemporaryDirectory().chopped(1)));
    }

    void atTheEndNothingIsLeft()
    {
        makeFile(NSTemporaryDirectory() + "file"_L1);
        removeOwnWorkspace();
        QVERIFY(contents(base).isEmpty());
        removeOwnWorkspace();
        QVERIFY(isPrivateFolder(NSTemporaryDirectory().chopped(1)));
    }

private:
    static QString userFolderName() { return "/tessaly-"_L1 + QString::number(geteuid()); }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::TemporaryDirectoryTest)
#include "temporary_directory_test.moc"
