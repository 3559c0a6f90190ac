// The stills of the open video, and the window while they are made.
#include "app/app_harness.h"
#include "platform/printing.h"
#include "platform/temporary_directory.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QElapsedTimer>
#include <QPaintEvent>
#include <QTimer>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TestPosterFrames : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    // No still is made before letFrameBeMade() is called with its number.
    void letEveryFrameWait()
    {
        app->letConverterMakeStills();
        app->tools.setSteps(u"creator"_s, {{u"wait-for-turn"_s, app->folder.filePath(u"turn"_s)},
                                           {u"copy-to-output"_s, app->folder.filePath(u"still.jpg"_s)}});
    }
    void letFrameBeMade(qsizetype number) { app->makeFile(u"turn%1"_s.arg(number)); }
    void letEveryFrameBeMade()
    {
        for (int number = 1; number <= 11; ++number)
            letFrameBeMade(number);
    }

    // As a killed converter or a full disk leaves it; its path.
    QString halfOfAStill() const
    {
        app->letConverterMakeStills();
        QString half = app->folder.filePath(u"half.jpg"_s);
        QFile::copy(app->folder.filePath(u"still.jpg"_s), half);
        QFile::resize(half, QFileInfo(half).size() - 20);
        return half;
    }

    static QString frame(int number) { return NSTemporaryDirectory() + u"/Images/out%1.jpg"_s.arg(number); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

    void theConverterRunsElevenTimesWithExactlyTheseArguments()
    {
        app->letConverterMakeStills();
        app->letProberReport(640, 360, u"30"_s);
        const QString path = app->makeFile(u"clip.mp4"_s);
        app->drop(path);
        const QList<QStringList> calls = app->tools.calls(u"creator"_s);
        QCOMPARE(calls.size(), 11);
        const QStringList positions{u"2.5"_s,  u"5.0"_s,  u"7.5"_s,  u"10.0"_s, u"12.5"_s, u"15.0"_s,
                                    u"17.5"_s, u"20.0"_s, u"22.5"_s, u"25.0"_s, u"27.5"_s};
        for (int number = 1; number <= 11; ++number) {
            const QStringList expected{u"-v"_s, u"quiet"_s,   u"-ss"_s,       positions[number - 1],
                                       u"-i"_s, path,         u"-frames:v"_s, u"1"_s,
                                       u"-y"_s, frame(number)};
            QCOMPARE(calls.at(number - 1), expected);
            QVERIFY(QFile::exists(frame(number)));
        }
    }

    void aDurationOfZeroAsksForTheFirstFrame()
    {
        app->letProberReport(640, 360, u"0"_s);
        app->drop(app->makeFile(u"clip.mp4"_s));
        for (const QStringList &call : app->tools.calls(u"creator"_s))
            QCOMPARE(call.at(3), u"0.0"_s);
    }

    void aFrameThatTakesTooLongIsMissing()
    {
        QCOMPARE(app->delegate.stillLimit, 30s);
        const QString half = halfOfAStill();
        app->tools.setSteps(u"creator"_s, {{u"copy-to-output"_s, half}, {u"hang"_s}});
        // On a busy machine a converter may be given up before it has begun: then all get longer.
        for (auto limit = 100ms; limit <= 30s; limit *= 4) {
            app->tools.forgetCalls(u"creator"_s);
            app->delegate.stillLimit = limit;
            app->openSize(640, 360);
            if (app->tools.calls(u"creator"_s).size() == 11 && QFile::exists(frame(11))) break;
        }
        QCOMPARE(app->tools.calls(u"creator"_s).size(), 11);
        QCOMPARE(app->tools.runningProcesses(u"creator"_s).size(), 0);
        QVERIFY(app->delegate.posterView->image().isNull());
        QVERIFY(app->find<QLabel>("dropHintLBL")->isVisible());
        QVERIFY(app->delegate.saveBTN->isEnabled());
    }

    void halfOfAFrameIsNone()
    {
        app->tools.setSteps(u"creator"_s, {{u"copy-to-output"_s, halfOfAStill()}, {u"exit"_s, u"1"_s}});
        app->openSize(640, 360);
        QVERIFY(QFile::exists(frame(11)));
        QVERIFY(app->delegate.posterView->image().isNull());
    }

    void aFrameThatIsNoJpegIsShownAsItIs()
    {
        QImage still(64, 36, QImage::Format_RGB32);
        still.fill(Qt::blue);
        const QString png = app->folder.filePath(u"still.png"_s);
        QVERIFY(still.save(png));
        app->tools.setBehaviour(u"creator"_s, u"copy-to-output"_s, {png});
        app->openSize(640, 360);
        QCOMPARE(app->delegate.posterView->image().pixelColor(30, 20), QColor(Qt::blue));
    }

    void framesOfTheVideoBeforeAreGone()
    {
        app->letConverterMakeStills();
        app->openSize(640, 360);
        QVERIFY(QFile::exists(frame(11)));
        app->tools.setBehaviour(u"creator"_s, u"exit"_s, {u"1"_s});
        app->openSize(320, 180);
        QVERIFY(!QFile::exists(frame(11)));
        QVERIFY(app->delegate.posterView->image().isNull());
        QVERIFY(app->find<QLabel>("dropHintLBL")->isVisible());
        QCOMPARE(app->find<QLabel>("dropHintLBL")->text(), u"No preview"_s);
        QVERIFY(!app->find<QWidget>("emptyOpenBTN")->isVisible());
        QVERIFY(app->delegate.saveBTN->isEnabled()); // a video without stills can be resized all the same
    }

    void theSliderShowsOthersWhereAFrameIsMissing()
    {
        app->letConverterMakeStills();
        app->openSize(640, 360);
        QVERIFY(QFile::remove(frame(6)));
        app->delegate.posterPositionSliderChanged(nullptr);
        QCOMPARE(app->find<QLabel>("dropHintLBL")->text(),
                 u"No preview here. The slider shows other frames."_s);
        QTest::keyClick(app->delegate.posterPositionSlider.get(), Qt::Key_Right);
        QVERIFY(!app->find<QLabel>("dropHintLBL")->isVisible());
    }

    void aFolderOfFramesThatBecameALinkIsNotFollowed()
    {
        QDir(app->folder.path()).mkdir(u"mine"_s);
        const QString mine = app->makeFile(u"mine/letter.txt"_s);
        const QString frames = NSTemporaryDirectory() + u"Images"_s;
        QVERIFY(QFile::link(app->folder.filePath(u"mine"_s), frames));
        app->letConverterMakeStills();
        app->openSize(640, 360);
        const QStringList left = QDir(app->folder.filePath(u"mine"_s)).entryList(QDir::Files);
        seen(u"left in the folder of the link: %1; frames made: %2"_s.arg(left.join(u' '))
                 .arg(QDir(frames).entryList(QDir::Files).size()));
        QCOMPARE(left, QStringList(u"letter.txt"_s));
        QVERIFY(!QFileInfo(frames).isSymLink());
        QVERIFY(QFile::exists(frame(11)));
        QVERIFY(QFile::exists(mine));
    }

    void aFrameThatCannotBeMadeIsMissingAndTheOthersCome()
    {
        app->letConverterMakeStills();
        app->tools.setSteps(u"creator"_s, {{u"fail-at-call"_s, u"6"_s},
                                           {u"copy-to-output"_s, app->folder.filePath(u"still.jpg"_s)}});
        app->openSize(640, 360);
        QCOMPARE(app->tools.calls(u"creator"_s).size(), 11);
        QVERIFY(!QFile::exists(frame(6)));
        QVERIFY(app->delegate.posterView->image().isNull()); // the sixth is shown first
        app->delegate.posterPositionSlider->setFocus();
        QTest::keyClick(app->delegate.posterPositionSlider.get(), Qt::Key_Right);
        QCOMPARE(app->delegate.posterPositionSlider->intValue(), 7);
        QVERIFY(!app->delegate.posterView->image().isNull());
    }

    void withoutAConverterTheVideoOpensWithoutFrames()
    {
        app->tools.remove(u"creator"_s);
        app->openSize(640, 360);
        QVERIFY(app->delegate.saveBTN->isEnabled());
        QVERIFY(!app->delegate.progressWindow->isVisible());
        QVERIFY(app->delegate.posterView->image().isNull());
    }

    void theSliderFlipsBetweenTheFrames()
    {
        QImage still(32, 18, QImage::Format_RGB32);
        app->letConverterMakeStills();
        app->openSize(640, 360);
        for (int number = 1; number <= 11; ++number) {
            still.fill(QColor(number * 20, 0, 0));
            QVERIFY(still.save(frame(number), nullptr, 100));
        }
        app->delegate.posterPositionSlider->setFocus();
        QTest::keyClick(app->delegate.posterPositionSlider.get(), Qt::Key_Home);
        QCOMPARE(app->delegate.posterPositionSlider->intValue(), 1);
        const auto red = [this] { return app->delegate.posterView->image().pixelColor(5, 5).red(); };
        QVERIFY(std::abs(red() - 20) < 4);
        QTest::keyClick(app->delegate.posterPositionSlider.get(), Qt::Key_End);
        QVERIFY(std::abs(red() - 220) < 4);
    }

    void aNumberWithoutAFileEmptiesTheView_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("before the first") << 0;
        QTest::newRow("behind the last") << 12;
    }
    void aNumberWithoutAFileEmptiesTheView()
    {
        QFETCH(int, number);
        app->letConverterMakeStills();
        app->openSize(640, 360);
        QVERIFY(!app->delegate.posterView->image().isNull());
        app->delegate.showPosterFrame(number);
        QVERIFY(app->delegate.posterView->image().isNull());
    }

    void theSheetFollowsTheWork()
    {
        letEveryFrameWait();
        QStringList seen;
        QTimer observer;
        connect(&observer, &QTimer::timeout, this, [&] {
            if (!app->delegate.progressWindow->isVisible()) return;
            if (!seen.contains(app->delegate.progressTitle->text()))
                seen += app->delegate.progressTitle->text();
            const QString percent = QString::number(app->delegate.progressBar->doubleValue());
            if (seen.last() != percent) seen += percent;
            QVERIFY(!app->delegate.progressCancel->isVisible());
            letFrameBeMade(app->tools.calls(u"creator"_s).size()); // the one that is waiting
        });
        observer.start(5);
        AppHarness::inEventLoop([this] { app->openSize(640, 360); });
        QCOMPARE(seen.first(), u"Analyzing Video..."_s);
        for (int percent = 0; percent < 100; percent += 10)
            QVERIFY2(seen.contains(QString::number(percent)), qPrintable(seen.join(u' ')));
        QVERIFY(!app->delegate.progressWindow->isVisible());
        QCOMPARE(app->delegate.progressBar->doubleValue(), 0.0);
        QVERIFY(!app->delegate.progressCancel->isHidden());
    }

    void whatThePersonDoesMeanwhileIsThrownAway()
    {
        letEveryFrameWait();
        const QString other = app->makeFile(u"other.mp4"_s);
        bool done = false;
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            if (done || !app->delegate.progressWindow->isVisible()) return;
            done = true;
            QTest::keyClick(&app->window, Qt::Key_F1);
            QTest::keyClick(&app->window, Qt::Key_O, Qt::ControlModifier);
            QTest::keyClick(app->delegate.progressWindow.get(), Qt::Key_Escape);
            app->drop(other);
            QVERIFY(app->delegate.progressWindow->isVisible());
            letEveryFrameBeMade();
        });
        watch.start(5);
        AppHarness::inEventLoop([this] { app->openSize(640, 360); });
        QVERIFY(done);
        QCoreApplication::processEvents();
        QVERIFY(!app->alert() && !app->panel());
        QCOMPARE(*app->delegate.globalFP->fileFullPath, app->folder.filePath(u"clip.mp4"_s));
        QCOMPARE(app->tools.calls(u"sniffer"_s).size(), 1);
    }

    void inputWhileTheProbeRunsIsThrownAway()
    {
        const QString goAhead = app->folder.filePath(u"go ahead"_s);
        app->tools.setSteps(u"sniffer"_s, {{u"wait-for-file"_s, goAhead}, {u"open-brace"_s}});
        setPrintTarget(PrintTarget::nowhere);
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, [&] {
            if (QFile::exists(goAhead) || app->tools.runningProcesses(u"sniffer"_s).isEmpty()) return;
            QTest::keyClick(&app->window, Qt::Key_F1);
            app->drop(app->makeFile(u"other.mp4"_s));
            app->makeFile(u"go ahead"_s);
        });
        watch.start(5);
        AppHarness::inEventLoop([this] { app->drop(app->makeFile(u"clip.mp4"_s)); });
        setPrintTarget(PrintTarget::standardOutput);
        QCOMPARE(app->tools.calls(u"sniffer"_s).size(), 1);
        QVERIFY(app->alertText().startsWith("Seems to be"_L1));
    }

    void theWindowRepaintsMeanwhile()
    {
        letEveryFrameWait();
        int paints = 0;
        struct PaintCounter : QObject
        {
            int &count;
            explicit PaintCounter(int &counted) : count(counted) {}
            bool eventFilter(QObject *, QEvent *event) override
            {
                if (event->type() == QEvent::Paint) ++count;
                return false;
            }
        } counter(paints);
        app->delegate.posterView->installEventFilter(&counter);
        QTimer nudge;
        QElapsedTimer clock;
        clock.start();
        connect(&nudge, &QTimer::timeout, this, [&] {
            app->delegate.posterView->update();
            if (paints > 5 || clock.hasExpired(waitLimit)) letEveryFrameBeMade();
        });
        nudge.start(5);
        AppHarness::inEventLoop([this] { app->openSize(640, 360); });
        QVERIFY2(paints > 5, qPrintable(QString::number(paints)));
    }

    void aLargeStillIsReadSmaller()
    {
        app->letConverterMakeStills();
        app->openSize(640, 360);
        QImage still(5000, 100, QImage::Format_RGB32);
        still.fill(Qt::blue);
        QVERIFY(still.save(frame(6)));
        app->delegate.showPosterFrame(6);
        QCOMPARE(app->delegate.posterView->image().size(), QSize(3840, 76));
    }
};

TESSALY_GUI_TEST_MAIN(TestPosterFrames)
#include "poster_frames_test.moc"
