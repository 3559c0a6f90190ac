#include "cli/resize_plan.h"
#include "support/fake_tools.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

const QByteArray filmReport = R"({"streams":[{"index":0,"codec_type":"video","codec_name":"h264","width":64,)"
                              R"("height":36}],"format":{"format_name":"mov,mp4"}})";

} // namespace

// The folder "in" holds videos by their names, and a hidden file, a folder, a pipe, a link that leads nowhere
// and a name that is not UTF-8. In "meet" two files would get one name.
class ResizePlanTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void aloneIsAsNamed();
    void files_data();
    void files();
    void placesAreCounted();
    void refusals_data();
    void refusals();
    void aFileThatIsNoVideoTakesNoName();
    void namesThatMeetOnSomeDisks_data();
    void namesThatMeetOnSomeDisks();
    void namesThatLeadToOneFile_data();
    void namesThatLeadToOneFile();
    void anotherInputIsNotReplaced_data();
    void anotherInputIsNotReplaced();

private:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QByteArray notUtf8() const { return QFile::encodeName(path(u"in/"_s)) + "b\xFF.mp4"; }
    void make(const QString &name) const;
    NamedFile named(const QString &name) const { return {.shown = name, .path = path(name)}; }
    ResizeCommand command(const QStringList &inputs, const QString &output, bool force = false) const;

    QTemporaryDir m_folder;
};

void ResizePlanTest::make(const QString &name) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
}

ResizeCommand ResizePlanTest::command(const QStringList &inputs, const QString &output, bool force) const
{
    ResizeCommand command{.output = named(output), .force = force};
    for (const QString &input : inputs)
        command.inputs.push_back(named(input));
    return command;
}

void ResizePlanTest::initTestCase()
{
    for (const QString &folder : {u"in"_s, u"in/c.mp4"_s, u"meet"_s, u"empty"_s, u"out"_s, u"linked"_s})
        QVERIFY(QDir(m_folder.path()).mkdir(folder));
    for (const QString &name :
         {u"in/B film.mov"_s, u"in/a.avi"_s, u"in/a film"_s, u"in/z.mp4"_s, u"in/.hidden.mp4"_s,
          u"meet/a.mov"_s, u"meet/a.jpg"_s, u"meet/b.mp4"_s, u"a.mov"_s, u"a.mp4"_s, u"A.avi"_s, u"b.mp4"_s,
          u"linked/file.mp4"_s, u"linked/other.mp4"_s})
        make(name);
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"in/pipe.mp4"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"in/link.mp4"_s)));
    QCOMPARE(::symlink("/nonexistent", notUtf8().constData()), 0);
    QVERIFY(QFile::link(path(u"b.mp4"_s), path(u"out/a.mp4"_s)));
    QCOMPARE(::link(QFile::encodeName(path(u"meet/b.mp4"_s)).constData(),
                    QFile::encodeName(path(u"out/a film.mp4"_s)).constData()),
             0);
    QCOMPARE(::link(QFile::encodeName(path(u"linked/file.mp4"_s)).constData(),
                    QFile::encodeName(path(u"linked/hard.mp4"_s)).constData()),
             0);
    for (const auto &[target, name] :
         {std::pair("file.mp4", u"symbolic"_s), std::pair("new.mp4", u"dangling"_s),
          std::pair("../linked/./new.mp4", u"also"_s), std::pair("../new.mp4", u"astray"_s)})
        QCOMPARE(::symlink(target, QFile::encodeName(path(u"linked/%1.mp4"_s.arg(name))).constData()), 0);
}

// Qt sees no such name, and so cannot remove it.
void ResizePlanTest::cleanupTestCase()
{
    QCOMPARE(::unlink(notUtf8().constData()), 0);
}

void ResizePlanTest::aloneIsAsNamed()
{
    const ResizePlan plan = planOf(command({u"a.mov"_s}, u"folder/new"_s));
    QVERIFY(!plan.isOfMany);
    QCOMPARE(plan.refusals, QStringList());
    QCOMPARE(plan.files.size(), std::size_t{1});
    QCOMPARE(plan.files[0].input.shown, u"a.mov"_s);
    QCOMPARE(plan.files[0].output.shown, u"folder/new"_s);
    QCOMPARE(plan.files[0].place, QString());
    QVERIFY(!plan.files[0].isFromFolder);
}

