// A prober and a converter that misbehave: what is said, and that the window lives on.
#include "app/app_harness.h"
#include "platform/printing.h"
#include "support/memory.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QTimer>

#include <sys/stat.h>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const auto sniffer = u"sniffer"_s;
const auto creator = u"creator"_s;
const auto unsupported = u"Seems to be an unsupported file."_s;

// The sanitizer holds freed memory back.
#if defined(__SANITIZE_ADDRESS__)
constexpr qint64 allowedGrowth = 600; // megabytes
#else
constexpr qint64 allowedGrowth = 48;
#endif

// How the event loop fares meanwhile: its turns, its longest pause, and the most memory.
class Pulse
{
public:
    Pulse() : before(residentMegabytes()), most(before)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            longestPause = qMax(longestPause, m_clock.restart());
            most = qMax(most, residentMegabytes());
            ++beats;
        });
        m_clock.start();
        m_timer.start(10);
    }
    const qint64 before; // megabytes
    qint64 most;         // megabytes
    qint64 longestPause = 0;
    int beats = 0;

private:
    QElapsedTimer m_clock;
    QTimer m_timer;
};

// The values that the bar of the progress sheet takes. The nth is answered by a file "seen n", for which the
// converter waits.
class BarWatch
{
public:
    explicit BarWatch(AppHarness &app)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, &app] {
            const double value = app.delegate.progressBar->doubleValue();
            if (value == m_values.last()) return;
            app.makeFile(nameOf(m_values.size()));
            m_values += value;
        });
        m_timer.start(5);
    }
    QList<double> values() const { return m_values.mid(1); }

    static QStringList untilSeen(const AppHarness &app, qsizetype n)
    {
        return {u"wait-for-file"_s, app.folder.filePath(nameOf(n))};
    }

private:
    static QString nameOf(qsizetype n) { return u"seen %1"_s.arg(n); }

    QTimer m_timer;
    QList<double> m_values{0}; // it begins empty
};

} // namespace

