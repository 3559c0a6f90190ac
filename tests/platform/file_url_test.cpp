#include "platform/paths.h"
#include "support/test_case.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace tessaly;

class FileURLTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void makesFileURLs_data();
    void makesFileURLs();

private:
    QString m_before;
    QTemporaryDir m_root;
    QString m_current; // the current folder of these tests
};

void FileURLTest::initTestCase()
{
    QVERIFY(m_root.isValid());
    m_before = QDir::currentPath();
    m_current = QFileInfo(m_root.path()).canonicalFilePath() + u"/me"_s;
    QVERIFY(QDir().mkpath(m_current + u"/folder"_s));
    QVERIFY(QDir::setCurrent(m_current));
}

void FileURLTest::cleanupTestCase()
{
    QVERIFY(QDir::setCurrent(m_before));
}

void FileURLTest::makesFileURLs_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text"); // CWD stands for the current folder, UP for the one above
    QTest::addColumn<QString>("pathOfURL");
    const auto row = [](const char *path, const char *text, const char *pathOfURL) {
        QTest::addRow("'%s'", path) << QString::fromUtf8(path) << QString::fromUtf8(text)
                                    << QString::fromUtf8(pathOfURL);
    };
    row("/a b.mp4", "file:///a%20b.mp4", "/a b.mp4");
    row("clip.mp4", "file://CWD/clip.mp4", "CWD/clip.mp4");
    row("../x/./y.mp4", "file://UP/x/y.mp4", "UP/x/y.mp4");
    row("/no/../../../y.mp4", "file:///y.mp4", "/y.mp4");
    row("/Movies/", "file:///Movies/", "/Movies");
    row("folder", "file://CWD/folder/", "CWD/folder");
    row("folder/", "file://CWD/folder/", "CWD/folder");
    row("/no/..", "file:///", "/");
    row("/no/such/.", "file:///no/such/", "/no/such");
    row("missing", "file://CWD/missing", "CWD/missing");
    row("", "file://CWD/", "CWD");
    row("/", "file:///", "/");
    row("/100%#?.mp4", "file:///100%25%23%3F.mp4", "/100%#?.mp4");
    row("/100%20.mp4", "file:///100%2520.mp4", "/100%20.mp4");
    row("/a%2Fb", "file:///a%252Fb", "/a%2Fb");
    row("/a;b.mp4", "file:///a%3Bb.mp4", "/a;b.mp4");
    row("/\xC3\xA9.mp4", "file:///%C3%A9.mp4", "/\xC3\xA9.mp4");
    row("/e\xCC\x81.mp4", "file:///e%CC%81.mp4", "/e\xCC\x81.mp4");
    row("/[x]{y}\"<>", "file:///%5Bx%5D%7By%7D%22%3C%3E", "/[x]{y}\"<>");
    row("/\\^`|", "file:///%5C%5E%60%7C", "/\\^`|");
    row("/-._~!$&'()*+,=:@", "file:///-._~!$&'()*+,=:@", "/-._~!$&'()*+,=:@");
    row("/line\nbreak", "file:///line%0Abreak", "/line\nbreak");
    row("foo:bar", "file://CWD/foo:bar", "CWD/foo:bar");
    row("~/a", "file://CWD/~/a", "CWD/~/a");
    row("//host/a.mp4", "file:///host/a.mp4", "/host/a.mp4");
    row("/\xF0\x9F\x98\x80.", "file:///%F0%9F%98%80.", "/\xF0\x9F\x98\x80.");
}

void FileURLTest::makesFileURLs()
{
    QFETCH(QString, path);
    QFETCH(QString, text);
    QFETCH(QString, pathOfURL);
    const QString up = m_current.first(m_current.lastIndexOf(u'/'));
    for (QString *expected : {&text, &pathOfURL})
        expected->replace(u"CWD"_s, m_current).replace(u"UP"_s, up);

    const QUrl url = fileURL(path);
    QVERIFY(url.isLocalFile());
    QVERIFY(url.host().isEmpty());
    QCOMPARE(absoluteString(url), text);
    QCOMPARE(filePath(url), pathOfURL);
}

TESSALY_TEST_MAIN(FileURLTest)
#include "file_url_test.moc"
