#include "platform/paths.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly;

class PathsTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void takesNamesApart_data();
    void takesNamesApart();
    void makesPathsAbsolute_data();
    void makesPathsAbsolute();
    void theRootAsCurrentFolder();
    void tellsTheSameFile_data();
    void tellsTheSameFile();
    void followsLinks_data();
    void followsLinks();
    void readsNamesOfTheSystem_data();
    void readsNamesOfTheSystem();

private:
    QString m_before;
    QTemporaryDir m_root;
    QString m_current; // the current folder of these tests
};

void PathsTest::initTestCase()
{
    QVERIFY(m_root.isValid());
    m_before = QDir::currentPath();
    m_current = QFileInfo(m_root.path()).canonicalFilePath() + u"/me"_s;
    QVERIFY(QDir().mkpath(m_current + u"/folder"_s));
    QVERIFY(QDir::setCurrent(m_current));
    QFile file(u"clip.mp4"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(QFile::link(u"clip.mp4"_s, u"symbolic.mp4"_s));
    QVERIFY(QFile::link(u"nowhere.mp4"_s, u"dangling.mp4"_s));
    QCOMPARE(::link("clip.mp4", "hard.mp4"), 0);
    QVERIFY(file.copy(u"copy.mp4"_s));
    QCOMPARE(::symlink("../symbolic.mp4", "folder/second"), 0);
    QCOMPARE(::symlink("/dev/full", "folder/absolute"), 0);
    QCOMPARE(::symlink("caf\xE9", "folder/latin"), 0);
}

void PathsTest::cleanupTestCase()
{
    QVERIFY(QDir::setCurrent(m_before));
}

void PathsTest::takesNamesApart_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("extension");
    const auto row = [](const char *path, const char *last, const char *extension) {
        QTest::addRow("'%s'", path) << QString::fromUtf8(path) << QString::fromUtf8(last)
                                    << QString::fromUtf8(extension);
    };
    row("/v/a.mp4", "a.mp4", "mp4");
    row("/v/my clip.mp4", "my clip.mp4", "mp4");
    row("a.mp4", "a.mp4", "mp4");
    row("/v/a.tar.gz", "a.tar.gz", "gz");
    row("/v.x/a", "a", "");
    row("/v/.hidden", ".hidden", "");
    row("/v/.hidden.mp4", ".hidden.mp4", "mp4");
    row("/v/a.", "a.", "");
    row("/v/a..mp4", "a..mp4", "mp4");
    row("/v/..mp4", "..mp4", "");
    row("/v/a.b c", "a.b c", "");
    row("/v/a.MP4", "a.MP4", "MP4");
    row("/v/dir.ext/", "dir.ext", "ext");
    row("/v/..", "..", "");
    row("/v/.", ".", "");
    row("/", "/", "");
    row("//", "/", "");
    row("/a///b//", "b", "");
    row("", "", "");
    row("/v/é.mp4", "é.mp4", "mp4");
    for (const QChar control : u"\u061C\u200E\u200F\u202A\u202E\u2066\u2069"_s) {
        const QString name = u"a.m"_s + control + u"p4"_s;
        QTest::addRow("bidi control %04x", unsigned{control.unicode()})
            << u"/v/"_s + name << name << QString();
    }
    const QString joiner = u"a.m\u200Dp4"_s;
    QTest::newRow("a joiner is no bidi control") << joiner << joiner << u"m\u200Dp4"_s;
}

void PathsTest::takesNamesApart()
{
    QFETCH(QString, path);
    QFETCH(QString, last);
    QFETCH(QString, extension);
    QCOMPARE(lastPathComponent(path), last);
    QCOMPARE(pathExtension(path), extension);
}

void PathsTest::makesPathsAbsolute_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("absolute");
    const auto row = [](const char *path, const char *absolute) {
        QTest::addRow("'%s'", path) << QString::fromLatin1(path) << QString::fromLatin1(absolute);
    };
    row("/v/a.mp4", "/v/a.mp4");
    row("/v/./b/../a.mp4", "/v/./b/../a.mp4");
    row("//v//a.", "//v//a.");
    row("a.mp4", "CWD/a.mp4");
    row("./a//b/../c.", "CWD/./a//b/../c.");
    row("-y", "CWD/-y");
    row("folder/", "CWD/folder/");
    row("", "CWD");
}

void PathsTest::makesPathsAbsolute()
{
    QFETCH(QString, path);
    QFETCH(QString, absolute);
    QCOMPARE(absolutePath(path), absolute.replace(u"CWD"_s, m_current));
}