void ResizePlanTest::files_data()
{
    QTest::addColumn<QStringList>("inputs");
    QTest::addColumn<QStringList>("files"); // a star marks those of a folder
    const QStringList inFolder{u"*in/B film.mov > new/B film.mp4"_s, u"*in/a film > new/a film.mp4"_s,
                               u"*in/a.avi > new/a.mp4"_s,           u"*in/b\uFFFD.mp4 > "_s,
                               u"*in/link.mp4 > new/link.mp4"_s,     u"*in/z.mp4 > new/z.mp4"_s};
    QTest::newRow("several, in their order")
        << QStringList{u"b.mp4"_s, u"a.mov"_s, u"gone.mkv"_s}
        << QStringList{u"b.mp4 > new/b.mp4"_s, u"a.mov > new/a.mp4"_s, u"gone.mkv > new/gone.mp4"_s};
    QTest::newRow("a folder, by name") << QStringList{u"in"_s} << inFolder;
    QTest::newRow("a folder with a slash") << QStringList{u"in/"_s} << inFolder;
    QTest::newRow("a file and a folder")
        << QStringList{u"b.mp4"_s, u"in"_s} << QStringList{u"b.mp4 > new/b.mp4"_s} + inFolder;
    QTest::newRow("an empty folder") << QStringList{u"empty"_s} << QStringList{};
}

void ResizePlanTest::files()
{
    QFETCH(QStringList, inputs);
    const ResizePlan plan = planOf(command(inputs, u"new"_s));
    QVERIFY(plan.isOfMany);
    QCOMPARE(plan.refusals, QStringList());
    QStringList files;
    for (const ResizeFile &file : plan.files) {
        files += (file.isFromFolder ? u"*"_s : QString()) + file.input.shown + u" > "_s + file.output.shown;
        if (file.input.path) QCOMPARE(*file.input.path, path(file.input.shown));
    }
    QTEST(files, "files");
    QVERIFY(!QFile::exists(path(u"new"_s)));
}

void ResizePlanTest::placesAreCounted()
{
    const ResizePlan plan = planOf(command({u"b.mp4"_s, u"a.mov"_s}, u"new"_s));
    QCOMPARE(plan.files.at(0).place, u"1 of 2: "_s);
    QCOMPARE(plan.files.at(1).place, u"2 of 2: "_s);
}

void ResizePlanTest::refusals_data()
{
    QTest::addColumn<QStringList>("inputs");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("refusal");
    const auto row = [](const char *name, const QStringList &inputs, const char *output,
                        const char *refusal) {
        QTest::newRow(name) << inputs << QString::fromUtf8(output) << QString::fromUtf8(refusal);
    };
    row("several into a file", {u"a.mov"_s, u"b.mp4"_s}, "new.mp4",
        "There are several inputs, so -o must name a folder: new.mp4 is the name of a file.");
    row("several into a file that is there", {u"a.mov"_s, u"b.mp4"_s}, "a.mp4",
        "There are several inputs, so -o must name a folder: a.mp4 is no folder.");
    row("a folder into a file", {u"in"_s}, "new.mp4",
        "in: Is a directory, so -o must name a folder: new.mp4 is the name of a file.");
    row("two of one name", {u"a.mov"_s, u"b.mp4"_s, u"a.mp4"_s}, "new",
        "a.mov and a.mp4 would both become new/a.mp4: please resize them into different folders.");
    row("one twice", {u"a.mov"_s, u"a.mov"_s}, "new",
        "a.mov and a.mov would both become new/a.mp4: please resize them into different folders.");
}

void ResizePlanTest::refusals()
{
    QFETCH(QStringList, inputs);
    QFETCH(QString, output);
    const ResizePlan plan = planOf(command(inputs, output));
    QTEST(plan.refusals.join(u'|'), "refusal");
}

