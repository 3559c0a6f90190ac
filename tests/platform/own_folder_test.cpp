#include "platform/own_folder.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

void makeFile(const QString &path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly) && file.write("kept") == 4, qPrintable(path));
}

mode_t modeOf(const QString &path)
{
    struct stat facts = {};
    return lstat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 07777 : 0;
}

// A folder of another user: made by root, or one of root's.
QString foreignFolder(const QTemporaryDir &place)
{
    if (geteuid() != 0) return u"/usr"_s;
    const QString path = place.filePath(u"foreign"_s);
    QDir().mkdir(path);
    return chown(QFile::encodeName(path).constData(), 12345, 12345) == 0 ? path : QString();
}

} // namespace

class OwnFolderTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        place.reset(new QTemporaryDir);
        outside = place->filePath(u"outside"_s);
        QVERIFY(QDir().mkdir(outside));
        makeFile(outside + "/file"_L1);
        path = place->filePath(u"thing"_s);
    }

    void ownFoldersAreReal_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("own");
        QTest::addColumn<bool>("canBeMade");
        QTest::newRow("a folder") << u"folder"_s << true << true;
        QTest::newRow("nothing") << u"nothing"_s << false << true;
        QTest::newRow("a link to an own folder") << u"link"_s << false << false;
        QTest::newRow("a link that leads nowhere") << u"broken link"_s << false << false;
        QTest::newRow("a file") << u"file"_s << false << false;
        QTest::newRow("somebody else's folder") << u"foreign"_s << false << false;
        QTest::newRow("below a missing folder") << u"below nothing"_s << false << false;
    }

    void ownFoldersAreReal()
    {
        QFETCH(QString, kind);
        QFETCH(bool, own);
        QFETCH(bool, canBeMade);
        if (kind == "folder"_L1) QVERIFY(QDir().mkdir(path));
        if (kind == "link"_L1) QVERIFY(QFile::link(outside, path));
        if (kind == "broken link"_L1) QVERIFY(QFile::link(place->filePath(u"nothing"_s), path));
        if (kind == "file"_L1) makeFile(path);
        if (kind == "foreign"_L1) path = foreignFolder(*place);
        if (kind == "below nothing"_L1) path += "/more"_L1;
        const mode_t before = modeOf(path);
        QCOMPARE(isOwnFolder(path), own);
        QCOMPARE(makeOwnFolder(path), canBeMade);
        QCOMPARE(isOwnFolder(path), canBeMade);
        if (canBeMade) QCOMPARE(modeOf(path), mode_t(0700));
        if (!canBeMade) QCOMPARE(modeOf(path), before);
        QVERIFY(!QFile::exists(place->filePath(u"nothing"_s)));
    }

    void anOpenFolderIsClosedToOthers()
    {
        QVERIFY(QDir().mkdir(path));
        QVERIFY(chmod(QFile::encodeName(path).constData(), 0777) == 0);
        QVERIFY(makeOwnFolder(path));
        QCOMPARE(modeOf(path), mode_t(0700));
    }

    void freshFoldersAreNewAndPrivate()
    {
        const QString first = makeFreshFolder(path + u'-');
        const QString second = makeFreshFolder(path + u'-');
        QVERIFY(first.startsWith(path + u'-'));
        QVERIFY(first != second);
        QVERIFY(isOwnFolder(first) && isOwnFolder(second));
        QCOMPARE(modeOf(first), mode_t(0700));
        QCOMPARE(makeFreshFolder(place->filePath(u"no/such/place-"_s)), QString());
    }

    void removesEverythingAndFollowsNoLink()
    {
        QVERIFY(QDir().mkpath(path + "/Images/deeper"_L1));
        makeFile(path + "/.hidden"_L1);
        makeFile(path + "/Images/out1.jpg"_L1);
        makeFile(path + "/Images/deeper/name with\nbreak"_L1);
        QVERIFY(QFile::link(outside, path + "/Images/deeper/link to a folder"_L1));
        QVERIFY(QFile::link(outside + "/file"_L1, path + "/link to a file"_L1));
        QVERIFY(QFile::link(u"/nowhere"_s, path + "/broken link"_L1));
        QVERIFY(mkfifo(QFile::encodeName(path + "/pipe"_L1).constData(), 0600) == 0);
        removeWhole(path);
        QVERIFY(!QFile::exists(path));
        QVERIFY(QFile::exists(outside + "/file"_L1));
    }

    void removesALinkNotItsTarget()
    {
        QVERIFY(QFile::link(outside, path));
        removeWhole(path);
        QVERIFY(!QFileInfo(path).isSymLink());
        QVERIFY(QFile::exists(outside + "/file"_L1));
    }

    void aSlashBehindALinkDoesNotOpenIt()
    {
        QVERIFY(QFile::link(outside, path));
        QVERIFY(!isOwnFolder(path + u'/'));
        QVERIFY(!makeOwnFolder(path + u'/'));
        removeWhole(path + u'/');
        QVERIFY(QFile::exists(outside + "/file"_L1));
        QVERIFY(!QFileInfo(path).isSymLink());
    }

    void removesAFile()
    {
        makeFile(path);
        removeWhole(path);
        QVERIFY(!QFile::exists(path));
    }

    void leavesARelativePathAlone_data()
    {
        QTest::addColumn<QString>("relative");
        QTest::newRow("no path at all") << QString();
        QTest::newRow("the current folder") << u"."_s;
        QTest::newRow("something in it") << u"file"_s;
    }

    void leavesARelativePathAlone()
    {
        QFETCH(QString, relative);
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(outside));
        removeWhole(relative);
        QVERIFY(QDir::setCurrent(before));
        QVERIFY(QFile::exists(outside + "/file"_L1));
    }

    void leavesSomebodyElsesFolderAlone()
    {
        if (geteuid() == 0) {
            const QString foreign = foreignFolder(*place);
            makeFile(foreign + "/file"_L1);
            removeWhole(foreign);
            QVERIFY(QFile::exists(foreign + "/file"_L1));
        } else {
            QVERIFY(!isOwnFolder(u"/usr"_s)); // what the removal goes by
        }
    }

    void leavesNoDescriptorOpen()
    {
        const auto open = [] {
            return QDir(u"/proc/self/fd"_s).entryList(QDir::NoDotAndDotDot | QDir::AllEntries);
        };
        const QStringList before = open();
        for (int i = 0; i < 10; ++i) {
            makeOwnFolder(path);
            isOwnFolder(path);
            isOwnFolder(u"/usr"_s);
            makeOwnFolder(path + "/deeper"_L1);
            removeWhole(path);
        }
        QCOMPARE(open(), before);
    }

private:
    std::unique_ptr<QTemporaryDir> place;
    QString outside;
    QString path;
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::OwnFolderTest)
#include "own_folder_test.moc"
