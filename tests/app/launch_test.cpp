// Launch, the no-file state, help, the end.
#include "app/app_harness.h"
#include "platform/temporary_directory.h"
#include "support/form_check.h"
#include "support/test_case.h"
#include "ui/view_styling.h"

#include <QAccessible>
#include <QMenu>
#include <QProcess>
#include <QToolBar>
#include <QToolButton>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestLaunch : public TestCase
{
    Q_OBJECT

private:
    static void checkNoFileState(const AppDelegate &delegate)
    {
        QCOMPARE(delegate.inputLBL->text(), u"Input: 0 x 0"_s);
        QVERIFY(delegate.proportionalCBX->isChecked());
        QVERIFY(!delegate.proportionalCBX->isEnabled());
        QVERIFY(!delegate.sizeSLDR->isEnabled());
        QVERIFY(!delegate.widthTF->isEnabled());
        QVERIFY(!delegate.heightTF->isEnabled());
        QCOMPARE(delegate.widthTF->text(), u"0"_s);
        QCOMPARE(delegate.heightTF->text(), u"0"_s);
        QCOMPARE(delegate.sliderTitleLBL->text(), u"Scale:"_s);
        QCOMPARE(delegate.currentFocussedTF, u"None"_s);
        QVERIFY(!delegate.posterPositionSliderTBI->isEnabled());
        QVERIFY(!delegate.posterPositionSlider->isEnabled());
        QCOMPARE(delegate.posterPositionSlider->intValue(), 6);
        QVERIFY(!delegate.saveBTN->isEnabled());
    }

private Q_SLOTS:
    void aNewControllerHoldsThePlaceholders()
    {
        const AppDelegate delegate;
        QCOMPARE(delegate.originalWidth, 854);
        QCOMPARE(delegate.originalHeight, 480);
        QCOMPARE(delegate.originalRatio, 1.0);
        QCOMPARE(delegate.currentFocussedTF, u"None"_s);
        QVERIFY(!delegate.globalFP);
        QVERIFY(!delegate.globalProcess);
        QVERIFY(!delegate.isProcessCancelledByUser);
    }

    void launchPutsTheWindowIntoTheNoFileState()
    {
        const AppHarness app;
        checkNoFileState(app.delegate);
        QCOMPARE(app.window.windowTitle(), u"Tessaly"_s);
        QVERIFY(app.find<QLabel>("dropHintLBL")->isVisible());
    }

    void theIconComesOnceTheWindowIsPainted()
    {
        QApplication::setWindowIcon({});
        const AppHarness app;
        QTRY_VERIFY(!app.window.windowIcon().isNull());
        QVERIFY(!app.window.windowIcon().pixmap(64, 64).isNull());
    }

    void theToolBarShowsItsIcons_data()
    {
        QTest::addColumn<QString>("action");
        for (const QString &name : {u"openBTN"_s, u"saveBTN"_s, u"helpBTN"_s})
            QTest::newRow(qPrintable(name)) << name;
    }

    // Without the plugin that draws them they are there, but empty.
    void theToolBarShowsItsIcons()
    {
        QFETCH(QString, action);
        const AppHarness app;
        auto *item = app.window.findChild<QAction *>(action);
        auto *toolBar = app.find<QToolBar>("toolBar");
        QVERIFY(item && toolBar);
        QWidget *button = toolBar->widgetForAction(item);
        QVERIFY(button);
        const QImage shown = button->grab().toImage();
        QPixmap nothing(toolBar->iconSize());
        nothing.fill(Qt::transparent);
        item->setIcon(nothing);
        const QImage bare = button->grab().toImage();
        QCOMPARE(shown.size(), bare.size());
        QVERIFY(shown != bare);
    }

    void resetLeavesWhatItIsNotToTouch()
    {
        AppHarness app;
        app.letConverterMakeStills();
        app.openSize(640, 360);
        app.delegate.sizeSLDR->setDoubleValue(70);
        const auto probe = app.delegate.globalFP;
        app.delegate.resetInterface();
        checkNoFileState(app.delegate);
        QCOMPARE(app.delegate.sizeSLDR->doubleValue(), 70.0);
        QCOMPARE(app.delegate.originalWidth, 640);
        QCOMPARE(app.delegate.originalHeight, 360);
        QCOMPARE(app.delegate.originalRatio, 640.0 / 360);
        QCOMPARE(app.delegate.globalFP, probe);
        QVERIFY(!app.delegate.posterView->image().isNull());
    }

    // A field that committed its edit when it is disabled would move the slider.
    void resetDiscardsAnOpenEdit()
    {
        AppHarness app;
        app.openSize(640, 360);
        app.type(app.delegate.widthTF.get(), u"321"_s);
        const double before = app.delegate.sizeSLDR->doubleValue();
        app.delegate.resetInterface();
        QCOMPARE(app.delegate.sizeSLDR->doubleValue(), before);
        QCOMPARE(app.delegate.widthTF->text(), u"0"_s);
    }

    void launchAndTerminationRemoveTheTemporaryFolder()
    {
        AppHarness app;
        const auto leaveSomething = [] {
            QFile left(NSTemporaryDirectory() + u"left"_s);
            return left.open(QIODevice::WriteOnly) && left.exists();
        };
        QVERIFY(leaveSomething());
        app.delegate.applicationDidFinishLaunching(&app.window);
        QVERIFY(!QFile::exists(NSTemporaryDirectory() + u"left"_s));
        QVERIFY(leaveSomething());
        app.delegate.applicationWillTerminate(&app.window);
        QVERIFY(!QFile::exists(NSTemporaryDirectory() + u"left"_s));
    }

    void helpAlertHasOneButton()
    {
        AppHarness app;
        QTest::keyClick(&app.window, Qt::Key_F1);
        QTRY_VERIFY(app.alert());
        QCOMPARE(app.alertText(), u"Questions?\nsupport@tessaly.example"_s);
        QCOMPARE(app.alertButtons(), QStringList{u"OK"_s});
        app.answerAlert();
    }

    void saveInTheMenuIsEnabledExactlyWhenTheToolBarsIs()
    {
        AppHarness app;
        const auto inMenu = [&app] {
            for (QAction *action : app.find<QMenu>("fileMenu")->actions()) {
                if (action->text().contains("Save"_L1)) return action->isEnabled();
            }
            return false;
        };
        auto *toolBar = app.find<QToolBar>("toolBar");
        auto *button = toolBar->widgetForAction(app.delegate.saveBTN.get());
        QVERIFY(!inMenu() && !button->isEnabled());
        app.openSize(640, 360);
        QVERIFY(inMenu() && button->isEnabled());
    }

    void shortcutsAndMnemonics()
    {
        const AppHarness app;
        const QMap<QString, QKeySequence> expected{
            {u"openBTN"_s, Qt::CTRL | Qt::Key_O},
            {u"saveBTN"_s, Qt::CTRL | Qt::Key_S},
            {u"quitBTN"_s, Qt::CTRL | Qt::Key_Q},
            {u"helpBTN"_s, Qt::Key_F1},
        };
        for (auto it = expected.begin(); it != expected.end(); ++it) {
            const auto *action = app.window.findChild<QAction *>(it.key());
            QCOMPARE(action->shortcut(), it.value());
            QVERIFY(action->text().contains(u'&'));
        }
    }

    void theMenusComeByTheirKey()
    {
        AppHarness app;
        QTest::keyClick(&app.window, Qt::Key_F10);
        QTRY_VERIFY(app.find<QMenu>("fileMenu")->isVisible());
        QTest::keyClick(app.find<QMenu>("fileMenu"), Qt::Key_Escape);
    }

    void theWindowIsClosedByEitherKey()
    {
        for (const Qt::Key key : {Qt::Key_Q, Qt::Key_W}) {
            AppHarness app;
            QTest::keyClick(&app.window, key, Qt::ControlModifier);
            QTRY_VERIFY(!app.window.isVisible());
        }
    }

    void noMnemonicStandsTwiceInAMenu()
    {
        const AppHarness app;
        for (const auto *menu : app.window.findChildren<QMenu *>()) {
            QStringList keys;
            for (const QAction *action : menu->actions())
                keys += QKeySequence::mnemonic(action->text()).toString();
            keys.removeAll(QString());
            QVERIFY(!keys.isEmpty());
            QCOMPARE(keys.removeDuplicates(), 0);
        }
    }

    void aboutTellsVersionLicenceAndTools()
    {
        AppHarness app;
        app.tools.setBehaviour(u"creator"_s, u"print"_s,
                               {u"ffmpeg version 9.9-a Copyright (c) the makers\n"_s});
        app.tools.remove(u"sniffer"_s);
        AppHarness::inEventLoop([&app] { app.find<QAction>("aboutBTN")->trigger(); });
        QTRY_VERIFY(app.alert());
        const QStringList lines = app.alertText().remove(QChar(0x200B)).split(u'\n');
        QCOMPARE(lines.size(), 5);
        QVERIFY2(lines.at(0).startsWith("Tessaly 0."_L1), qPrintable(lines.at(0)));
        QCOMPARE(lines.at(1), u"MIT License"_s);
        QCOMPARE(lines.at(2), u"ffprobe: not found"_s);
        QVERIFY2(lines.at(3).startsWith("ffmpeg 9.9-a: /"_L1), qPrintable(lines.at(3)));
        QCOMPARE(lines.at(4), u"Confinement of the tools: none"_s); // the fake ones'
    }

    void tabOrder()
    {
        AppHarness app;
        app.openSize(640, 360);
        app.delegate.proportionalCBX->setFocus();
        QStringList visited;
        for (int i = 0; i < 4; ++i) {
            visited += app.window.focusWidget()->objectName();
            QTest::keyClick(app.window.focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(visited, (QStringList{u"proportionalCBX"_s, u"sizeSLDR"_s, u"widthTF"_s, u"heightTF"_s}));
    }

    void everyControlHasAnAccessibleName()
    {
        const AppHarness app;
        int controls = 0;
        for (const char *name : {"proportionalCBX", "sizeSLDR", "widthTF", "heightTF", "posterView",
                                 "posterPositionSlider", "progressCancel", "progressBar"}) {
            QAccessibleInterface *control = QAccessible::queryAccessibleInterface(app.find<QWidget>(name));
            QVERIFY2(control && !control->text(QAccessible::Name).isEmpty(), name);
            ++controls;
        }
        QCOMPARE(controls, 8);
    }

    void nothingIsCutOffOnASmallScreen()
    {
        const AppHarness app;
        // 1920 x 1080 at 200 percent, less a panel of the desktop.
        const QSize smallest = app.window.minimumSizeHint();
        QVERIFY2(smallest.width() <= 960 && smallest.height() <= 500,
                 qPrintable(u"%1 x %2"_s.arg(smallest.width()).arg(smallest.height())));
    }

    void rightToLeftMirrorsTheWindow()
    {
        AppHarness app;
        app.window.setLayoutDirection(Qt::RightToLeft);
        QTRY_VERIFY(app.find<QWidget>("sliderTitleLBL")->x() > app.delegate.widthTF->x());
    }

    void theFormNamesOnlyPropertiesThatAViewKnows()
    {
        AppHarness app;
        QCOMPARE(unknownFormProperties(u"" TESSALY_FORM ""_s, &app.window, stylingPropertyNames()),
                 QStringList());
    }

    void anUnconnectedOutletEndsTheProgramWithItsName()
    {
        if (qEnvironmentVariableIsSet("TESSALY_USE_UNCONNECTED")) {
            AppDelegate delegate;
            delegate.resetInterface();
        }
        QProcess again;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TESSALY_USE_UNCONNECTED"_s, u"1"_s);
        again.setProcessEnvironment(environment);
        again.start(QCoreApplication::applicationFilePath(),
                    {u"anUnconnectedOutletEndsTheProgramWithItsName"_s, u"-nocrashhandler"_s});
        QVERIFY(again.waitForFinished(waitLimit));
        QVERIFY(again.exitStatus() == QProcess::CrashExit || again.exitCode() != 0);
        const QByteArray said = again.readAllStandardOutput() + again.readAllStandardError();
        QVERIFY2(said.contains("\"inputLBL\" is not connected"), said.constData());
    }
};

TESSALY_GUI_TEST_MAIN(TestLaunch)
#include "launch_test.moc"