void ResizePlanTest::aFileThatIsNoVideoTakesNoName()
{
    test::FakeTools tools;
    const auto meeting = [this] { return planOf(command({u"meet"_s}, u"new"_s)).refusals.size(); };
    tools.setBehaviour(u"sniffer"_s, u"print"_s, {QString::fromLatin1(filmReport)});
    QCOMPARE(meeting(), 1);
    QCOMPARE(tools.calls(u"sniffer"_s).size(), 2); // b.mp4 meets nobody
    QByteArray picture = filmReport;
    picture.replace("mov,mp4", "image2");
    tools.setBehaviour(u"sniffer"_s, u"print"_s, {QString::fromLatin1(picture)});
    QCOMPARE(meeting(), 0);
}

void ResizePlanTest::namesThatMeetOnSomeDisks_data()
{
    QTest::addColumn<QStringList>("inputs");
    QTest::newRow("letter case") << QStringList{u"A.avi"_s, u"a.mov"_s};
    QTest::newRow("composed letters") << QStringList{u"é.mov"_s, u"e\u0301.mov"_s};
}

void ResizePlanTest::namesThatMeetOnSomeDisks()
{
    QFETCH(QStringList, inputs);
    QCOMPARE(planOf(command(inputs, u"new"_s, false)).refusals.size(), 0);
    QCOMPARE(planOf(command(inputs, u"new"_s, true)).refusals.size(), 1);
}

void ResizePlanTest::namesThatLeadToOneFile_data()
{
    QTest::addColumn<QStringList>("inputs");
    QTest::addColumn<QString>("outputs");
    const auto row = [](const char *name, const QStringList &inputs, const char *outputs) {
        QTest::newRow(name) << inputs << QString::fromUtf8(outputs);
    };
    row("a hard link", {u"file.mov"_s, u"hard.mov"_s}, "linked/file.mp4 and linked/hard.mp4");
    row("a symbolic link", {u"file.mov"_s, u"symbolic.mov"_s}, "linked/file.mp4 and linked/symbolic.mp4");
    row("a link to where nothing is", {u"new.mov"_s, u"dangling.mov"_s},
        "linked/new.mp4 and linked/dangling.mp4");
    row("two links to where nothing is", {u"dangling.mov"_s, u"also.mov"_s},
        "linked/dangling.mp4 and linked/also.mp4");
    row("another file", {u"file.mov"_s, u"other.mov"_s, u"new.mov"_s, u"astray.mov"_s}, "");
}

void ResizePlanTest::namesThatLeadToOneFile()
{
    QFETCH(QStringList, inputs);
    QFETCH(QString, outputs);
    const QString refusal = outputs.isEmpty()
                                ? QString()
                                : inputs.join(u" and "_s) + u" would both become "_s + outputs +
                                      u", by links one file: please resize them into different folders."_s;
    QCOMPARE(planOf(command(inputs, u"linked"_s, true)).refusals.join(u'|'), refusal);
    QCOMPARE(planOf(command(inputs, u"linked"_s, false)).refusals, QStringList()); // each fails by itself
}

void ResizePlanTest::anotherInputIsNotReplaced_data()
{
    QTest::addColumn<QStringList>("inputs");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("by a symbolic link")
        << QStringList{u"a.mov"_s, u"b.mp4"_s} << u"out/a.mp4 would replace b.mp4, which is an input, too."_s;
    QTest::newRow("by a hard link") << QStringList{u"in/a film"_s, u"meet/b.mp4"_s}
                                    << u"out/a film.mp4 would replace meet/b.mp4, which is an input, too."_s;
    QTest::newRow("its own is refused when its turn comes")
        << QStringList{u"out/a.mp4"_s, u"in/z.mp4"_s} << QString();
}

void ResizePlanTest::anotherInputIsNotReplaced()
{
    QFETCH(QStringList, inputs);
    const ResizePlan plan = planOf(command(inputs, u"out"_s, true));
    QTEST(plan.refusals.join(u'|'), "refusal");
    QCOMPARE(planOf(command(inputs, u"out"_s, false)).refusals, QStringList());
}

TESSALY_TEST_MAIN(ResizePlanTest)
#include "resize_plan_test.moc"