class TestBrokenTools : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    QString output() const { return app->folder.filePath(u"out.mp4"_s); }

    void openInLoop(const QString &path)
    {
        AppHarness::inEventLoop([&] { app->delegate.openVideo(QUrl::fromLocalFile(path)); });
    }
    void open()
    {
        app->letProberReport(640, 360, u"10"_s);
        app->drop(app->makeFile(u"clip.mov"_s));
        app->tools.forgetCalls(creator);
    }
    // The alert, then an answer to the next command.
    void checkRefusedAndAlive()
    {
        QVERIFY2(app->alertText().startsWith(unsupported), qPrintable(app->alertText()));
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 0 x 0"_s);
        QVERIFY(!app->delegate.saveBTN->isEnabled());
        app->answerAlert();
        app->window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&app->window));
        QTest::keyClick(&app->window, Qt::Key_F1);
        QTRY_VERIFY(app->alertText().startsWith("Questions?"_L1));
    }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

    void aPipeThatNobodyWritesIsGivenUp()
    {
        const QString pipe = app->folder.filePath(u"pipe.mp4"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QCOMPARE(app->delegate.probeLimit, 30s);
        app->delegate.probeLimit = 600ms;
        app->useRealProber();
        const Pulse pulse;
        QElapsedTimer clock;
        clock.start();
        openInLoop(pipe);
        seen(u"given up after %1 ms, %2 turns of the event loop meanwhile; %3"_s.arg(clock.elapsed())
                 .arg(pulse.beats)
                 .arg(app->told()));
        QVERIFY(clock.elapsed() >= 600);
        QVERIFY(pulse.beats > 10);
        QVERIFY2(app->told().contains("did not end within 0.6 seconds"_L1), qPrintable(app->told()));
        checkRefusedAndAlive();
    }

    void aProberThatPrintsNoReport_data()
    {
        QTest::addColumn<QList<QStringList>>("steps");
        QTest::newRow("rubbish") << QList<QStringList>{{u"rubbish"_s}};
        QTest::newRow("invalid UTF-8") << QList<QStringList>{{u"invalid-utf8"_s}};
        QTest::newRow("an opening brace") << QList<QStringList>{{u"open-brace"_s}};
        QTest::newRow("50 MB") << QList<QStringList>{{u"flood-stdout"_s, u"50000000"_s}};
        QTest::newRow("never ends") << QList<QStringList>{{u"hang"_s}};
    }
    void aProberThatPrintsNoReport()
    {
        QFETCH(QList<QStringList>, steps);
        app->delegate.probeLimit = steps.first() == QStringList(u"hang"_s) ? 300ms : 30s;
        app->tools.setSteps(sniffer, steps);
        const Pulse pulse;
        openInLoop(app->makeFile(u"clip.mp4"_s));
        seen(u"%1; longest pause of the window %2 ms, %3 probers left"_s.arg(app->told())
                 .arg(pulse.longestPause)
                 .arg(app->tools.runningProcesses(sniffer).size()));
        QVERIFY(app->tools.runningProcesses(sniffer).isEmpty());
        checkRefusedAndAlive();
    }

    void aProberThatCannotRun_data()
    {
        QTest::addColumn<bool>("missing");
        QTest::newRow("missing") << true;
        QTest::newRow("not executable") << false;
    }
    void aProberThatCannotRun()
    {
        QFETCH(bool, missing);
        if (missing)
            app->tools.remove(sniffer);
        else
            app->tools.replaceByPlainFile(sniffer);
        openInLoop(app->makeFile(u"clip.mp4"_s));
        seen(app->told());
        QVERIFY(app->told().contains(missing ? u"missing"_s : u"not marked as executable"_s));
        checkRefusedAndAlive();
    }

    void aConverterThatIsMissing_data()
    {
        QTest::addColumn<bool>("atTheOpen");
        QTest::newRow("at an open") << true;
        QTest::newRow("at a resize") << false;
    }
    void aConverterThatIsMissing()
    {
        QFETCH(bool, atTheOpen);
        if (atTheOpen) app->tools.remove(creator);
        open();
        if (!atTheOpen) {
            app->tools.remove(creator);
            app->saveTo(output());
            QTRY_VERIFY(app->alert());
        }
        const bool noPicture = app->delegate.posterView->image().isNull();
        seen(u"%1, %2, %3"_s.arg(app->delegate.inputLBL->text(), noPicture ? u"no still"_s : u"a still"_s,
                                 app->alert() ? app->told() : u"no alert"_s));
        QVERIFY(noPicture);
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 640 x 360"_s);
        QVERIFY(app->delegate.saveBTN->isEnabled());
        QCOMPARE(app->alertText(), atTheOpen ? QString()
                                             : u"Video could not be resized.\n"
                                               "ffmpeg is missing."_s);
    }

    void aConverterThatEndsWellWithoutAVideo_data()
    {
        QTest::addColumn<QList<QStringList>>("steps");
        QTest::addColumn<QString>("sentence");
        const auto sound = QStringLiteral(TESSALY_MEDIA_FOLDER "/sound.m4a");
        QTest::newRow("no file") << QList<QStringList>{} << u"ffmpeg ended without writing the new video."_s;
        QTest::newRow("an empty file")
            << QList<QStringList>{{u"write-output"_s, QString()}} << u"The new file holds no video."_s;
        QTest::newRow("sound only") << QList<QStringList>{{u"copy-to-output"_s, sound}}
                                    << u"The new file holds no video."_s;
    }
    void aConverterThatEndsWellWithoutAVideo()
    {
        QFETCH(QList<QStringList>, steps);
        QFETCH(QString, sentence);
        open();
        app->useRealProber();
        app->tools.setSteps(creator, steps);
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        seen(app->told() + (QFile::exists(output()) ? u"; output there"_s : u"; output gone"_s));
        QCOMPARE(app->alertText(), u"Video could not be resized.\n"_s + sentence);
        QVERIFY(!QFile::exists(output()));
    }

    void aFloodOnStandardError()
    {
        open();
        app->tools.setSteps(creator, {{u"complain"_s, u"time=00:00:02.50 \r"_s},
                                      BarWatch::untilSeen(*app, 1),
                                      {u"flood-stderr"_s, u"1000000000"_s},
                                      {u"wait-until-read"_s},
                                      {u"complain"_s, u"\rtime=00:00:05.00 \r"_s},
                                      BarWatch::untilSeen(*app, 2),
                                      {u"write-output"_s, u"video"_s}});
        const BarWatch bar(*app);
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->delegate.progressWindow->isVisible());
        const Pulse pulse;
        QTRY_VERIFY_WITH_TIMEOUT(app->alert(), 90000);
        seen(u"1 GB: %1 MB before, %2 MB at most; longest pause of the window %3 ms; bar went %4; %5"_s
                 .arg(pulse.before)
                 .arg(pulse.most)
                 .arg(pulse.longestPause)
                 .arg(listed(bar.values()), app->told()));
        QVERIFY2(pulse.most - pulse.before < allowedGrowth, qPrintable(QString::number(pulse.most)));
        QTRY_COMPARE(bar.values(), (QList<double>{25, 50, 0}));
        QVERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
    }

    // What the bar goes through between 25 and 75 percent, of 10 seconds.
    void eachChunkIsJudgedAlone_data()
    {
        QTest::addColumn<QList<QByteArray>>("chunks");
        QTest::addColumn<QList<double>>("values");
        const auto row = [](const char *name, const QList<QByteArray> &chunks, const QList<double> &values) {
            QTest::newRow(name) << chunks << values;
        };
        row("a time stamp split in two", {"frame=2 time=00:0", "0:05.00 bitrate=1\r"}, {});
        row("a header's Duration in front of a time stamp",
            {"  Duration: 00:00:08.00, start: 0.0\nframe=2 time=00:00:05.00 bitrate=1\r"}, {80});
        row("time=N/A", {"frame=2 time=N/A bitrate=N/A\r"}, {});
        row("negative", {"frame=2 time=-00:00:04.00 bitrate=1\r"}, {40});
        row("138 hours", {"frame=2 time=138:00:00.00 bitrate=1\r"}, {38 * 3600 * 10.0});
        row("invalid UTF-8", {"\xFF\xFE frame=2 time=00:00:05.00 bitrate=1\r"}, {});
    }
    void eachChunkIsJudgedAlone()
    {
        QFETCH(QList<QByteArray>, chunks);
        QFETCH(QList<double>, values);
        open();
        QList<QStringList> steps{{u"complain"_s, u"time=00:00:02.50 \r"_s}, BarWatch::untilSeen(*app, 1)};
        for (const QByteArray &chunk : chunks) {
            const QString path = app->makeFile(u"chunk %1"_s.arg(steps.size()));
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(chunk) == chunk.size());
            steps += {{u"complain-file"_s, path}, {u"wait-until-read"_s}};
        }
        if (!values.isEmpty()) steps += BarWatch::untilSeen(*app, 2);
        steps += {{u"complain"_s, u"time=00:00:07.50 \r"_s},
                  BarWatch::untilSeen(*app, 2 + values.size()),
                  {u"write-output"_s, u"video"_s}};
        app->tools.setSteps(creator, steps);
        const BarWatch bar(*app);
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->alert());
        seen(u"bar: %1"_s.arg(listed(bar.values())));
        const QList<double> expected = QList<double>(1, 25.0) + values + QList<double>{75, 0};
        QTRY_COMPARE(bar.values(), expected);
    }

private:
    static QString listed(const QList<double> &values)
    {
        QStringList texts;
        for (const double value : values)
            texts += QString::number(value);
        return texts.join(u' ');
    }
};

TESSALY_GUI_TEST_MAIN(TestBrokenTools)
#include "broken_tools_test.moc"
