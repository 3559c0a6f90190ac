// Opening a video by drop and by panel.
#include "app/app_harness.h"
#include "platform/busy_input.h"
#include "platform/printing.h"
#include "support/seen.h"
#include "support/test_case.h"

#include <QClipboard>
#include <QMessageBox>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

namespace {

const auto vobAlert = u"Tessaly cannot open .VOB files.\nQuestions? : support@tessaly.example"_s;
const auto unsupportedAlert = u"Seems to be an unsupported file.\nDoes the video play in a video player?\n"
                              "Please try opening some other file or contact : support@tessaly.example"_s;

QByteArray reportWith(const QByteArray &stream, const QByteArray &more = {})
{
    return R"({"streams": [{"codec_type": "video", "avg_frame_rate": "25/1", )" + stream +
           R"(}], "format": {"duration": "12"})" + more + "}";
}

// Whether input was still thrown away when the control came to life or an alert came up.
class FirstLook : public QObject
{
public:
    explicit FirstLook(const QWidget *control) : m_control(control) { qApp->installEventFilter(this); }
    bool eventFilter(QObject *object, QEvent *event) override
    {
        const bool comesToLife =
            object == m_control && event->type() == QEvent::EnabledChange && m_control->isEnabled();
        if (comesToLife || (event->type() == QEvent::Show && qobject_cast<QMessageBox *>(object)))
            wasBusy = BusyInput::isBusy();
        return false;
    }

    std::optional<bool> wasBusy;

private:
    const QWidget *m_control;
};

} // namespace

class TestOpenVideo : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    QFileDialog *panel() const { return app->panel(); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

    void whatTakesItsTimeIsFollowed_data()
    {
        QTest::addColumn<QString>("slowTool");
        QTest::addColumn<QString>("told");
        QTest::addColumn<bool>("busy");
        QTest::newRow("the prober") << u"sniffer"_s << u"slow film.mp4"_s << true;
        QTest::newRow("the first still") << u"creator"_s << u"Still 1 of 11"_s << false;
    }
    void whatTakesItsTimeIsFollowed()
    {
        QFETCH(QString, slowTool);
        QFETCH(QString, told);
        QFETCH(bool, busy);
        const QString goAhead = app->folder.filePath(u"go ahead"_s);
        app->letProberReport(640, 360);
        if (busy)
            app->tools.setSteps(slowTool, {{u"wait-for-file"_s, goAhead}, {u"rubbish"_s}});
        else
            app->tools.setSteps(slowTool, {{u"wait-for-file"_s, goAhead}});
        const auto &sheet = app->delegate.progressWindow;
        QString title;
        bool wasBusy = !busy;
        QTimer look;
        connect(&look, &QTimer::timeout, this, [&] {
            if (!sheet->isVisible() || app->delegate.progressDetail->text() != told) return;
            title = app->delegate.progressTitle->text();
            wasBusy = app->delegate.progressBar->isBusy();
            app->makeFile(u"go ahead"_s); // otherwise it would take for ever
        });
        look.start(5);
        const QString path = app->makeFile(u"slow film.mp4"_s);
        AppHarness::inEventLoop([&] { app->delegate.openVideo(QUrl::fromLocalFile(path)); });
        QCOMPARE(title, u"Analyzing Video..."_s);
        QCOMPARE(wasBusy, busy);
        QVERIFY(!sheet->isVisible());
        QVERIFY(app->delegate.progressDetail->text().isEmpty());
        QCOMPARE(app->alert() != nullptr, busy); // what the slow prober said was no report
    }

