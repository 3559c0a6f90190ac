// What can be saved, where, and when.
#include "app/resize_stage.h"
#include "support/seen.h"

#include <unistd.h>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestSave : public TestCase, private ResizeStage
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setUp();
    }
    void cleanup() { tearDown(); }

    void theInputsPathIsNotTheOutputThoughTheInputIsGone()
    {
        open();
        const QString input = *app->delegate.globalFP->fileFullPath;
        QVERIFY(QFile::remove(input));
        app->tools.forgetCalls(u"creator"_s);
        app->delegate.saveResponse(1, input);
        QTRY_VERIFY(app->alert());
        QVERIFY(app->alertText().startsWith("Input file name is same as the output file name!"_L1));
        QVERIFY(app->tools.calls(u"creator"_s).isEmpty());
    }

    void theInputIsNeverTheOutput_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("the same path") << u"clip.mov.mp4"_s;
        QTest::newRow("through a symbolic link") << u"symbolic.mp4"_s;
        QTest::newRow("through a hard link") << u"hard.mp4"_s;
    }
    void theInputIsNeverTheOutput()
    {
        QFETCH(QString, path);
        app->letProberReport(640, 360);
        const QString input = app->makeFile(u"clip.mov.mp4"_s);
        QFile::link(input, app->folder.filePath(u"symbolic.mp4"_s));
        QCOMPARE(::link(qPrintable(input), qPrintable(app->folder.filePath(u"hard.mp4"_s))), 0);
        app->drop(input);
        app->tools.forgetCalls(u"creator"_s);
        app->delegate.saveResponse(1, app->folder.filePath(path));
        QTRY_VERIFY(app->alert());
        QCOMPARE(app->alertText(), u"Input file name is same as the output file name!\n"
                                   "Please specify a different file to save."_s);
        QCOMPARE(app->alertButtons(), QStringList{u"OK"_s});
        QVERIFY(app->tools.calls(u"creator"_s).isEmpty());
        QVERIFY(!app->delegate.isProcessCancelledByUser);
    }

    void theSameNameInAnotherFolderIsAccepted()
    {
        open();
        QDir(app->folder.path()).mkdir(u"other"_s);
        letConverter({{u"write-output"_s, u"video"_s}});
        app->saveTo(app->folder.filePath(u"other/clip.mov"_s));
        QTRY_VERIFY(app->alert());
        QVERIFY(QFile::exists(app->folder.filePath(u"other/clip.mov.mp4"_s)));
    }

    void anOpenEditIsCommittedFirst_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("field");
        QTest::newRow("width") << u"321"_s << u"widthTF"_s;
        QTest::newRow("height") << u"181"_s << u"heightTF"_s;
    }
    void anOpenEditIsCommittedFirst()
    {
        QFETCH(QString, typed);
        QFETCH(QString, field);
        open();
        letConverter({{u"write-output"_s, u"video"_s}});
        app->type(app->window.findChild<NumberField *>(field), typed);
        app->saveTo(output());
        QTRY_VERIFY(app->alert());
        seen(app->tools.calls(u"creator"_s).last().filter(u"scale"_s).join(u' '));
        QVERIFY(app->tools.calls(u"creator"_s).last().contains(u"scale=320:180,setsar=1:1"_s));
    }

    void aCancelledPanelDoesNothing()
    {
        open();
        QTest::keyClick(&app->window, Qt::Key_S, Qt::ControlModifier);
        QTRY_VERIFY(app->panel());
        QCOMPARE(app->panel()->directory().absolutePath(), app->folder.path());
        QCOMPARE(app->panel()->findChild<QLineEdit *>(u"fileNameEdit"_s)->text().section(u'.', 0, 0),
                 u"Resized"_s);
        QTest::keyClick(app->panel(), Qt::Key_Escape);
        QTRY_VERIFY(!app->panel());
        QVERIFY(!app->delegate.isProcessCancelledByUser);
    }

    void withoutAPathOfTheInputNothingHappens()
    {
        open();
        app->delegate.globalFP = std::make_shared<const FileProbe>();
        app->delegate.saveResponse(1, output());
        QVERIFY(!app->delegate.isProcessCancelledByUser);
        QVERIFY(!app->alert());
    }

    void menuAndToolBarAskForTheSameName()
    {
        open();
        for (const auto entry : {&AppDelegate::saveMenuBTNClicked, &AppDelegate::saveBTNClicked}) {
            // The answer of the panel before comes when that has already gone.
            QTRY_VERIFY(((app->delegate.*entry)(nullptr), app->panel()));
            QCOMPARE(app->panel()->acceptMode(), QFileDialog::AcceptSave);
            QTest::keyClick(app->panel(), Qt::Key_Escape);
            QTRY_VERIFY(!app->panel());
        }
        QVERIFY(!isConverting()); // an answer without a name starts nothing
    }

    void aDropAndSaveWhileAJobRunsAreRefused()
    {
        open();
        const QString goAhead = app->folder.filePath(u"go ahead"_s);
        letConverter({{u"wait-for-file"_s, goAhead}, {u"write-output"_s, u"video"_s}});
        app->saveTo(output());
        QTRY_VERIFY(isConverting());
        app->drop(app->makeFile(u"other.mp4"_s));
        app->delegate.saveBTNClicked(nullptr);
        app->delegate.openMenuBTNClicked(nullptr);
        QVERIFY(!app->panel());
        QCOMPARE(*app->delegate.globalFP->fileFullPath, app->folder.filePath(u"clip.mov"_s));
        app->makeFile(u"go ahead"_s);
        QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
    }

    void nothingIsOpenedOrSavedBeforeTheSheetIsUp()
    {
        open();
        letConverter({{u"write-output"_s, u"video"_s}});
        app->delegate.saveResponse(1, output());
        QVERIFY(!isConverting()); // the sheet comes with the event loop
        app->delegate.saveBTNClicked(nullptr);
        app->delegate.openMenuBTNClicked(nullptr);
        app->drop(app->makeFile(u"other.mp4"_s));
        QVERIFY(!app->panel());
        QCOMPARE(*app->delegate.globalFP->fileFullPath, app->folder.filePath(u"clip.mov"_s));
        QTRY_VERIFY(app->alertText().startsWith("Video Resized Successfully!"_L1));
        app->answerAlert();
        app->delegate.saveMenuBTNClicked(nullptr); // and afterwards it can be saved again
        QTRY_VERIFY(app->panel());
    }
};

TESSALY_GUI_TEST_MAIN(TestSave)
#include "save_test.moc"
