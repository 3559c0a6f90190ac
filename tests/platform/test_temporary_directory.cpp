#include "platform/temporary_directory.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

constexpr int patience = 20000; // milliseconds

void makeFile(const QString &path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
}

bool isPrivateFolder(const QString &path)
{
    struct stat facts = {};
    return lstat(QFile::encodeName(path).constData(), &facts) == 0 && S_ISDIR(facts.st_mode) &&
           facts.st_uid == geteuid() && (facts.st_mode & 07777) == 0700;
}

QStringList contents(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// Another copy of the program.
class Copy
{
public:
    Copy(const QString &base, const QString &mode)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TMPDIR"_s, base);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TESSALY_PLATFORM_HELPER), {mode});
        while (!process.canReadLine() && process.waitForReadyRead(patience)) {
        }
        folder = QString::fromUtf8(process.readLine()).chopped(1);
    }
    ~Copy() { kill(); }

    // As a crash would.
    void kill()
    {
        process.kill();
        process.waitForFinished(patience);
    }

    bool endInTheOrdinaryWay()
    {
        process.closeWriteChannel();
        return process.waitForFinished(patience) && process.exitCode() == 0;
    }

    QString folder;

private:
    QProcess process;
};

} // namespace

class TemporaryDirectoryTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        place.reset(new QTemporaryDir);
        base = place->filePath(u"base"_s);
        outside = place->filePath(u"outside"_s);
        QVERIFY(QDir().mkdir(base) && QDir().mkdir(outside));
        makeFile(outside + "/file"_L1);
        userFolder = base + "/tessaly-"_L1 + QString::number(geteuid());
        setTemporaryRoot(base);
    }

    void cleanup()
    {
        QVERIFY(QFile::exists(outside + "/file"_L1));
        setTemporaryRoot(QString());
    }

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
        QVERIFY(QFile::exists(outside + u'/' + name + "/file"_L1));
        QCOMPARE(contents(outside), before);
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
        const Copy third(base, u"clear-workspaces"_s);
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

private:
    static QString userFolderName() { return "/tessaly-"_L1 + QString::number(geteuid()); }

    std::unique_ptr<QTemporaryDir> place;
    QString base;
    QString outside;
    QString userFolder;
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::TemporaryDirectoryTest)
#include "test_temporary_directory.moc"
