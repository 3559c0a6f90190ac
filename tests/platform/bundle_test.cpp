#include "platform/bundle.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

void makeFile(const QString &path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
}

} // namespace

class BundleTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { setResourceFolders({}); }

    void findsByFullName_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("found");
        QTest::newRow("a file") << u"file"_s << true;
        QTest::newRow("a file that is not executable is left to the start") << u"plain"_s << true;
        QTest::newRow("a folder is left to the start") << u"folder"_s << true;
        QTest::newRow("a link to a file") << u"link"_s << true;
        QTest::newRow("a link that leads nowhere") << u"broken link"_s << false;
        QTest::newRow("nothing") << u"nothing"_s << false;
        QTest::newRow("the same name with an extension") << u"extension"_s << false;
    }

    void findsByFullName()
    {
        QFETCH(QString, kind);
        QFETCH(bool, found);
        QTemporaryDir folder;
        const QString path = folder.filePath(u"sniffer"_s);
        if (kind == "file"_L1 || kind == "plain"_L1) makeFile(path);
        if (kind == "file"_L1) QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner));
        if (kind == "folder"_L1) QVERIFY(QDir().mkdir(path));
        if (kind == "link"_L1) QVERIFY(QFile::link(u"/bin/sh"_s, path));
        if (kind == "broken link"_L1) QVERIFY(QFile::link(u"/nowhere/at/all"_s, path));
        if (kind == "extension"_L1) makeFile(path + ".exe"_L1);
        setResourceFolders({folder.path()});
        const auto resource = pathForResource(u"sniffer"_s);
        QCOMPARE(resource.has_value(), found);
        // The link itself, not what it leads to: the tool's messages and a test's fake go by that name.
        if (found) QCOMPARE(*resource, path);
    }

    void anEmptyNameIsNothing()
    {
        setResourceFolders({QDir::tempPath()});
        QVERIFY(!pathForResource(QString()));
    }

    void looksAfreshEachTime()
    {
        QTemporaryDir folder;
        setResourceFolders({folder.path()});
        QVERIFY(!pathForResource(u"creator"_s));
        makeFile(folder.filePath(u"creator"_s));
        QCOMPARE(pathForResource(u"creator"_s), folder.filePath(u"creator"_s));
        QVERIFY(QFile::remove(folder.filePath(u"creator"_s)));
        QVERIFY(!pathForResource(u"creator"_s));
    }

    void theFirstFolderWins()
    {
        QTemporaryDir first;
        QTemporaryDir second;
        setResourceFolders({first.path(), second.path()});
        makeFile(second.filePath(u"creator"_s));
        QCOMPARE(pathForResource(u"creator"_s), second.filePath(u"creator"_s));
        makeFile(first.filePath(u"creator"_s));
        QCOMPARE(pathForResource(u"creator"_s), first.filePath(u"creator"_s));
    }

    void defaultFolders_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::newRow("beside the program") << u"."_s;
        QTest::newRow("a bundle's resources") << u"../Resources"_s;
        QTest::newRow("an installed program's library folder") << u"../lib/tessaly"_s;
    }

    void defaultFolders()
    {
        QFETCH(QString, folder);
        const QDir program(QCoreApplication::applicationDirPath());
        const QString name = u"tessaly-test-resource"_s;
        const QString path = QDir::cleanPath(program.filePath(folder + u'/' + name));
        QVERIFY(program.mkpath(folder));
        QVERIFY(!pathForResource(name));
        makeFile(path);
        const auto found = pathForResource(name);
        QVERIFY(QFile::remove(path));
        if (folder != "."_L1) program.rmpath(folder);
        QCOMPARE(found, path);
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::BundleTest)
#include "bundle_test.moc"
