#include "cli/progress_display.h"
#include "support/output_capture.h"
#include "support/test_case.h"

#include <cmath>
#include <cstdlib>
#include <fcntl.h>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::writtenTo;

class ProgressDisplayTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void shows_data();
    void shows();
    void theBarNamesTheTimeThatIsLeft();
    void finishing_data();
    void finishing();
    void theStyleFollowsStandardError();
};

void ProgressDisplayTest::shows_data()
{
    QTest::addColumn<ProgressStyle>("style");
    QTest::addColumn<QList<double>>("readings");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char *name, ProgressStyle style, const QList<double> &readings,
                        const QByteArray &written) { QTest::newRow(name) << style << readings << written; };
    row("bar at its start", ProgressStyle::bar, {0}, "\r[" + QByteArray(30, '.') + "] 0 %\033[K");
    row("bar below its first step", ProgressStyle::bar, {3.3}, "\r[" + QByteArray(30, '.') + "] 3 %\033[K");
    row("bar half way", ProgressStyle::bar, {50},
        "\r[" + QByteArray(15, '#') + QByteArray(15, '.') + "] 50 %\033[K");
    row("full bar", ProgressStyle::bar, {100}, "\r[" + QByteArray(30, '#') + "] 100 %\033[K");
    row("no bar beyond its end", ProgressStyle::bar, {250}, "\r[" + QByteArray(30, '#') + "] 100 %\033[K");
    row("no bar before its start", ProgressStyle::bar, {-5}, "\r[" + QByteArray(30, '.') + "] 0 %\033[K");
    row("no bar for what is no number", ProgressStyle::bar, {std::nan(""), HUGE_VAL}, {});
    row("one line for every tenth", ProgressStyle::lines, {5, 10, 19.9, 20, 75, 75}, "10 %\n20 %\n70 %\n");
    row("no line before the start", ProgressStyle::lines, {-50, 0}, {});
    row("no line beyond the end", ProgressStyle::lines, {300, 400}, "100 %\n");
    row("quiet", ProgressStyle::none, {10, 50}, {});
}

void ProgressDisplayTest::shows()
{
    QFETCH(ProgressStyle, style);
    QFETCH(QList<double>, readings);
    const QByteArray written = writtenTo(STDERR_FILENO, [&] {
        ProgressDisplay display(style);
        for (const double percent : readings)
            display.show(percent);
    });
    QTEST(written, "written");
}

void ProgressDisplayTest::theBarNamesTheTimeThatIsLeft()
{
    const QByteArray written = writtenTo(STDERR_FILENO, [] {
        ProgressDisplay display(ProgressStyle::bar);
        QElapsedTimer time;
        time.start();
        QTRY_VERIFY((display.show(20), time.hasExpired(2100))); // before, no time can be told
    });
    QVERIFY2(written.contains(" % - about ") && written.endsWith(" left\033[K"),
             written.right(200).constData());
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

void ProgressDisplayTest::theStyleFollowsStandardError()
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(terminal >= 0 && ::grantpt(terminal) == 0 && ::unlockpt(terminal) == 0);
    const int screen = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    QVERIFY(screen >= 0);
    ProgressStyle plain{};
    ProgressStyle shown{};
    ProgressStyle quiet{};
    writtenTo(STDERR_FILENO, [&] {
        plain = progressStyle(false);
        ::dup2(screen, STDERR_FILENO);
        shown = progressStyle(false);
        quiet = progressStyle(true);
    });
    ::close(screen);
    ::close(terminal);
    QCOMPARE(plain, ProgressStyle::lines);
    QCOMPARE(shown, ProgressStyle::bar);
    QCOMPARE(quiet, ProgressStyle::none);
}

TESSALY_TEST_MAIN(ProgressDisplayTest)
#include "progress_display_test.moc"
