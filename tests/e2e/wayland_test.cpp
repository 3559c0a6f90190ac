// The program on a Wayland desktop.
#include "e2e/dragging.h"
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/processes.h"
#include "e2e/tasks.h"

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::waitLimit;

class WaylandTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void opensAndSaves();
    void opensADroppedFile();
    void opensAFileDroppedUnderAnAlert();
    void cancels();
    void leavesNoSheetUnderItsWindow_data();
    void leavesNoSheetUnderItsWindow();

private:
    // So many come to be on the desktop.
    bool hasWindows(qsizetype count);
};

void WaylandTest::init()
{
    EndToEndCase::init();
    letManageWindows(WindowManager::sway);
}

bool WaylandTest::hasWindows(qsizetype count)
{
    return QTest::qWaitFor([&] { return desktop().windowsOnSway().size() == count; }, waitLimit);
}

void WaylandTest::opensAndSaves()
{
    const QString output = file(u"small.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"plain.mp4"_s), u"640 x 360"_s));
    QVERIFY(setPercent(tessaly, 50));
    QVERIFY(chooseOutput(tessaly, output));
    QCOMPARE(waitForAlert(tessaly).value(0), u"Video Resized Successfully!"_s);
    QCOMPARE(mediaFacts(output).size, QSize(320, 180));
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.press({u"ctrl+q"_s}));
    QTRY_VERIFY(tessaly.hasEnded());
    QCOMPARE(tessaly.standardError(), QString());
}

void WaylandTest::opensADroppedFile()
{
    Program &tessaly = launch();
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = {clip(u"plain.mp4"_s)}});
    QVERIFY(hasWindows(2)); // there it has its place
    const Place poster{Role::image, u"Poster frame"_s};
    QVERIFY(drag(desktop(), source, tessaly, poster, u"copy"_s));
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 640 x 360"_s), workTime);
    QTRY_VERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
}

void WaylandTest::opensAFileDroppedUnderAnAlert()
{
    Program &tessaly = launch();
    QVERIFY(hasWindows(1));
    QVERIFY(chooseVideo(tessaly, clip(u"sound.m4a"_s)));
    QVERIFY(!waitForAlert(tessaly).isEmpty());
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = {clip(u"plain.mp4"_s)}});
    QVERIFY(hasWindows(3));
    const Place window{Role::button, u"Help"_s};
    QVERIFY(drag(desktop(), source, tessaly, window, u"copy"_s));
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 640 x 360"_s), workTime);
    QVERIFY(!tessaly.shows(Role::alert));
    QTRY_VERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
}

void WaylandTest::cancels()
{
    const QString output = file(u"cancelled.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"long.mp4"_s), u"1280 x 720"_s));
    QVERIFY(chooseOutput(tessaly, output));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(output) && suspendConverter(), workTime);
    QVERIFY(tessaly.press({u"Escape"_s}));
    QTRY_VERIFY_WITH_TIMEOUT(!tessaly.shows(Role::label, u"Resizing Video..."_s), workTime);
    QTRY_VERIFY(!QFile::exists(output));
    QVERIFY(runningMediaTools().isEmpty());
    QVERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.isEnabled(Role::button, u"Save"_s));
}

void WaylandTest::leavesNoSheetUnderItsWindow_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("title");
    QTest::addColumn<Role>("role");
    QTest::addColumn<QString>("focus");
    QTest::newRow("an alert") << u"F1"_s << u"Tessaly"_s << Role::button << u"OK"_s;
    QTest::newRow("a panel") << u"ctrl+o"_s << u"Open Video — Tessaly"_s << Role::field << u"File name:"_s;
}

// Sway puts a floating window that is clicked in front of its sheet, and gives it the keyboard.
void WaylandTest::leavesNoSheetUnderItsWindow()
{
    QFETCH(QString, key);
    QFETCH(QString, title);
    QFETCH(Role, role);
    QFETCH(QString, focus);
    Program &tessaly = launch();
    const auto windows = [this] { return desktop().windowsOnSway(); };
    QVERIFY(hasWindows(1));
    const qint64 window = windows().constFirst().id;
    const QString criteria = u"[con_id=%1]"_s.arg(window);
    // A place that the window's own size does not move any more.
    QVERIFY(desktop().ask(u"swaymsg"_s,
                          {criteria + u" floating enable, resize set 900 600, move position 100 60"_s}));
    QVERIFY(tessaly.press({key}));
    // And the program knows, so that it does not take what comes next for what was.
    const auto isSheetInFront = [&] {
        const QList<ManagedWindow> all = windows();
        const std::optional<Control> control = tessaly.find(role, focus);
        return control && control->is(State::focused) && all.size() == 2 && all.constFirst().id == window &&
               all.last().title == title && all.last().hasKeyboard;
    };
    const auto told = [&] {
        QStringList lines;
        for (const ManagedWindow &each : windows())
            lines << each.title + (each.hasKeyboard ? u", with the keyboard"_s : QString());
        return lines.join(u" below "_s);
    };
    QVERIFY2(QTest::qWaitFor(isSheetInFront, waitLimit), qPrintable(told()));

    const QPoint corner = windows().constFirst().place.topLeft() + QPoint(5, 120);
    for (const QString &step :
         {u"set %1 %2"_s.arg(corner.x()).arg(corner.y()), u"press button1"_s, u"release button1"_s})
        QVERIFY(desktop().ask(u"swaymsg"_s, u"seat - cursor "_s.append(step).split(u' ')));
    QVERIFY2(QTest::qWaitFor(isSheetInFront, waitLimit), qPrintable(told()));
    QVERIFY(tessaly.press({u"Escape"_s}));
    QVERIFY(hasWindows(1));
}

TESSALY_TEST_MAIN(WaylandTest)
#include "wayland_test.moc"
