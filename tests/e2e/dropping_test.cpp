// Real drags from a second process.
#include "e2e/dragging.h"
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/tasks.h"
#include "support/seen.h"

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;

class DroppingTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void opensTheFirstFile_data();
    void opensTheFirstFile();
    void takesNothingElse_data();
    void takesNothingElse();
    void takesAFileEverywhereAndNeverMovesIt_data();
    void takesAFileEverywhereAndNeverMovesIt();
    void takesAFileUnderAnAlert_data();
    void takesAFileUnderAnAlert();
    void showsNamesLiterally_data();
    void showsNamesLiterally();
};

namespace {

const Place hint{Role::label, u"Drop a video here, or press Ctrl+O to open one"_s};

} // namespace

void DroppingTest::opensTheFirstFile_data()
{
    QTest::addColumn<QStringList>("files");
    const QString plain = clip(u"plain.mp4"_s);
    QTest::newRow("one file") << QStringList{plain};
    QTest::newRow("three files") << QStringList{plain, clip(u"long.mp4"_s), clip(u"hd.mp4"_s)};
}

void DroppingTest::opensTheFirstFile()
{
    QFETCH(QStringList, files);
    Program &tessaly = launch();
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = files});
    QVERIFY(drag(desktop(), source, tessaly, hint, u"copy"_s));
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 640 x 360"_s), workTime);
    seen(u"source told: %1; opened: %2; %3 frames"_s
             .arg(answerOf(source).section(u'\n', -1), tessaly.find(Role::frame)->name())
             .arg(posterFrames().size()));
    QVERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
    QVERIFY(!tessaly.shows(Role::alert));
    QCOMPARE(posterFrames().size(), 11);
}

void DroppingTest::takesNothingElse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("a folder") << QStringList{QStringLiteral(TESSALY_MEDIA_FOLDER)};
    QTest::newRow("a file that is gone") << QStringList{clip(u"gone.mp4"_s)};
    QTest::newRow("text") << QStringList{u"--text"_s, clip(u"plain.mp4"_s)};
}

void DroppingTest::takesNothingElse()
{
    QFETCH(QStringList, arguments);
    Program &tessaly = launch();
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = arguments});
    QVERIFY(drag(desktop(), source, tessaly, hint, u"nothing"_s));
    // The window answers to what comes next, and to nothing before. The press on the source took the
    // keyboard.
    QVERIFY(tessaly.click(Role::image, u"Poster frame"_s));
    QVERIFY(tessaly.press({u"F1"_s}));
    QCOMPARE(waitForAlert(tessaly).value(0), u"Questions?"_s);
    const bool nothingOpen = tessaly.shows(Role::label, u"Input: 0 x 0"_s);
    seen(u"source told: %1; %2 frames, %3"_s.arg(answerOf(source).section(u'\n', -1))
             .arg(posterFrames().size())
             .arg(nothingOpen ? u"Input: 0 x 0"_s : u"something opened"_s));
    QVERIFY(nothingOpen);
    QVERIFY(posterFrames().isEmpty());
}

void DroppingTest::takesAFileEverywhereAndNeverMovesIt_data()
{
    QTest::addColumn<Place>("place");
    QTest::addColumn<QString>("offer");
    QTest::addColumn<QString>("answer");
    const std::pair<const char *, Place> places[] = {
        {"the poster", {Role::image, u"plain.mp4"_s}},
        {"the width field", {Role::field, u"Output width"_s}},
        {"the height field", {Role::field, u"Output height"_s}},
        {"the size slider", {Role::slider, u"Size in percent of the input"_s}},
        {"the tool bar", {Role::button, u"Help"_s}}};
    for (const auto &[name, place] : places) {
        const bool every = name == places[0].first || name == places[1].first; // the rest goes the same way
        for (const QString &offer : every ? QStringList{u"copy"_s, u"copy,move"_s, u"move"_s, u"link"_s}
                                          : QStringList{u"copy,move"_s})
            QTest::addRow("%s, offered: %s", name, qPrintable(offer))
                << place << offer << (offer.startsWith("copy"_L1) ? u"copy"_s : u"nothing"_s);
    }
}

