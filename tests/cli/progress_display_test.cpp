#include "cli/progress_display.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::writtenTo;

class ProgressDisplayTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void shows_data();
    void shows();
    void theBarTells_data();
    void theBarTells();
    void oneLineStaysOneLine_data();
    void oneLineStaysOneLine();
    void finishing_data();
    void finishing();
    void thePlaceComesFirst_data();
    void thePlaceComesFirst();
    void objects_data();
    void objects();
    void theStyleFollowsTheTerminal_data();
    void theStyleFollowsTheTerminal();
};

// A reading (percent, or seconds of the film) at a time, or none.
struct Step
{
    int second = 0;
    std::optional<double> percent;
    std::optional<double> converted;
};

QByteArray writtenIn(ProgressStyle style, const QList<Step> &steps, const ProgressSubject &subject = {},
                     int channel = STDERR_FILENO)
{
    return writtenTo(channel, [&] {
        std::chrono::seconds now(0);
        ProgressDisplay display(style, subject, [&now] { return now; });
        for (const Step &step : steps) {
            now = std::chrono::seconds(step.second);
            if (step.percent) display.show(*step.percent);
            if (step.converted) display.showConverted(*step.converted);
            if (!step.percent && !step.converted) display.tick();
        }
    });
}

// All of them in the first second.
QList<Step> percents(const QList<double> &readings)
{
    QList<Step> steps;
    for (const double percent : readings)
        steps += Step{0, percent, {}};
    return steps;
}

// A percent a second.
QList<Step> evenly(int seconds)
{
    QList<Step> steps;
    for (int second = 1; second <= seconds; ++second)
        steps += Step{second, second, {}};
    return steps;
}

QByteArray bar(int filled, int length = 30)
{
    return "\r[" + QByteArray(filled, '#') + QByteArray(length - filled, '.') + "] ";
}

// The last of several lines that are written over each other.
QByteArray lastLine(const QByteArray &written)
{
    return written.mid(written.lastIndexOf('\r'));
}

// A terminal of this many columns in the place of standard error; returns what the run wrote.
QByteArray shownOnTerminal(unsigned short columns, const std::function<void()> &run)
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0 || ::grantpt(terminal) != 0 || ::unlockpt(terminal) != 0) return "no terminal";
    const int screen = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    const winsize size{24, columns, 0, 0};
    ::ioctl(terminal, TIOCSWINSZ, &size);
    const QByteArray written = writtenTo(STDERR_FILENO, [&] {
        ::dup2(screen, STDERR_FILENO);
        run();
    });
    ::close(screen);
    QByteArray shown;
    char piece[4096];
    ssize_t count = 0;
    while ((count = ::read(terminal, piece, sizeof piece)) > 0) // until nobody has it open
        shown.append(piece, count);
    ::close(terminal);
    return written + shown;
}

void ProgressDisplayTest::shows_data()
{
    QTest::addColumn<ProgressStyle>("style");
    QTest::addColumn<QList<Step>>("steps");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char *name, ProgressStyle style, const QList<Step> &steps,
                        const QByteArray &written) { QTest::newRow(name) << style << steps << written; };
    const QByteArray end = "\033[K";
    row("bar at its start", ProgressStyle::bar, percents({0}), bar(0) + "0 %" + end);
    row("bar below its first step", ProgressStyle::bar, percents({3.3}), bar(0) + "3 %" + end);
    row("bar half way", ProgressStyle::bar, percents({50, 50}),
        bar(0) + "0 %" + end + bar(15) + "50 %" + end);
    row("full bar", ProgressStyle::bar, percents({104, 104}), bar(0) + "0 %" + end + bar(30) + "100 %" + end);
    row("no bar beyond its end", ProgressStyle::bar, percents({250, 250}),
        (bar(0) + "0 %" + end).repeated(2));
    row("no bar before its start", ProgressStyle::bar, percents({-5}), bar(0) + "0 %" + end);
    row("no bar for what is no number", ProgressStyle::bar, percents({std::nan(""), HUGE_VAL}), {});
    row("no bar for a second in which nothing came", ProgressStyle::bar, {{1, {}, {}}}, {});
    row("one line for every tenth", ProgressStyle::lines, percents({5, 10, 19.9, 20, 75, 75}),
        "10 %\n20 %\n70 %\n");
    row("a header's time stamp does not silence it", ProgressStyle::lines, percents({100, 5, 12, 21}),
        "10 %\n20 %\n");
    row("no line before the start", ProgressStyle::lines, percents({-50, 0}), {});
    row("no line beyond the end", ProgressStyle::lines, percents({300, 400}), {});
    row("one line for every stall", ProgressStyle::lines,
        evenly(15) + QList<Step>{{24, {}, {}}, {25, {}, {}}, {26, {}, {}}, {27, 16, {}}, {37, {}, {}}},
        "10 %\n15 % - no progress for 10 s\n16 % - no progress for 10 s\n");
    row("one line for every minute", ProgressStyle::lines,
        {{1, {}, 50}, {2, {}, 59.9}, {3, {}, 61}, {4, {}, 90}, {5, {}, 130}, {15, {}, {}}},
        "00:01:01 converted\n00:02:10 converted\n00:02:10 converted - no progress for 10 s\n");
    row("quiet", ProgressStyle::none, evenly(20) + QList<Step>{{40, {}, {}}}, {});
}

