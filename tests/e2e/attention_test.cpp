// The end of a job while a person works in another program.
#include "e2e/end_to_end_case.h"
#include "e2e/processes.h"
#include "e2e/tasks.h"

#include <csignal>

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::waitLimit;

class AttentionTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void theReportWaitsForTheWindow_data();
    void theReportWaitsForTheWindow();

private:
    // The window that a program has on the screen, when it is one.
    QString windowOf(const Program &program);
    bool activate(const Program &program);
    bool sheetHasKeyboard();
    bool isInFront(const Program &program);
    bool asksForAttention(const Program &program);
};

QString AttentionTest::windowOf(const Program &program)
{
    return desktop()
        .xdotool({u"search"_s, u"--onlyvisible"_s, u"--pid"_s, QString::number(program.id())})
        .value_or(QString());
}

bool AttentionTest::activate(const Program &program)
{
    return QTest::qWaitFor(
               [&] {
                   return desktop().xdotool({u"windowactivate"_s, windowOf(program)}).has_value();
               },
               waitLimit) &&
           QTest::qWaitFor([&] { return desktop().hasKeyboard(program.id()); }, waitLimit);
}

bool AttentionTest::sheetHasKeyboard()
{
    const auto isSheet = [this] {
        return desktop()
            .xdotool({u"getwindowfocus"_s, u"-f"_s, u"getwindowname"_s})
            .value_or(QString())
            .startsWith("Resizing Video..."_L1);
    };
    return QTest::qWaitFor(isSheet, waitLimit);
}

bool AttentionTest::isInFront(const Program &program)
{
    const QString stack =
        desktop().ask(u"xprop"_s, {u"-root"_s, u"_NET_CLIENT_LIST_STACKING"_s}).value_or(QString());
    const QString front = stack.section(u"0x"_s, -1);
    return front.toLongLong(nullptr, 16) == windowOf(program).toLongLong();
}

bool AttentionTest::asksForAttention(const Program &program)
{
    const std::optional<QString> state =
        desktop().ask(u"xprop"_s, {u"-id"_s, windowOf(program), u"_NET_WM_STATE"_s});
    return state && state->contains("_NET_WM_STATE_DEMANDS_ATTENTION"_L1);
}

void AttentionTest::theReportWaitsForTheWindow_data()
{
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QString>("message");
    QTest::newRow("done") << false << u"Video Resized Successfully!"_s;
    QTest::newRow("failed") << true << u"Video could not be resized."_s;
}

void AttentionTest::theReportWaitsForTheWindow()
{
    QFETCH(bool, fails);
    QFETCH(QString, message);
    letManageWindows(WindowManager::openbox);
    const QString output = file(u"waiting.mp4"_s);
    Program &tessaly = launch();
    QVERIFY(openVideo(tessaly, clip(u"long.mp4"_s), u"1280 x 720"_s));
    QVERIFY(setPercent(tessaly, 10)); // soon done
    QVERIFY(chooseOutput(tessaly, output));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(output) && suspendConverter(), workTime);
    QVERIFY(sheetHasKeyboard()); // later it would take the keyboard from the other program
    const auto knowsThatItHasTheKeyboard = [&] {
        const std::optional<Control> sheet = tessaly.find(Role::dialog);
        return sheet && sheet->is(State::focused);
    };
    QTRY_VERIFY(knowsThatItHasTheKeyboard());
    Program &typewriter = start(u"../tests/bin/typewriter"_s);
    QVERIFY(activate(typewriter));
    QVERIFY(typewriter.press({u"a"_s}));
    QTRY_COMPARE(typewriter.standardOutput(), u"a"_s);
    QTRY_VERIFY(!knowsThatItHasTheKeyboard()); // that may have come to its knowledge later

    if (fails)
        ::kill(static_cast<pid_t>(runningMediaTools().constFirst().id), SIGKILL);
    else
        resumeConverters();
    QVERIFY(QTest::qWaitFor([&] { return asksForAttention(tessaly); }, workTime));
    QVERIFY(isInFront(typewriter));
    QVERIFY(typewriter.press({u"space"_s, u"b"_s}));
    QTRY_COMPARE(typewriter.standardOutput(), u"a b"_s);
    QVERIFY(!tessaly.shows(Role::alert));
    QCOMPARE(QFile::exists(output), !fails);

    QVERIFY(activate(tessaly));
    QCOMPARE(waitForAlert(tessaly).value(0), message);
    QVERIFY(tessaly.waitForFocus(Role::button, u"OK"_s)); // some desktops take their time
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
}

TESSALY_TEST_MAIN(AttentionTest)
#include "attention_test.moc"
