#include "cli/output_path.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly;

class OutputPathTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void names_data();
    void names();
    void targets_data();
    void targets();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    QTemporaryDir m_folder;
};

void OutputPathTest::initTestCase()
{
    QVERIFY(QDir(m_folder.path()).mkdir(u"folder"_s) && QDir(m_folder.path()).mkdir(u"folder.mp4"_s));
    for (const QString &name : {u"in.mp4"_s, u"taken.mp4"_s, u"taken.mov"_s}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"pipe.mp4"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(path(u"in.mp4"_s), path(u"symbolic.mp4"_s)));
    QVERIFY(QFile::link(path(u"nothing"_s), path(u"dangling.mp4"_s)));
    QVERIFY(QFile::link(u"/dev/null"_s, path(u"device.mp4"_s)));
    QCOMPARE(::link(QFile::encodeName(path(u"in.mp4"_s)).constData(),
                    QFile::encodeName(path(u"hard.mp4"_s)).constData()),
             0);
}

void OutputPathTest::names_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("refusal"); // empty: none; %1 is the name
    const auto row = [](const char *name, const QString &refusal) {
        QTest::newRow(name) << QString::fromUtf8(name) << refusal;
    };
    const auto device = u"%1 is a device or a pipe: name a file, such as small.mp4."_s;
    const auto mp4 = u"The new video is an MP4 file: name it "_s;
    row("-", u"The new video cannot be written to standard output: name a file, such as small.mp4."_s);
    row("/dev/null", device);
    row("/dev/stdout", device);
    row("/dev/small", device);
    row("/dev/shm/small", {}); // memory, not a device
    row("pipe.mp4", device);
    row("device.mp4", device);
    row("folder", u"%1 is a folder: name a file in it, such as %1/small.mp4."_s);
    row("folder/", u"%1 is a folder: name a file in it, such as %1small.mp4."_s);
    row("new/", u"%1 is a folder: name a file in it, such as %1small.mp4."_s);
    row(".", u"%1 is a folder: name a file in it, such as %1/small.mp4."_s);
    row("folder.mp4", u"%1 is a folder: name a file in it, such as %1/small.mp4."_s);
    row("s.mov", mp4 + u"s.mp4."_s);
    row("taken.mov", mp4 + u"taken.mp4."_s);
    row("folder/a film.MKV", mp4 + u"folder/a film.mp4."_s);
    row("s.mp4.webm", mp4 + u"s.mp4.mp4."_s);
    row("s.jpg", mp4 + u"s.mp4."_s);
    row("s.mp3", mp4 + u"s.mp4."_s);
    row("s.mp4", {});
    row("S.MP4", {});
    row("s", {});
    row("mov", {});
    row(".mov", {}); // a hidden file without an extension
    row("holiday 3.8.2024", {});
    row("s.mov_old", {});
    row("-small.mp4", {});
    row("taken.mp4", {}); // not judged by what it may replace
    row("no/such/folder.mp4", {});
}

void OutputPathTest::names()
{
    QFETCH(QString, name);
    QFETCH(QString, refusal);
    const QString there = name.startsWith(u'/') || name == u"-" ? name : path(name);
    if (refusal.contains(u"%1"_s)) refusal = refusal.arg(name);
    QCOMPARE(nameRefusal({.shown = name, .path = there}).value_or(QString()), refusal);
}

void OutputPathTest::targets_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("refusal");       // empty: none; %1 is the path
    QTest::addColumn<QString>("whenReplacing"); // the same
    const auto row = [](const char *target, const QString &refusal, const QString &whenReplacing) {
        QTest::newRow(target) << QString::fromUtf8(target) << refusal << whenReplacing;
    };
    const auto itself = u"The output is the input itself: please name a different file."_s;
    const auto exists = u"%1 exists already; --force replaces it."_s;
    row("new.mp4", {}, {});
    row("in.mp4", itself, itself);
    row("symbolic.mp4", itself, itself);
    row("hard.mp4", itself, itself);
    row("folder.mp4", u"%1 is a folder."_s, u"%1 is a folder."_s);
    row("taken.mp4", exists, {});
    row("dangling.mp4", exists, {});
}

void OutputPathTest::targets()
{
    QFETCH(QString, target);
    QFETCH(QString, refusal);
    QFETCH(QString, whenReplacing);
    for (const auto &[mayReplace, expected] : {std::pair(false, refusal), std::pair(true, whenReplacing)}) {
        const QString sentence = QString(expected).replace(u"%1"_s, path(target));
        QCOMPARE(targetRefusal(path(u"in.mp4"_s), path(target), mayReplace).value_or(QString()), sentence);
    }
}

TESSALY_TEST_MAIN(OutputPathTest)
#include "output_path_test.moc"
