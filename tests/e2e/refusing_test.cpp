// Targets that cannot be written, or must not be.
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/processes.h"
#include "e2e/small_disk.h"
#include "e2e/tasks.h"
#include "support/seen.h"

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;

class RefusingTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void neverWritesOverTheInput_data();
    void neverWritesOverTheInput();
    void tellsThatTheDiskIsFull();
    void opensWithoutStillsWhenTheTemporaryFolderIsFull_data();
    void opensWithoutStillsWhenTheTemporaryFolderIsFull();
};

void RefusingTest::neverWritesOverTheInput_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("the input itself") << u"itself"_s;
    QTest::newRow("a hard link to it") << u"hard"_s;
    QTest::newRow("a symbolic link to it") << u"symbolic"_s;
}

void RefusingTest::neverWritesOverTheInput()
{
    QFETCH(QString, kind);
    const QString input = copyOfClip(u"plain.mp4"_s, u"input.mp4"_s);
    const QString link = file(u"link.mp4"_s);
    if (kind == "hard"_L1) QCOMPARE(::link(qPrintable(input), qPrintable(link)), 0);
    if (kind == "symbolic"_L1) QVERIFY(QFile::link(input, link));

    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, input, u"640 x 360"_s));
    QVERIFY(setPercent(tessaly, 50));
    QVERIFY(chooseOutput(tessaly, kind == "itself"_L1 ? input : link));
    // The panel asks about the file that exists.
    QVERIFY(tessaly.click(Role::button, u"Replace"_s));
    const auto refusal = u"Input file name is same as the output file name!"_s;
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, refusal), workTime);
    QCOMPARE(tessaly.labelsIn(Role::alert),
             QStringList({refusal, u"Please specify a different file to save."_s}));
    QVERIFY(tessaly.click(Role::button, u"OK"_s));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(runningMediaTools().isEmpty());
    QCOMPARE(checksum(input), checksum(clip(u"plain.mp4"_s)));
    QCOMPARE(tessaly.standardOutput(), QString());
}

void RefusingTest::tellsThatTheDiskIsFull()
{
    const QString input = clip(u"long.mp4"_s);
    const QByteArray before = checksum(input);
    const SmallDisk disk(file(u"small"_s));
    Program &tessaly = launch({.beforeStart = disk.mounting()});
    QVERIFY(openVideo(tessaly, input, u"1280 x 720"_s));
    QVERIFY(chooseOutput(tessaly, disk.output()));
    if (!disk.isMounted()) QVERIFY(tessaly.click(Role::button, u"Replace"_s));
    const QStringList labels = waitForAlert(tessaly);
    QCOMPARE(labels.value(0), u"Video could not be resized."_s);
    seen(u"%1; input %2"_s.arg(labels.mid(0, 2).join(u' '),
                               checksum(input) == before ? u"unchanged"_s : u"CHANGED"_s));
    QVERIFY2(labels.value(1).contains("full"_L1), qPrintable(labels.join(u'\n')));
    if (disk.isMounted()) QVERIFY(disk.isEmptyFor(tessaly.id()));
    QVERIFY(tessaly.click(Role::button, u"OK"_s));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(runningMediaTools().isEmpty());
    QCOMPARE(checksum(input), before);
}

void RefusingTest::opensWithoutStillsWhenTheTemporaryFolderIsFull_data()
{
    QTest::addColumn<int>("room"); // bytes
    QTest::newRow("from the beginning") << 0;
    QTest::newRow("while the stills are made") << 8192;
}

void RefusingTest::opensWithoutStillsWhenTheTemporaryFolderIsFull()
{
    QFETCH(int, room);
    const SmallDisk disk(file(u"small"_s));
    QProcessEnvironment environment;
    environment.insert(u"TMPDIR"_s, file(u"small"_s));
    Program &tessaly = launch({.environment = environment, .beforeStart = disk.mountingWith(room)});
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    const bool noPicture = tessaly.shows(Role::label, u"No preview"_s);
    seen(u"%1: Input: 640 x 360, save %2, %3, %4"_s.arg(
        disk.isMounted() ? u"tmpfs"_s : u"size limit"_s,
        tessaly.isEnabled(Role::button, u"Save"_s) ? u"enabled"_s : u"disabled"_s,
        noPicture ? u"no still shown"_s : u"a still shown"_s,
        tessaly.shows(Role::alert) ? tessaly.labelsIn(Role::alert).join(u' ') : u"no alert"_s));
    QVERIFY(noPicture);
    QVERIFY(!tessaly.shows(Role::alert));
    QVERIFY(!tessaly.shows(Role::label, u"Analyzing Video..."_s));
    QVERIFY(runningMediaTools().isEmpty());
}

TESSALY_TEST_MAIN(RefusingTest)
#include "refusing_test.moc"