    void whatComesUpAnswersAtOnce_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::newRow("the controls of an accepted file") << R"("width": 640, "height": 360)"_ba;
        QTest::newRow("the alert of a refused one") << R"("codec_name": "png")"_ba;
    }
    void whatComesUpAnswersAtOnce()
    {
        QFETCH(QByteArray, stream);
        app->letProberReport(reportWith(stream));
        const FirstLook look(app->delegate.widthTF.get());
        app->drop(app->makeFile(u"clip.mp4"_s));
        QCOMPARE(look.wasBusy, false);
    }

    void theSizeSliderHasTheKeyboardAfterwards()
    {
        QCOMPARE(app->window.focusWidget()->objectName(), u"emptyOpenBTN"_s);
        app->openSize(640, 360);
        QCOMPARE(app->window.focusWidget(), app->delegate.sizeSLDR.get());
        app->delegate.heightTF->setFocus();
        app->openSize(1280, 720);
        QCOMPARE(app->window.focusWidget(), app->delegate.sizeSLDR.get());
        QCOMPARE(app->delegate.sliderTitleLBL->text(), u"Scale:"_s);
    }

    void theReasonOfARefusalCanBeRead()
    {
        app->letProberReport(R"({"error": {"code": -2, "string": "No such file or directory"}})");
        app->drop(app->makeFile(u"gone.mp4"_s));
        const auto *box = qobject_cast<const QMessageBox *>(app->alert());
        QVERIFY(box);
        QCOMPARE(box->detailedText(), u"No such file or directory"_s);
        QVERIFY2(app->told().endsWith("| No such file or directory"_L1), qPrintable(app->told()));
        QCOMPARE(app->alertButtons(), QStringList{u"OK"_s});
    }

    void anAcceptedFileEnablesTheWindow()
    {
        app->letConverterMakeStills();
        app->letProberReport(1919, 1080);
        app->delegate.sizeSLDR->setDoubleValue(31);
        app->drop(app->makeFile(u"odd clip.mp4"_s));
        const AppDelegate &delegate = app->delegate;
        QCOMPARE(delegate.inputLBL->text(), u"Input: 1919 x 1080"_s);
        QVERIFY(delegate.proportionalCBX->isEnabled() && delegate.proportionalCBX->isChecked());
        QVERIFY(delegate.sizeSLDR->isEnabled());
        QCOMPARE(delegate.sizeSLDR->doubleValue(), 100.0);
        QVERIFY(delegate.widthTF->isEnabled() && delegate.heightTF->isEnabled());
        QCOMPARE(delegate.widthTF->text(), u"1919"_s);
        QCOMPARE(delegate.heightTF->text(), u"1080"_s);
        QCOMPARE(delegate.sliderTitleLBL->text(), u"Scale:"_s);
        QCOMPARE(delegate.currentFocussedTF, u"None"_s);
        QVERIFY(delegate.posterPositionSliderTBI->isEnabled() && delegate.posterPositionSlider->isEnabled());
        QCOMPARE(delegate.posterPositionSlider->intValue(), 6);
        QVERIFY(delegate.saveBTN->isEnabled());
        QCOMPARE(delegate.originalWidth, 1919);
        QCOMPARE(delegate.originalHeight, 1080);
        QCOMPARE(delegate.originalRatio, 1919.0 / 1080.0);
        QVERIFY(!app->find<QLabel>("dropHintLBL")->isVisible());
        QVERIFY(!delegate.progressWindow->isVisible());
        QCOMPARE(app->window.windowTitle(), u"odd clip.mp4 — Tessaly"_s);
        QCOMPARE(app->window.windowFilePath(), app->folder.filePath(u"odd clip.mp4"_s));
    }

    void theStatusLineReadsFromTheLeftInEveryLayout_data()
    {
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::addColumn<QString>("status");
        QTest::newRow("left to right") << Qt::LeftToRight << u"12 s - VP9 - 25 frames/s - Zero KB"_s;
        QTest::newRow("right to left") << Qt::RightToLeft << u"\u200e12 s - VP9 - 25 frames/s - Zero KB"_s;
    }
    void theStatusLineReadsFromTheLeftInEveryLayout()
    {
        QFETCH(Qt::LayoutDirection, direction);
        app->window.setLayoutDirection(direction);
        app->openSize(640, 360);
        QTEST(app->find<QStatusBar>("statusBar")->currentMessage(), "status");
    }

    void openingAgainPutsEverythingBack()
    {
        app->openSize(640, 360);
        QTest::mouseClick(app->delegate.proportionalCBX.get(), Qt::LeftButton, {}, QPoint(8, 8));
        app->delegate.posterPositionSlider->setIntegerValue(9);
        const auto first = app->delegate.globalFP;
        app->openSize(320, 180);
        QVERIFY(app->delegate.globalFP != first);
        QVERIFY(app->delegate.proportionalCBX->isChecked());
        QCOMPARE(app->delegate.sliderTitleLBL->text(), u"Scale:"_s);
        QCOMPARE(app->delegate.currentFocussedTF, u"None"_s);
        QCOMPARE(app->delegate.posterPositionSlider->intValue(), 6);
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 320 x 180"_s);
    }

    void dvdFilesAreRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("refused");
        QTest::newRow("capitals") << u"clip.VOB"_s << true;
        QTest::newRow("small") << u"clip.vob"_s << true;
        QTest::newRow("mixed") << u"clip.Vob"_s << true;
        QTest::newRow("only in the middle") << u"clip.vob.mp4"_s << false;
        QTest::newRow("no extension") << u"vob"_s << false;
    }
    void dvdFilesAreRefused()
    {
        QFETCH(QString, name);
        QFETCH(bool, refused);
        app->letProberReport(640, 360);
        app->drop(app->makeFile(name));
        QCOMPARE(app->alert() != nullptr, refused);
        QCOMPARE(app->delegate.saveBTN->isEnabled(), !refused);
        if (refused) {
            QCOMPARE(app->alertText(), vobAlert);
            QCOMPARE(app->alertButtons(), QStringList{u"OK"_s});
        }
        QVERIFY(app->delegate.globalFP->isValidMediaFile); // probed before any check, and kept
    }

    void whatIsNoPlayableVideoIsRefused_data()
    {
        QTest::addColumn<QByteArray>("report");
        QTest::addColumn<bool>("accepted");
        const QByteArray size = R"("width": 640, "height": 360)";
        QTest::newRow("a video") << reportWith(R"("codec_name": "vp9", )" + size) << true;
        QTest::newRow("no report") << QByteArray() << false;
        QTest::newRow("rubbish") << QByteArray("{") << false;
        QTest::newRow("no streams") << QByteArray(R"({"streams": [], "format": {}})") << false;
        QTest::newRow("an error beside a video")
            << reportWith(R"("codec_name": "vp9", )" + size, R"(, "error": {"code": -1})") << false;
        QTest::newRow("encrypted") << reportWith(size) << false;
        QTest::newRow("a still picture only")
            << QByteArray(
                   R"({"streams": [{"codec_type": "video", "codec_name": "png", "avg_frame_rate": "0/0",
                            "width": 64, "height": 64}]})")
            << false;
        QTest::newRow("sound only") << QByteArray(
                                           R"({"streams": [{"codec_type": "audio", "codec_name": "aac"}]})")
                                    << false;
        QTest::newRow("width 0") << reportWith(R"("codec_name": "vp9", "width": 0, "height": 360)") << false;
        QTest::newRow("height 0") << reportWith(R"("codec_name": "vp9", "width": 640, "height": 0)") << true;
        QTest::newRow("h264 without a width")
            << reportWith(R"("codec_name": "h264", "height": 360)") << false;
        QTest::newRow("h264 without a height")
            << reportWith(R"("codec_name": "h264", "width": 640)") << false;
    }
    void whatIsNoPlayableVideoIsRefused()
    {
        QFETCH(QByteArray, report);
        QFETCH(bool, accepted);
        setPrintTarget(PrintTarget::nowhere);
        app->openSize(320, 180);
        app->letProberReport(report);
        app->drop(app->makeFile(u"other.mp4"_s));
        setPrintTarget(PrintTarget::standardOutput);
        QCOMPARE(app->delegate.saveBTN->isEnabled(), accepted);
        QCOMPARE(app->alert() == nullptr, accepted);
        if (accepted) return;
        QCOMPARE(app->alertText(), unsupportedAlert);
        QCOMPARE(app->alertButtons(), QStringList{u"OK"_s});
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 0 x 0"_s);
        QVERIFY(!app->delegate.sizeSLDR->isEnabled() && !app->delegate.widthTF->isEnabled());
        QCOMPARE(*app->delegate.globalFP->fileFullPath, app->folder.filePath(u"other.mp4"_s));
        QCOMPARE(app->window.windowTitle(), u"Tessaly"_s);
    }

    void aRefusedFileLeavesThePictureOfTheOneBefore()
    {
        app->letConverterMakeStills();
        app->openSize(320, 180);
        const QImage before = app->delegate.posterView->image();
        QVERIFY(!before.isNull());
        app->drop(app->makeFile(u"clip.vob"_s));
        QCOMPARE(app->delegate.posterView->image(), before);
        const auto painted = [this] {
            const QImage picture = app->delegate.posterView->grab().toImage();
            return picture.pixelColor(picture.rect().center());
        };
        QVERIFY2(painted().red() < 160, qPrintable(painted().name())); // dimmed
        app->answerAlert();
        app->openSize(320, 180);
        QVERIFY2(painted().red() > 240, qPrintable(painted().name()));
    }

    void alertsAreAnsweredByReturnAndByEscape()
    {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
            app->drop(app->makeFile(u"clip.vob"_s));
            QVERIFY(app->alert());
            QTest::keyClick(app->alert(), key);
            QTRY_VERIFY(!app->alert());
        }
    }

    // With a real drag: e2e_dropping.
    void aDropUnderAlertsAnswersThem()
    {
        app->drop(app->makeFile(u"clip.vob"_s));
        app->delegate.showHelp();
        QVERIFY(app->alert());
        app->openSize(640, 360);
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 640 x 360"_s);
        QTRY_VERIFY(!app->alert());
    }

    void ofThreeFilesTheFirstIsOpenedAndSaidSo()
    {
        app->letProberReport(640, 360);
        QList<QUrl> urls;
        for (const QString &name : {u"a.mp4"_s, u"b.mp4"_s, u"c.mp4"_s})
            urls << QUrl::fromLocalFile(app->makeFile(name));
        const auto *status = app->find<QStatusBar>("statusBar");
        AppHarness::sendDrop(app->delegate.posterView.get(), urls);
        QCOMPARE(app->window.windowTitle(), u"a.mp4 — Tessaly"_s);
        QVERIFY2(status->currentMessage().endsWith(" - opened the first of 3"_L1),
                 qPrintable(status->currentMessage()));
        AppHarness::sendDrop(app->delegate.posterView.get(), urls.mid(1, 1));
        QVERIFY2(!status->currentMessage().contains("opened"_L1), qPrintable(status->currentMessage()));
    }

    void aCopiedFileIsOpenedByItsKey()
    {
        app->letProberReport(640, 360);
        auto *copied = new QMimeData;
        copied->setUrls({QUrl::fromLocalFile(app->makeFile(u"copied.mp4"_s))});
        QGuiApplication::clipboard()->setMimeData(copied);
        QTest::keyClick(&app->window, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(app->window.windowTitle(), u"copied.mp4 — Tessaly"_s);
        QGuiApplication::clipboard()->setText(u"no file"_s);
        QTest::keyClick(&app->window, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(app->window.windowTitle(), u"copied.mp4 — Tessaly"_s);
    }

    void menuAndToolBarShowTheSamePanel()
    {
        app->letProberReport(640, 360);
        const QString path = app->makeFile(u"clip.mov"_s);
        for (const auto entry : {&AppDelegate::openMenuBTNClicked, &AppDelegate::openToolBarBTNClicked}) {
            app->delegate.resetInterface();
            (app->delegate.*entry)(nullptr);
            QTRY_VERIFY(panel());
            QCOMPARE(panel()->fileMode(), QFileDialog::ExistingFile);
            app->choose(path);
            QTRY_COMPARE(app->delegate.inputLBL->text(), u"Input: 640 x 360"_s);
            QVERIFY(!panel());
        }
    }

    void thePanelComesByTheShortcutAndCancelKeepsTheState()
    {
        app->openSize(640, 360);
        QTest::keyClick(&app->window, Qt::Key_O, Qt::ControlModifier);
        QTRY_VERIFY(panel());
        QTest::keyClick(panel(), Qt::Key_Escape);
        QTRY_VERIFY(!panel());
        QCOMPARE(app->delegate.inputLBL->text(), u"Input: 640 x 360"_s);
        QVERIFY(app->delegate.saveBTN->isEnabled());
    }

    void thePanelOpensWhereTheLastVideoCameFrom()
    {
        QDir(app->folder.path()).mkdir(u"videos"_s);
        app->letProberReport(640, 360);
        app->drop(app->makeFile(u"videos/clip.mp4"_s));
        app->delegate.openMenuBTNClicked(nullptr);
        QTRY_VERIFY(panel());
        QCOMPARE(panel()->directory().absolutePath(), app->folder.filePath(u"videos"_s));
        QTest::keyClick(panel(), Qt::Key_Escape);
        QTRY_VERIFY(!panel());
    }

    void aDropWhileAPanelIsUpIsRefused()
    {
        app->letProberReport(640, 360);
        app->delegate.openMenuBTNClicked(nullptr);
        QTRY_VERIFY(panel());
        app->drop(app->makeFile(u"clip.mp4"_s));
        QVERIFY(!app->delegate.globalFP);
        QTest::keyClick(panel(), Qt::Key_Escape);
        QTRY_VERIFY(!panel());
        QVERIFY(!app->delegate.globalFP); // nor is it delivered later
    }

    void aNameThatIsNotUtf8IsRefusedClearly()
    {
        const QByteArray name = QFile::encodeName(app->folder.path()) + "/caf\xe9.mp4";
        std::FILE *file = std::fopen(name.constData(), "w");
        QVERIFY(file && std::fclose(file) == 0);
        // Qt cannot name it, so that it could not remove the folder.
        const auto remove = qScopeGuard([&name] { std::remove(name.constData()); });
        QMimeData data;
        data.setData(u"text/uri-list"_s, "file://" + name.toPercentEncoding("/") + "\r\n");
        AppHarness::sendDrop(app->delegate.posterView.get(), data);
        QTRY_VERIFY(app->alert());
        seen(app->told());
        QVERIFY(app->alertText().contains("not valid UTF-8"_L1));
        QVERIFY(!app->delegate.globalFP);
    }

    void whyTheProberGaveNothingStandsInTheStatusLine()
    {
        setPrintTarget(PrintTarget::nowhere);
        app->tools.remove(u"sniffer"_s);
        app->drop(app->makeFile(u"clip.mp4"_s));
        setPrintTarget(PrintTarget::standardOutput);
        QCOMPARE(app->alertText(), unsupportedAlert);
        QVERIFY(app->find<QStatusBar>("statusBar")->currentMessage().contains("ffprobe is missing"_L1));
    }

    void namesAreShownLiterally_data()
    {
        QTest::addColumn<QString>("name");
        for (const QString &name : {u"a[*]b.mp4"_s, u"<b>bold.mp4"_s, u"R&D.mp4"_s, u"two\nlines.mp4"_s,
                                    u"100%d.mp4"_s, u"-dash.mp4"_s, u"clip."_s, u"\U0001F600.mp4"_s}) {
            QTest::newRow(qPrintable(name)) << name;
        }
    }
    void namesAreShownLiterally()
    {
        QFETCH(QString, name);
        app->letProberReport(640, 360);
        app->drop(app->makeFile(name));
        // What the window manager is told: the text without Qt's placeholders.
        QCOMPARE(app->window.windowHandle()->title(), name + u" — Tessaly"_s);
        QCOMPARE(app->tools.calls(u"sniffer"_s).last().last(), app->folder.filePath(name));
    }
};

TESSALY_GUI_TEST_MAIN(TestOpenVideo)
#include "open_video_test.moc"