void ProgressDisplayTest::shows()
{
    QFETCH(ProgressStyle, style);
    QFETCH(QList<Step>, steps);
    QTEST(writtenIn(style, steps), "written");
}

void ProgressDisplayTest::theBarTells_data()
{
    QTest::addColumn<QList<Step>>("steps");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("the time that is left") << evenly(20) << bar(6) + "20 % - about 1 minute left\033[K";
    QTest::newRow("a stall") << evenly(20) + QList<Step>{{32, {}, {}}}
                             << bar(6) + "20 % - no progress for 12 s\033[K";
    QTest::newRow("a stall before the start")
        << QList<Step>{{12, {}, {}}} << bar(0) + "no progress for 12 s\033[K";
    QTest::newRow("the end") << evenly(100) << bar(30) + "100 % - finishing\033[K";
    QTest::newRow("where its number stands, which changes once a second")
        << evenly(20) + QList<Step>{{20, 24, {}}} << bar(6) + "20 % - about 1 minute left\033[K";
    QTest::newRow("what is converted, without a duration")
        << QList<Step>{{1, {}, 30}, {2, {}, 60}, {3, {}, 90}} << QByteArray("\r00:01:30 converted\033[K");
}

void ProgressDisplayTest::theBarTells()
{
    QFETCH(QList<Step>, steps);
    QTEST(lastLine(writtenIn(ProgressStyle::bar, steps)), "line");
}

// The last column stays free: a full line may wrap.
void ProgressDisplayTest::oneLineStaysOneLine_data()
{
    QTest::addColumn<unsigned short>("columns");
    QTest::addColumn<QByteArray>("line");
    const auto row = [](unsigned short columns, const QByteArray &line) {
        QTest::addRow("%d columns", columns) << columns << line;
    };
    row(0, bar(6) + "20 % - about 1 minute left"); // not known
    row(60, bar(6) + "20 % - about 1 minute left");
    row(59, bar(5, 29) + "20 % - about 1 minute left");
    row(40, bar(2, 10) + "20 % - about 1 minute left");
    row(39, "\r20 % - about 1 minute left");
    row(27, "\r20 % - about 1 minute left");
    row(26, bar(3, 18) + "20 %");
    row(20, bar(2, 12) + "20 %");
    row(17, "\r20 %");
    row(3, "\r20");
    row(1, "\r");
}

void ProgressDisplayTest::oneLineStaysOneLine()
{
    QFETCH(unsigned short, columns);
    QFETCH(QByteArray, line);
    const QByteArray shown = shownOnTerminal(columns, [] {
        std::chrono::seconds now(8);
        ProgressDisplay display(ProgressStyle::bar, {}, [&now] { return now; });
        display.show(10);
        now *= 2;
        display.show(20);
    });
    QCOMPARE(lastLine(shown), line + "\033[K");
}

