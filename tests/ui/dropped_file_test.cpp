#include "support/test_case.h"
#include "ui/drag.h"
#include "ui/dropped_file.h"

#include <QSysInfo>
#include <QUrl>

using namespace Qt::StringLiterals;
using namespace tessaly;

class DroppedFileTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void takesTheFirstLocalFile_data();
    void takesTheFirstLocalFile();
    void readsListsOfURLs_data();
    void readsListsOfURLs();
    void otherKindsOfDrags();
};

void DroppedFileTest::takesTheFirstLocalFile_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QByteArray>("path");
    const auto row = [](const char *name, const QByteArray &list, const QByteArray &path) {
        QTest::newRow(name) << list << path;
    };
    row("one file", "file:///a%20b.mp4\r\n", "/a b.mp4");
    row("the first of three counts", "file:///1\r\nfile:///2\r\nfile:///3\r\n", "/1");
    row("line feeds alone", "file:///1\nfile:///2\n", "/1");
    row("last line without an end", "file:///x", "/x");
    row("comment before", "# comment\r\nfile:///x\r\n", "/x");
    row("a comment that looks like a file", "#file:///y\r\nfile:///x\r\n", "/x");
    row("empty lines", "\r\n\r\nfile:///x\r\n", "/x");
    row("localhost", "file://localhost/x\r\n", "/x");
    row("localhost in capitals", "FILE://LocalHost/x\r\n", "/x");
    row("this machine", "file://" + QSysInfo::machineHostName().toUtf8() + "/x\r\n", "/x");
    row("this machine in capitals", "file://" + QSysInfo::machineHostName().toUpper().toUtf8() + "/x", "/x");
    row("one slash", "file:/x\r\n", "/x");
    row("other machine", "file://otherhost/x\r\n", "");
    row("beginning of this machine's name", "file://localhos/x\r\n", "");
    row("other machine first", "file://otherhost/x\r\nfile:///y\r\n", "/y");
    row("web page", "http://h/v.mp4\r\n", "");
    row("web page first", "http://h/v.mp4\r\nfile:///v.mp4\r\n", "/v.mp4");
    row("bare path", "/x\r\n", "");
    row("relative", "file:x\r\n", "");
    row("host without a path", "file://localhost\r\n", "");
    row("another scheme that begins alike", "files:///x\r\n", "");
    row("scheme alone", "file:", "");
    row("shorter than the scheme", "fil", "");
    row("escaped percent sign", "file:///100%25.mp4\r\n", "/100%.mp4");
    row("escaped UTF-8", "file:///%C3%A9.mp4\r\n", "/\xC3\xA9.mp4");
    row("bare UTF-8", "file:///\xC3\xA9.mp4\r\n", "/\xC3\xA9.mp4");
    row("small hexadecimal digits", "file:///%c3%a9.mp4\r\n", "/\xC3\xA9.mp4");
    row("not UTF-8", "file:///caf%E9.mp4\r\n", "/caf\xE9.mp4");
    row("plus sign", "file:///a+b.mp4\r\n", "/a+b.mp4");
    row("malformed escape", "file:///a%zz\r\n", "/a%zz");
    row("half malformed escape", "file:///a%4z\r\n", "/a%4z");
    row("escape with a sign", "file:///a%+1\r\n", "/a%+1");
    row("escape cut short", "file:///a%4", "/a%4");
    row("percent sign at the end", "file:///a%", "/a%");
    row("escaped line break", "file:///a%0Ab.mp4\r\n", "/a\nb.mp4");
    row("escaped blank at the end", "file:///a%20\r\n", "/a ");
    row("number sign and question mark", "file:///a%23b%3Fc\r\n", "/a#b?c");
    row("bare number sign and question mark", "file:///a#b?c\r\n", "/a#b?c");
    row("quotes and markup", "file:///%22%27%3Cb%3E&.mp4\r\n", "/\"'<b>&.mp4");
    row("escaped NUL", "file:///a%00.mp4\r\n", "");
    row("folder keeps its slash", "file:///Movies/\r\n", "/Movies/");
    row("nothing", "", "");
}

void DroppedFileTest::takesTheFirstLocalFile()
{
    QFETCH(QByteArray, list);
    QFETCH(QByteArray, path);
    const test::RawDrag drag(list);
    QCOMPARE(firstLocalFileName(&drag), path);
}

void DroppedFileTest::readsListsOfURLs_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<QByteArray>("path");
    const QUrl file = QUrl::fromLocalFile(u"/a 100%;é.mp4"_s);
    QTest::newRow("file") << QList<QUrl>{file} << QByteArray("/a 100%;\xC3\xA9.mp4");
    QTest::newRow("web page, then file")
        << QList<QUrl>{QUrl(u"http://h/v.mp4"_s), file} << QByteArray("/a 100%;\xC3\xA9.mp4");
    QTest::newRow("other machine") << QList<QUrl>{QUrl(u"file://otherhost/x"_s)} << QByteArray();
    QTest::newRow("localhost") << QList<QUrl>{QUrl(u"file://localhost/x"_s)} << QByteArray("/x");
    QTest::newRow("none") << QList<QUrl>{} << QByteArray();
}

void DroppedFileTest::readsListsOfURLs()
{
    QFETCH(QList<QUrl>, urls);
    QFETCH(QByteArray, path);
    QMimeData drag;
    drag.setUrls(urls);
    QCOMPARE(firstLocalFileName(&drag), path);
}

void DroppedFileTest::otherKindsOfDrags()
{
    QCOMPARE(firstLocalFileName(nullptr), QByteArray());
    QMimeData text;
    text.setText(u"file:///x"_s);
    QCOMPARE(firstLocalFileName(&text), QByteArray());
    text.setData(u"text/uri-list"_s, "file:///y\r\n");
    QCOMPARE(firstLocalFileName(&text), QByteArray("/y"));
}

TESSALY_TEST_MAIN(DroppedFileTest)
#include "dropped_file_test.moc"
