// Real drags from a second process.
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/tasks.h"
#include "support/seen.h"

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::seen;
using tessaly::test::waitLimit;

struct Place
{
    Role role;
    QString name;
};
Q_DECLARE_METATYPE(Place)

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

private:
    bool drag(Program &source, const Program &target, const Place &place, const QString &answer);
    bool enter(const QPoint &to, const QPoint &home, Program &source, const QString &answer);
    bool restOn(const QPoint &to, const Program &target);
};

namespace {

const Place hint{Role::label, u"Drop a video here, or press Ctrl+O to open one"_s};

QStringList at(const QPoint &point)
{
    return {u"mousemove"_s, QString::number(point.x()), QString::number(point.y())};
}

// What the target under the mouse would do, as far as the source has heard.
QString answerOf(Program &source)
{
    return source.standardOutput().section("over "_L1, -1).trimmed();
}

} // namespace

// A drag as a hand makes it: it starts slowly, goes over the lower edge of the window, and is let go on the
// target.
bool DroppingTest::drag(Program &source, const Program &target, const Place &place, const QString &answer)
{
    const auto isReady = [&] {
        return source.standardOutput().contains("ready"_L1) && source.shows(Role::filler);
    };
    if (!QTest::qWaitFor(isReady, waitLimit)) return false;
    const std::optional<Control> start = source.find(Role::filler);
    const std::optional<Control> window = target.find(Role::frame);
    const std::optional<Control> goal = target.find(place.role, place.name);
    if (!start || !window || !goal) return false;
    const QPoint from = start->extents().center();
    const QPoint edge = window->extents().bottomLeft() + QPoint(40, -6);
    const QPoint to = goal->extents().center();

    desktop().xdotool(at(from) + QStringList{u"mousedown"_s, u"1"_s});
    for (int step = 1; step <= 5; ++step)
        desktop().xdotool(at(from - QPoint(4 * step, 0)));
    for (int step = 1; step <= 12; ++step)
        desktop().xdotool(at(from + (edge - from) * step / 12));
    const bool isAnswered = answer == "nothing"_L1 ? restOn(to, target) : enter(to, from, source, answer);
    desktop().xdotool({u"mouseup"_s, u"1"_s});
    return isAnswered &&
           QTest::qWaitFor([&] { return source.standardOutput().contains(u"done "_s + answer); }, waitLimit);
}

// A target answers late, so a "copy" may still be the answer to an earlier place. Each wait here is for what
// only the last movement can have brought about: over the edge a first "copy", over the source itself, which
// takes nothing, the end of it, and over the goal a second one.
bool DroppingTest::enter(const QPoint &to, const QPoint &home, Program &source, const QString &answer)
{
    const auto waitFor = [&](const QString &awaited) {
        return QTest::qWaitFor([&] { return answerOf(source) == awaited; }, waitLimit);
    };
    if (!waitFor(answer)) return false;
    desktop().xdotool(at(home));
    if (!waitFor(u"nothing"_s)) return false;
    desktop().xdotool(at(to));
    return waitFor(answer);
}

// The source does not hear of a refusal; the target gets the time for many answers.
bool DroppingTest::restOn(const QPoint &to, const Program &target)
{
    bool isAlive = true;
    for (int rests = 0; rests < 15; ++rests) {
        desktop().xdotool(at(to + QPoint(rests % 2, 0)));
        isAlive = isAlive && target.shows(Role::frame);
    }
    return isAlive;
}

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
    QVERIFY(drag(source, tessaly, hint, u"copy"_s));
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
    QVERIFY(drag(source, tessaly, hint, u"nothing"_s));
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
    QVERIFY(drag(source, tessaly, place, answer));
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
    QTest::addColumn<bool>("refusal");
    QTest::addColumn<Place>("place");
    QTest::newRow("a refusal, onto the window") << true << Place{Role::button, u"Help"_s};
    QTest::newRow("a refusal, onto the alert") << true << Place{Role::button, u"OK"_s};
    QTest::newRow("help, onto the window") << false << Place{Role::button, u"Help"_s};
}

void DroppingTest::takesAFileUnderAnAlert()
{
    QFETCH(bool, refusal);
    QFETCH(Place, place);
    Program &tessaly = launch();
    if (refusal)
        QVERIFY(chooseVideo(tessaly, clip(u"sound.m4a"_s)));
    else
        QVERIFY(tessaly.press({u"F1"_s}));
    QVERIFY(!waitForAlert(tessaly).isEmpty());
    Program &source = start(u"../tests/bin/drag_source"_s, {.arguments = {clip(u"plain.mp4"_s)}});
    QVERIFY(drag(source, tessaly, place, u"copy"_s));
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
    QVERIFY(drag(source, tessaly, hint, u"copy"_s));
    QTRY_VERIFY_WITH_TIMEOUT(tessaly.shows(Role::label, u"Input: 640 x 360"_s), workTime);
    QTRY_VERIFY2(tessaly.shows(Role::frame, name + u" — Tessaly"_s),
                 qPrintable(tessaly.find(Role::frame)->name()));
    QCOMPARE(posterFrames().size(), 11);
}

TESSALY_TEST_MAIN(DroppingTest)
#include "dropping_test.moc"
