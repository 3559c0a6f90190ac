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
    void folders_data();
    void folders();
    void namesInAFolder_data();
    void namesInAFolder();
    void whatIsCalledAVideo_data();
    void whatIsCalledAVideo();

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

void OutputPathTest::folders_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("refusal"); // empty: none; the name comes before it
    const auto row = [](const char *name, const char *refusal) {
        QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(refusal);
    };
    row("folder", "");
    row("folder/", "");
    row("folder.mp4", ""); // it is there
    row(".", "");
    row("new", "");
    row("new/", "");
    row("new.mp4/", ""); // who writes a slash means a folder
    row("films 3.8.2024", "");
    row("new.mp4", " is the name of a file.");
    row("new.MOV", " is the name of a file.");
    row("new.mp3", " is the name of a file.");
    row("taken.mp4", " is no folder.");
    row("pipe.mp4", " is no folder.");
    row("device.mp4", " is no folder.");
    row("dangling.mp4", " is no folder.");
    row("/dev/null", " is no folder.");
    row("/dev/small", " cannot be a folder.");
    row("-", " cannot be a folder.");
}

void OutputPathTest::folders()
{
    QFETCH(QString, name);
    QFETCH(QString, refusal);
    const QString there = name.startsWith(u'/') || name == u"-" ? name : path(name);
    const QString sentence = refusal.isEmpty() ? QString() : name + refusal;
    QCOMPARE(folderRefusal({.shown = name, .path = there}).value_or(QString()), sentence);
}

void OutputPathTest::namesInAFolder_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *input, const char *name) {
        QTest::newRow(input) << QString::fromUtf8(input) << QString::fromUtf8(name);
    };
    row("/in/a.mp4", "a.mp4");
    row("/in/a.MP4", "a.MP4");
    row("/in/a.mov", "a.mp4");
    row("/in/a film.MKV", "a film.mp4");
    row("/in/a.tar.webm", "a.tar.mp4");
    row("/in/a.rmvb", "a.mp4");
    row("/in/a.jpg", "a.mp4");
    row("/in/a", "a.mp4");
    row("/in/a.", "a.mp4");
    row("/in/holiday 3.8.2024", "holiday 3.8.2024.mp4");
    row("/in/.mov", ".mov.mp4");
    row("/in/%1 %2.mov", "%1 %2.mp4");
    row("/in/é🎬.avi", "é🎬.mp4");
    row("/in/-", "-.mp4");
}

void OutputPathTest::namesInAFolder()
{
    QFETCH(QString, input);
    QFETCH(QString, name);
    const NamedFile file{.shown = u"anything"_s, .path = input};
    for (const QString &slash : {u""_s, u"/"_s}) {
        const NamedFile output = outputIn({.shown = u"out"_s + slash, .path = u"/v/out"_s + slash}, file);
        QCOMPARE(output.shown, u"out/"_s + name);
        QCOMPARE(output.path, u"/v/out/"_s + name);
        QCOMPARE(nameRefusal(output).value_or(QString()), QString());
    }
}

void OutputPathTest::whatIsCalledAVideo_data()
{
    QTest::addColumn<bool>("isVideo");
    for (const char *name :
         {"a.mp4", "a.MP4", "a.mov", "/in/a b.Mkv", "a.vob", "a.264", "a.rmvb", "a.OGM", "a.y4m"})
        QTest::newRow(name) << true;
    for (const char *name :
         {"a", "mp4", ".mp4", "a.txt", "a.jpg", "a.mp3", "a.gif", "a.ogg", "a.dat", "a.mp4/b", ""})
        QTest::newRow(name) << false;
}

void OutputPathTest::whatIsCalledAVideo()
{
    QTEST(isCalledVideo(QString::fromUtf8(QTest::currentDataTag())), "isVideo");
}

TESSALY_TEST_MAIN(OutputPathTest)
#include "output_path_test.moc"
