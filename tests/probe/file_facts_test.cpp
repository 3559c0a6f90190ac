#include "probe/file_facts.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>

#include <cmath>
#include <limits>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::writtenTo;

class FileFactsTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void size_data();
    void size();
    void noSize_data();
    void noSize();
    void duration_data();
    void duration();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    void makeFile(const QString &name, qint64 size) const;

    QTemporaryDir m_folder;
};

void FileFactsTest::makeFile(const QString &name, qint64 size) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(size));
}

void FileFactsTest::initTestCase()
{
    QLocale::setDefault(QLocale::c());
    makeFile(u"empty"_s, 0);
    makeFile(u"film"_s, 1'234'567);
    makeFile(u"large"_s, 5'000'000'000); // a hole
    makeFile(u"line\nbreak 🎬 %1 'q' \"q\" <b>."_s, 1);
    QVERIFY(QFile::link(path(u"film"_s), path(u"link"_s)));
    QVERIFY(QFile::link(path(u"gone"_s), path(u"dangling"_s)));
    QVERIFY(::mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600) == 0);
}

void FileFactsTest::size_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("human");
    QTest::newRow("empty file") << u"empty"_s << quint64{0} << u"Zero KB"_s;
    QTest::newRow("file") << u"film"_s << quint64{1'234'567} << u"1.2 MB"_s;
    QTest::newRow("more than 32 bits") << u"large"_s << quint64{5'000'000'000} << u"5 GB"_s;
    QTest::newRow("odd name") << u"line\nbreak 🎬 %1 'q' \"q\" <b>."_s << quint64{1} << u"1 byte"_s;
    QTest::newRow("symbolic link: its target's") << u"link"_s << quint64{1'234'567} << u"1.2 MB"_s;
}

void FileFactsTest::size()
{
    QFETCH(QString, name);
    std::optional<quint64> bytes;
    QString human;
    const QByteArray printed = writtenTo(STDOUT_FILENO, [&] {
        bytes = fileSize(path(name));
        human = fileSizeHuman(path(name));
    });
    QVERIFY(bytes);
    QTEST(*bytes, "bytes");
    QTEST(human, "human");
    QCOMPARE(printed, QByteArray());
}

void FileFactsTest::noSize_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("message");
    const auto lookUpFails = [](const char *name, const QString &path, const QString &error) {
        const QString message = u"Failed to get file attributes for local path: %1 with error: %2"_s;
        QTest::newRow(name) << path << message.arg(path, error);
    };
    lookUpFails("missing", path(u"gone"_s), u"No such file or directory"_s);
    lookUpFails("link that leads nowhere", path(u"dangling"_s), u"No such file or directory"_s);
    lookUpFails("in a file instead of a folder", path(u"film/a"_s), u"Not a directory"_s);
    lookUpFails("name too long", path(QString(300, u'a')), u"File name too long"_s);
    lookUpFails("no name", QString(), u"No such file or directory"_s);
    const QString pipe = path(u"pipe"_s);
    QTest::newRow("pipe") << pipe << u"Failed to get a size attribute from path: "_s + pipe;
    QTest::newRow("device") << u"/dev/null"_s << u"Failed to get a size attribute from path: /dev/null"_s;
}

void FileFactsTest::noSize()
{
    QFETCH(QString, path);
    QFETCH(QString, message);
    std::optional<quint64> bytes{1};
    QString human;
    QCOMPARE(QString::fromUtf8(writtenTo(STDOUT_FILENO, [&] { bytes = fileSize(path); })), message + u'\n');
    QVERIFY(!bytes);
    QCOMPARE(QString::fromUtf8(writtenTo(STDOUT_FILENO, [&] { human = fileSizeHuman(path); })),
             message + u'\n');
    QCOMPARE(human, u"Unknown File Size"_s);
}

void FileFactsTest::duration_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, double seconds, const char *text) {
        QTest::newRow(name) << seconds << QString::fromLatin1(text);
    };
    constexpr double infinity = std::numeric_limits<double>::infinity();
    row("nothing", 0, "00:00:00.00");
    row("hours, minutes, seconds", 3725.5, "01:02:05.50");
    row("two digits each", 45296.78, "12:34:56.78");
    row("eleven hours", 40000, "11:06:40.00");
    row("ten hours", 36000, "10:00:00.00");
    row("just below ten hours", 35999.994, "09:59:59.99");
    row("a minute", 60, "00:01:00.00");
    row("an hour", 3600, "01:00:00.00");
    row("a second before the hour", 3599, "00:59:59.00");
    row("a fraction that is rounded up", 59.996, "00:00:59.00");
    row("whole seconds cut, fraction rounded", 59.999, "00:00:59.00");
    row("fraction rounded up", 1.236, "00:00:01.24");
    row("fraction rounded down", 1.234, "00:00:01.23");
    row("a day is not wrapped", 90000, "25:00:00.00");
    row("more than a hundred hours", 500000, "138:53:20.00");
    row("far too long", 1e15, "277777777777:46:40.00");
    row("the largest that fits", 9223372036854774784.0, "2562047788015215:13:04.00");
    row("too large", 9223372036854775808.0, "00:00:00.00");
    row("far too large", 1e300, "00:00:00.00");
    row("the smallest that fits", -9223372036854775808.0, "0-2562047788015215:0-30:0-8.00");
    row("too small", -9223372036854777856.0, "00:00:00.00");
    row("infinite", infinity, "00:00:00.00");
    row("infinite the other way", -infinity, "00:00:00.00");
    row("not a number", std::nan(""), "00:00:00.00");
    row("below zero", -0.25, "00:00:00.25");
}

void FileFactsTest::duration()
{
    QFETCH(double, seconds);
    QTEST(durationHuman(seconds), "text");
}

TESSALY_TEST_MAIN(FileFactsTest)
#include "file_facts_test.moc"