void ProgressDisplayTest::finishing_data()
{
    QTest::addColumn<ProgressStyle>("style");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("takes the bar away") << ProgressStyle::bar << QByteArray("\r\033[K");
    QTest::newRow("leaves lines") << ProgressStyle::lines << QByteArray();
    QTest::newRow("is quiet") << ProgressStyle::none << QByteArray();
}

void ProgressDisplayTest::finishing()
{
    QFETCH(ProgressStyle, style);
    QTEST(writtenTo(STDERR_FILENO, [&] { ProgressDisplay(style).finish(); }), "written");
}

void ProgressDisplayTest::thePlaceComesFirst_data()
{
    QTest::addColumn<ProgressStyle>("style");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("lines") << ProgressStyle::lines << QByteArray("2 of 12: 10 %\n2 of 12: 20 %\n");
    QTest::newRow("bar") << ProgressStyle::bar
                         << QByteArray("\r2 of 12: [###...........................] 10 %\033[K"
                                       "\r2 of 12: [######........................] 20 %\033[K");
}

void ProgressDisplayTest::thePlaceComesFirst()
{
    QFETCH(ProgressStyle, style);
    QTEST(writtenIn(style, percents({10, 20}), {.place = u"2 of 12: "_s, .input = u"/a"_s}), "written");
}

void ProgressDisplayTest::objects_data()
{
    QTest::addColumn<QList<Step>>("steps");
    QTest::addColumn<QByteArray>("written");
    const QByteArray begin = R"({"input":"/a \"b\"","percent":)";
    const auto percent = [&begin](const char *value) {
        return begin + value + QByteArray(",\"convertedSeconds\":null}\n");
    };
    const auto converted = [&begin](const char *value) {
        return begin + QByteArray("null,\"convertedSeconds\":") + value + "}\n";
    };
    QTest::newRow("each whole percent once")
        << percents({1.5, 1.9, 2, 2, 9}) << percent("1") + percent("2") + percent("9");
    QTest::newRow("no way back") << percents({9, 5}) << percent("9");
    QTest::newRow("what is no number") << percents({std::nan(""), 3}) << percent("3");
    QTest::newRow("each second of the film once")
        << QList<Step>{{0, {}, 1.5}, {1, {}, 1.9}, {2, {}, 12}} << converted("1") + converted("12");
}

void ProgressDisplayTest::objects()
{
    QFETCH(QList<Step>, steps);
    const ProgressSubject subject{.place = u"2 of 12: "_s, .input = u"/a \"b\""_s};
    QTEST(writtenIn(ProgressStyle::objects, steps, subject, STDOUT_FILENO), "written");
    QCOMPARE(writtenIn(ProgressStyle::objects, steps, subject), QByteArray());
}

void ProgressDisplayTest::theStyleFollowsTheTerminal_data()
{
    QTest::addColumn<QByteArray>("terminal");
    QTest::addColumn<ProgressStyle>("style");
    QTest::newRow("one that writes over lines") << QByteArray("xterm") << ProgressStyle::bar;
    QTest::newRow("a dumb one") << QByteArray("dumb") << ProgressStyle::lines;
    QTest::newRow("one without a name") << QByteArray("") << ProgressStyle::lines;
}

void ProgressDisplayTest::theStyleFollowsTheTerminal()
{
    QFETCH(QByteArray, terminal);
    const QByteArray before = qgetenv("TERM");
    qputenv("TERM", terminal);
    ProgressStyle plain{};
    ProgressStyle shown{};
    ProgressStyle quiet{};
    writtenTo(STDERR_FILENO, [&] { plain = progressStyle(false, false); });
    shownOnTerminal(80, [&] {
        shown = progressStyle(false, false);
        quiet = progressStyle(false, true);
    });
    qputenv("TERM", before);
    QCOMPARE(plain, ProgressStyle::lines);
    QTEST(shown, "style");
    QCOMPARE(quiet, ProgressStyle::none);
    QCOMPARE(progressStyle(true, false), ProgressStyle::objects);
    QCOMPARE(progressStyle(true, true), ProgressStyle::objects);
}

TESSALY_TEST_MAIN(ProgressDisplayTest)
#include "progress_display_test.moc"
