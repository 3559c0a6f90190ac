// While the window is at work or asks for a file, nothing else is begun: not at once, and not afterwards.
#include "app/app_harness.h"
#include "platform/busy_input.h"
#include "platform/notification_center.h"
#include "platform/printing.h"
#include "support/seen.h"
#include "support/test_case.h"
#include "ui/drag.h"

#include <QTimer>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

namespace {

enum class Work { probe, stills, jobBegins, conversion, probeOfTheResult, openPanel, savePanel };
enum class Attempt { drop, open, save };

} // namespace

class TestBusy : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;
    int heard = 0; // drops, by whoever listens to them
    QString answer;

    QString output() const { return app->folder.filePath(u"out.mp4"_s); }
    QString input() const { return app->folder.filePath(u"clip.mp4"_s); }
    qsizetype proberStarts() const { return app->tools.calls(u"sniffer"_s).size(); }
    qsizetype proberRuns() const { return app->tools.runningProcesses(u"sniffer"_s).size(); }
    int panels() const
    {
        int visible = 0;
        for (const QFileDialog *dialog : app->window.findChildren<QFileDialog *>())
            visible += dialog->isVisible();
        return visible;
    }

    // The work that is disturbed waits for this, so that it is under way until then.
    QStringList waiting() const { return {u"wait-for-file"_s, app->folder.filePath(u"go ahead"_s)}; }

    void letProberWait()
    {
        const QString report =
            uR"({"streams": [{"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "25/1",
                 "width": 640, "height": 360}], "format": {"duration": "12"}})"_s;
        app->tools.setSteps(u"sniffer"_s, {waiting(), {u"print"_s, report}});
    }

    // Begins the work; whether it is under way is another matter.
    void begin(Work work)
    {
        const QStringList writing{u"write-output"_s, u"video"_s};
        const auto convert = [this](const QList<QStringList> &steps) {
            app->tools.setSteps(u"creator"_s, steps);
            app->delegate.saveResponse(1, output());
        };
        switch (work) {
        case Work::probe:
            letProberWait();
            app->delegate.openVideo(QUrl::fromLocalFile(input()));
            break;
        case Work::stills:
            app->tools.setSteps(u"creator"_s, {waiting()});
            app->delegate.openVideo(QUrl::fromLocalFile(input()));
            break;
        case Work::jobBegins:
        case Work::conversion:
            convert({waiting(), writing});
            break;
        case Work::probeOfTheResult:
            letProberWait();
            convert({writing});
            break;
        case Work::openPanel:
            app->delegate.openToolBarBTNClicked(nullptr);
            break;
        case Work::savePanel:
            app->delegate.saveBTNClicked(nullptr);
            break;
        }
    }

    bool isUnderWay(Work work) const
    {
        const bool sheet = app->delegate.progressWindow->isVisible();
        switch (work) {
        case Work::probe:
        case Work::probeOfTheResult:
            return BusyInput::isBusy() && !sheet && proberRuns() > 0;
        case Work::stills:
            return BusyInput::isBusy() && sheet;
        case Work::jobBegins:
            return !sheet;
        case Work::conversion:
            return sheet && !BusyInput::isBusy();
        default:
            return panels() == 1;
        }
    }

    void attempt(Attempt what, const QString &other)
    {
        if (what == Attempt::drop) {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(other)});
            Drag drag(*app->delegate.posterView, data);
            const QList<bool> accepted{drag.enter().accepted, drag.move().accepted, drag.drop().accepted};
            answer = accepted.contains(true) ? u"drop accepted"_s : u"drop refused"_s;
            return;
        }
        const int before = panels();
        QTest::keyClick(&app->window, what == Attempt::open ? Qt::Key_O : Qt::Key_S, Qt::ControlModifier);
        if (what == Attempt::open)
            app->delegate.openMenuBTNClicked(nullptr);
        else
            app->delegate.saveMenuBTNClicked(nullptr);
        answer = u"%1 panels came up"_s.arg(panels() - before);
    }

    // The work goes on to its own end.
    void finish(Work work)
    {
        switch (work) {
        case Work::probe:
        case Work::stills:
            QTRY_COMPARE(app->delegate.inputLBL->text(), u"Input: 640 x 360"_s);
            QVERIFY(app->delegate.saveBTN->isEnabled());
            break;
        case Work::openPanel:
        case Work::savePanel:
            QTest::keyClick(app->panel(), Qt::Key_Escape);
            QTRY_VERIFY(!app->panel());
            break;
        default:
            QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
            QCOMPARE(app->tools.calls(u"creator"_s).size(), 1);
            QVERIFY(QFile::exists(output()));
        }
        QTRY_VERIFY(!app->delegate.isBusy());
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>();
        heard = 0;
    }
    void cleanup() { app.reset(); }

    void nothingElseIsBegun_data()
    {
        QTest::addColumn<Work>("work");
        QTest::addColumn<Attempt>("what");
        const std::pair<const char *, Work> works[]{{"a probe", Work::probe},
                                                    {"the stills", Work::stills},
                                                    {"a job that begins", Work::jobBegins},
                                                    {"a conversion", Work::conversion},
                                                    {"the probe of the result", Work::probeOfTheResult},
                                                    {"the open panel", Work::openPanel},
                                                    {"the save panel", Work::savePanel}};
        for (const auto &[name, work] : works) {
            QTest::addRow("drop during %s", name) << work << Attempt::drop;
            QTest::addRow("open during %s", name) << work << Attempt::open;
            QTest::addRow("save during %s", name) << work << Attempt::save;
        }
    }
    void nothingElseIsBegun()
    {
        QFETCH(Work, work);
        QFETCH(Attempt, what);
        app->openSize(640, 360);
        for (const QString &tool : {u"sniffer"_s, u"creator"_s})
            app->tools.forgetCalls(tool);
        const QString other = app->makeFile(u"other.mp4"_s);
        QObject listener;
        NotificationCenter::defaultCenter().addObserver(&listener, u"FileAddedByDragAnadDrop"_s,
                                                        [this](const auto &) { ++heard; });
        bool attempted = false;
        const auto attemptWhenUnderWay = [&] {
            if (attempted || !isUnderWay(work)) return;
            attempted = true;
            attempt(what, other);
            app->makeFile(u"go ahead"_s);
        };
        QTimer watch;
        connect(&watch, &QTimer::timeout, this, attemptWhenUnderWay);
        watch.start(5);
        AppHarness::inEventLoop([&] {
            begin(work);
            if (work == Work::jobBegins) attemptWhenUnderWay();
            while (!attempted)
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        });
        finish(work);

        const QString file = *app->delegate.globalFP->fileFullPath;
        seen(u"%1, %2 heard; afterwards open: %3, %4 panels, prober started %5 times; %6"_s.arg(answer)
                 .arg(heard)
                 .arg(QFileInfo(file).fileName())
                 .arg(panels())
                 .arg(proberStarts())
                 .arg(app->alert() ? app->alertText().section(u'\n', 0, 0) : u"no alert"_s));
        QCOMPARE(answer, what == Attempt::drop ? u"drop refused"_s : u"0 panels came up"_s);
        QCOMPARE(heard, 0);
        QCOMPARE(file, input());
        QCOMPARE(panels(), 0);
        const bool isOpening = work == Work::probe || work == Work::stills;
        const bool isPanel = work == Work::openPanel || work == Work::savePanel;
        QCOMPARE(proberStarts(), isPanel ? 0 : isOpening ? 1 : 2); // of a result it makes two
    }
};

TESSALY_GUI_TEST_MAIN(TestBusy)
#include "busy_test.moc"