void PathsTest::theRootAsCurrentFolder()
{
    QVERIFY(QDir::setCurrent(u"/"_s));
    const QString absolute = absolutePath(u"a.mp4"_s);
    QVERIFY(QDir::setCurrent(m_current));
    QCOMPARE(absolute, u"/a.mp4"_s);
}

void PathsTest::tellsTheSameFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("same");
    QTest::newRow("itself") << u"clip.mp4"_s << u"clip.mp4"_s << true;
    QTest::newRow("other spelling") << u"clip.mp4"_s << u"./folder/../clip.mp4"_s << true;
    QTest::newRow("symbolic link") << u"clip.mp4"_s << u"symbolic.mp4"_s << true;
    QTest::newRow("symbolic link first") << u"symbolic.mp4"_s << u"clip.mp4"_s << true;
    QTest::newRow("hard link") << u"clip.mp4"_s << u"hard.mp4"_s << true;
    QTest::newRow("copy") << u"clip.mp4"_s << u"copy.mp4"_s << false;
    QTest::newRow("second is missing") << u"clip.mp4"_s << u"missing.mp4"_s << false;
    QTest::newRow("first is missing") << u"missing.mp4"_s << u"clip.mp4"_s << false;
    QTest::newRow("both are missing") << u"missing.mp4"_s << u"missing.mp4"_s << false;
    QTest::newRow("link to nothing") << u"dangling.mp4"_s << u"dangling.mp4"_s << false;
}

void PathsTest::tellsTheSameFile()
{
    QFETCH(QString, path);
    QFETCH(QString, other);
    QFETCH(bool, same);
    QCOMPARE(isSameFile(path, other), same);
}

void PathsTest::followsLinks_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("end");
    QTest::newRow("no link") << "clip.mp4"_ba
                             << "clip.mp4"_ba;
    QTest::newRow("nothing there") << "missing.mp4"_ba
                                   << "missing.mp4"_ba;
    QTest::newRow("a link") << "./symbolic.mp4"_ba
                            << "./clip.mp4"_ba;
    QTest::newRow("a link to nothing") << "folder/../dangling.mp4"_ba
                                       << "folder/../nowhere.mp4"_ba;
    QTest::newRow("two links") << "folder/second"_ba
                               << "folder/../clip.mp4"_ba;
    QTest::newRow("an absolute link") << "folder/absolute"_ba
                                      << "/dev/full"_ba;
    QTest::newRow("a name that is not UTF-8") << "folder/latin"_ba
                                              << "folder/caf\xE9"_ba;
}

void PathsTest::followsLinks()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, end);
    QCOMPARE(withoutLinks(path), end);
}

void PathsTest::readsNamesOfTheSystem_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("path"); // null: refused
    QTest::newRow("ASCII") << QByteArray("/v/a.mp4") << u"/v/a.mp4"_s;
    QTest::newRow("UTF-8") << QByteArray("/\xC3\xA9\xF0\x9F\x98\x80") << u"/é😀"_s;
    QTest::newRow("decomposed stays so") << QByteArray("e\xCC\x81") << u"e\u0301"_s;
    QTest::newRow("byte order mark is a character") << QByteArray("\xEF\xBB\xBFx") << u"\uFEFFx"_s;
    QTest::newRow("replacement character itself") << QByteArray("\xEF\xBF\xBD") << u"\uFFFD"_s;
    QTest::newRow("Latin-1") << QByteArray("/caf\xE9.mp4") << QString();
    QTest::newRow("cut short") << QByteArray("/caf\xC3") << QString();
    QTest::newRow("overlong") << QByteArray("/\xC0\xAF") << QString();
    QTest::newRow("overlong, three bytes") << QByteArray("/\xE0\x80\xAF") << QString();
    QTest::newRow("surrogate") << QByteArray("/\xED\xA0\x80") << QString();
    QTest::newRow("past the last character") << QByteArray("/\xF4\x90\x80\x80") << QString();
    QTest::newRow("lone continuation") << QByteArray("/\x80") << QString();
    QTest::newRow("NUL") << QByteArray("/a\0b", 4) << QString();
}

void PathsTest::readsNamesOfTheSystem()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, path);
    QCOMPARE(pathFromBytes(bytes).has_value(), !path.isNull());
    QCOMPARE(pathFromBytes(bytes).value_or(QString()), path);
}

TESSALY_TEST_MAIN(PathsTest)
#include "paths_test.moc"
