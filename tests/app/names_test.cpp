// What assistive technology is told of the window.
#include "app/app_harness.h"
#include "support/test_case.h"

#include <QAccessible>
#include <QStatusBar>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestNames : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    void freeProportions() { app->delegate.proportionalCBX->click(); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

    void theSizeSliderIsNamedAfterTheSize_data()
    {
        QTest::addColumn<bool>("free");
        QTest::addColumn<QString>("act");
        QTest::addColumn<QString>("name");
        QTest::newRow("slid") << false << u"slide"_s << u"Scale, 99 percent, 634 by 356 pixels"_s;
        QTest::newRow("a width is typed")
            << false << u"width"_s << u"Scale, 33.1 percent, 212 by 120 pixels"_s;
        QTest::newRow("slid, free") << true << u"slide"_s << u"Height, 99 percent, 356 pixels"_s;
        QTest::newRow("a width is typed, free") << true << u"width"_s << u"Width, 33.1 percent, 212 pixels"_s;
    }
    void theSizeSliderIsNamedAfterTheSize()
    {
        QFETCH(bool, free);
        QFETCH(QString, act);
        QFETCH(QString, name);
        app->openSize(640, 360);
        if (free) freeProportions();
        Slider *slider = app->delegate.sizeSLDR.get();
        NumberField *width = app->delegate.widthTF.get();
        if (act == "width"_L1) app->type(width, u"213"_s);
        if (act == "width"_L1)
            QTest::keyClick(width, Qt::Key_Return);
        else
            QTest::keyClick(slider, Qt::Key_Left);
        QTRY_COMPARE(slider->accessibleName(), name);
    }

    void theSizeSliderIsNamedAfterItsCaption()
    {
        app->openSize(640, 360);
        const Slider *slider = app->delegate.sizeSLDR.get();
        freeProportions();
        QTRY_COMPARE(slider->accessibleName(), u"Height, 100 percent, 360 pixels"_s);
        QTest::mouseClick(app->delegate.widthTF.get(), Qt::LeftButton);
        QTRY_COMPARE(slider->accessibleName(), u"Width, 100 percent, 640 pixels"_s);
        app->delegate.resetInterface();
        QTRY_COMPARE(slider->accessibleName(), u"Size in percent of the input"_s);
    }

    void thePosterSliderTellsTheFrame()
    {
        app->openSize(640, 360);
        auto *slider = app->delegate.posterPositionSlider.get();
        QCOMPARE(slider->accessibleName(), u"Frame 6 of 11"_s);
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(slider->accessibleName(), u"Frame 7 of 11"_s);
    }

    void thePosterIsAnImageNamedAfterTheFile()
    {
        const auto *poster = QAccessible::queryAccessibleInterface(app->delegate.posterView.get());
        QCOMPARE(poster->role(), QAccessible::Graphic);
        QCOMPARE(poster->text(QAccessible::Name), u"Poster frame"_s);
        app->openSize(640, 360);
        QCOMPARE(poster->text(QAccessible::Name), u"clip.mp4"_s);
        app->delegate.resetInterface();
        QCOMPARE(poster->text(QAccessible::Name), u"Poster frame"_s);
    }

    void theEmptyWindowTellsHowToOpen()
    {
        const QWidget *focused = app->window.focusWidget();
        QVERIFY(focused);
        QCOMPARE(focused->objectName(), u"emptyOpenBTN"_s);
        QCOMPARE(focused->accessibleDescription(), app->find<QLabel>("dropHintLBL")->text());
    }

    void aCancelIsTold()
    {
        app->openSize(640, 360);
        app->tools.setSteps(u"creator"_s, {{u"slow-flush"_s, u"10"_s}});
        const auto *status = app->find<QStatusBar>("statusBar");
        app->delegate.saveResponse(1, app->folder.filePath(u"out.mp4"_s));
        QTRY_VERIFY(app->delegate.progressWindow->isVisible());
        app->delegate.progressCancel->click();
        QTRY_COMPARE(status->currentMessage(), u"Cancelled"_s);
    }
};

TESSALY_GUI_TEST_MAIN(TestNames)
#include "names_test.moc"