// The source deletes what it is told was moved. The fields are those of an open video, ready to take text.
void DroppingTest::takesAFileEverywhereAndNeverMovesIt()
{
    QFETCH(Place, place);
    QFETCH(QString, offer);
    QFETCH(QString, answer);
    const QString path = copyOfClip(u"hd.mp4"_s, u"offered.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = {u"--offer="_s + offer, path}});
    QVERIFY(drag(desktop(), source, tessaly, place, answer));
    const bool isTaken = answer == "copy"_L1;
    const QString label = isTaken ? u"Input: 1920 x 1080"_s : u"Input: 640 x 360"_s;
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, label) && tessaly.isEnabled(Role::button, u"Save"_s),
                             workTime);
    seen(u"source told: %1; file %2"_s.arg(answerOf(source).section(u'\n', -1),
                                           QFile::exists(path) ? u"still there"_s : u"DELETED"_s));
    QCOMPARE(checksum(path), checksum(clip(u"hd.mp4"_s)));
    QCOMPARE(tessaly.fieldText(u"Output width"_s), isTaken ? u"1920"_s : u"640"_s);
    QCOMPARE(tessaly.fieldText(u"Output height"_s), isTaken ? u"1080"_s : u"360"_s);
}

void DroppingTest::takesAFileUnderAnAlert_data()
{
    QTest::addColumn<WindowManager>("manager");
    QTest::addColumn<bool>("refusal");
    QTest::addColumn<Place>("place");
    const Place window{Role::button, u"Help"_s};
    const Place alert{Role::button, u"OK"_s};
    QTest::newRow("a refusal, onto the window") << WindowManager::none << true << window;
    QTest::newRow("a refusal, onto the alert") << WindowManager::none << true << alert;
    QTest::newRow("help, onto the window") << WindowManager::none << false << window;
    QTest::newRow("managed: a refusal, onto the window") << WindowManager::openbox << true << window;
    QTest::newRow("managed: a refusal, onto the alert") << WindowManager::openbox << true << alert;
}

void DroppingTest::takesAFileUnderAnAlert()
{
    QFETCH(WindowManager, manager);
    QFETCH(bool, refusal);
    QFETCH(Place, place);
    letManageWindows(manager);
    Program &tessaly = launch();
    if (refusal)
        QVERIFY(chooseVideo(tessaly, clip(u"sound.m4a"_s)));
    else
        QVERIFY(tessaly.press({u"F1"_s}));
    QVERIFY(!waitForAlert(tessaly).isEmpty());
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = {clip(u"plain.mp4"_s)}});
    QVERIFY(drag(desktop(), source, tessaly, place, u"copy"_s));
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 640 x 360"_s), workTime);
    seen(u"source told: %1; %2"_s.arg(answerOf(source).section(u'\n', -1), tessaly.shows(Role::alert)
                                                                               ? u"the alert is still up"_s
                                                                               : u"the alert is gone"_s));
    QVERIFY(!tessaly.shows(Role::alert));
    QTRY_VERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
}

void DroppingTest::showsNamesLiterally_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("markup") << u"<b>bold & \"quoted\"</b>.mp4"_s.replace(u'/', u'\\');
    QTest::newRow("line break") << u"first\nsecond's.mp4"_s;
    QTest::newRow("mark of a changed document") << u"mark [*] %d.mp4"_s;
    QTest::newRow("leading dash, not ASCII") << u"-i \u00e9\u4e2d\U0001f600.mp4"_s;
}

void DroppingTest::showsNamesLiterally()
{
    QFETCH(QString, name);
    const QString path = copyOfClip(u"plain.mp4"_s, name);
    Program &tessaly = launch();
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = {path}});
    QVERIFY(drag(desktop(), source, tessaly, hint, u"copy"_s));
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 640 x 360"_s), workTime);
    QTRY_VERIFY2(tessaly.shows(Role::frame, name + u" — Tessaly"_s),
                 qPrintable(tessaly.find(Role::frame)->name()));
    QCOMPARE(posterFrames().size(), 11);
}

TESSALY_TEST_MAIN(DroppingTest)
#include "dropping_test.moc"
