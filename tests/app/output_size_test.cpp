// The size controls, by slider, keyboard and mouse.
#include "app/app_harness.h"
#include "support/test_case.h"

#include <QMenu>
#include <QStatusBar>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestOutputSize : public TestCase
{
    Q_OBJECT

private:
    std::unique_ptr<AppHarness> app;

    // Width, height, caption.
    QString shown() const
    {
        return u"%1 x %2 %3"_s.arg(app->delegate.widthTF->text(), app->delegate.heightTF->text(),
                                   app->delegate.sliderTitleLBL->text());
    }
    double percent() const { return app->delegate.sizeSLDR->doubleValue(); }

    // What a drag does, without the rounding to a pixel of the screen.
    void slideTo(double value)
    {
        app->delegate.sizeSLDR->setDoubleValue(value);
        Q_EMIT app->delegate.sizeSLDR->changedByUser();
    }
    void commit(NumberField *field, const QString &text)
    {
        app->type(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }
    NumberField *width() const { return app->delegate.widthTF.get(); }
    NumberField *height() const { return app->delegate.heightTF.get(); }
    QCheckBox *box() const { return app->delegate.proportionalCBX.get(); }
    void clickBox() { QTest::mouseClick(box(), Qt::LeftButton, {}, QPoint(8, box()->height() / 2)); }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        app = std::make_unique<AppHarness>();
    }
    void cleanup() { app.reset(); }

    QAction *sizeAction(const QString &text) const
    {
        for (QAction *action : app->find<QMenu>("sizeMenu")->actions()) {
            if (action->text().remove(u'&').startsWith(text)) return action;
        }
        return nullptr;
    }

    void theMenuDoesWhatTypingAndSlidingDo_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<bool>("free");
        QTest::addColumn<QString>("typed"); // into the height field; else slid
        QTest::addColumn<double>("slid");
        for (const bool free : {false, true}) {
            for (const char *height : {"2160", "1440", "1080", "720", "480"})
                QTest::addRow("%sp%s", height, free ? ", free" : "")
                    << QString::fromLatin1(height) + u'p' << free << QString::fromLatin1(height) << 0.0;
            for (const int percent : {75, 50, 25})
                QTest::addRow("%d %%%s", percent, free ? ", free" : "")
                    << u"%1 %"_s.arg(percent) << free << QString() << double(percent);
        }
    }
    void theMenuDoesWhatTypingAndSlidingDo()
    {
        QFETCH(QString, entry);
        QFETCH(bool, free);
        QFETCH(QString, typed);
        QFETCH(double, slid);
        const auto state = [this] {
            return u"%1 %2 %3"_s.arg(shown()).arg(percent()).arg(box()->isChecked());
        };
        const auto begin = [&] {
            app->openSize(1919, 1080);
            if (free) clickBox();
            app->type(width(), u"1001"_s); // an edit that is still open
        };
        begin();
        if (typed.isEmpty()) {
            app->delegate.sizeSLDR->setFocus(); // as the click on it
            slideTo(slid);
        } else {
            width()->commitEdit();
            height()->setFocus();
            height()->selectAll();
            QTest::keyClicks(height(), typed);
            QTest::keyClick(height(), Qt::Key_Return);
        }
        const QString byHand = state();
        begin();
        QVERIFY(sizeAction(entry));
        QTest::keySequence(&app->window, sizeAction(entry)->shortcut());
        QCOMPARE(state(), byHand);
    }

    void theMenuSaysWhatEnlarges()
    {
        QVERIFY(!sizeAction(u"720p"_s)->isEnabled());
        app->openSize(1280, 720);
        QVERIFY(sizeAction(u"720p"_s)->isEnabled());
        QCOMPARE(sizeAction(u"720p"_s)->text(), u"720p"_s);
        QCOMPARE(sizeAction(u"1080p"_s)->text(), u"1080p (enlarges)"_s);
        app->openSize(1920, 1080);
        QCOMPARE(sizeAction(u"1080p"_s)->text(), u"1080p"_s);
        app->delegate.resetInterface();
        QVERIFY(!sizeAction(u"50 %"_s)->isEnabled());
    }

    void keysChooseTheSideOfTheSlider()
    {
        app->openSize(640, 360);
        clickBox();
        QTest::keyClick(&app->window, Qt::Key_1, Qt::ControlModifier);
        QCOMPARE(shown(), u"640 x 360 Width:"_s);
        QVERIFY(width()->hasFocus());
        slideTo(50);
        QTest::keyClick(&app->window, Qt::Key_2, Qt::ControlModifier);
        QCOMPARE(shown(), u"320 x 360 Height:"_s);
        QVERIFY(height()->hasFocus());
        QCOMPARE(percent(), 100.0);
    }

    void whatIsReadOfATextIsTold()
    {
        app->openSize(1920, 1080);
        const auto *status = app->find<QStatusBar>("statusBar");
        const QString facts = status->currentMessage();
        commit(width(), u"1,920"_s);
        QCOMPARE(status->currentMessage(), u"“1,920” is read as 1"_s);
        commit(width(), u" 640 "_s);
        QCOMPARE(status->currentMessage(), facts);
        commit(height(), u"720p"_s);
        QCOMPARE(status->currentMessage(), u"“720p” is read as 720"_s);
    }

    void thePercentageIsTrueBeyondTheSlider()
    {
        app->openSize(640, 360);
        const auto *label = app->find<QLabel>("percentLBL");
        commit(width(), u"2250"_s);
        QCOMPARE(percent(), 200.0);
        QCOMPARE(label->text(), u"351.6 %"_s);
        clickBox(); // free: the numbers stay
        QCOMPARE(label->text(), u"351.6 %"_s);
        clickBox(); // both sides from the slider
        QCOMPARE(width()->text(), u"1280"_s);
        QCOMPARE(label->text(), u"200 %"_s);
        commit(height(), u"360"_s);
        QCOMPARE(label->text(), u"100 %"_s);
    }

    void sliderScalesBothSides_data()
    {
        QTest::addColumn<int>("inputWidth");
        QTest::addColumn<int>("inputHeight");
        QTest::addColumn<double>("scale");
        QTest::addColumn<QString>("result");
        QTest::newRow("a half") << 1920 << 1080 << 50.0 << u"960 x 540 Scale:"_s;
        QTest::newRow("rounded to even") << 1920 << 1080 << 33.3 << u"640 x 360 Scale:"_s;
        QTest::newRow("a tie goes away from zero") << 854 << 480 << 50.0 << u"428 x 240 Scale:"_s;
        QTest::newRow("an odd input at 100 percent") << 853 << 481 << 100.0 << u"854 x 482 Scale:"_s;
        QTest::newRow("twice") << 640 << 360 << 200.0 << u"1280 x 720 Scale:"_s;
        QTest::newRow("nothing") << 640 << 360 << 0.0 << u"0 x 0 Scale:"_s;
    }
    void sliderScalesBothSides()
    {
        QFETCH(int, inputWidth);
        QFETCH(int, inputHeight);
        QFETCH(double, scale);
        app->openSize(inputWidth, inputHeight);
        slideTo(scale);
        QTEST(shown(), "result");
        QCOMPARE(percent(), scale);
    }

    void sliderIsMovedByKeys()
    {
        app->openSize(1920, 1080);
        app->delegate.sizeSLDR->setFocus();
        QTest::keyClick(app->delegate.sizeSLDR.get(), Qt::Key_PageDown);
        QCOMPARE(percent(), 90.0);
        QCOMPARE(shown(), u"1728 x 972 Scale:"_s);
    }

    void typedWidth_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("result");
        QTest::addColumn<double>("scale");
        QTest::newRow("an odd width is lowered, the height follows")
            << u"1001"_s << u"1000 x 562 Scale:"_s << 1000.0 / 1920 * 100;
        QTest::newRow("an even width") << u"1280"_s << u"1280 x 720 Scale:"_s << 1280.0 / 1920 * 100;
        QTest::newRow("a negative odd width") << u"-3"_s << u"-4 x -2 Scale:"_s << 0.0;
        QTest::newRow("no number") << u"abc"_s << u"abc x 0 Scale:"_s << 0.0;
        QTest::newRow("empty") << u""_s << u" x 0 Scale:"_s << 0.0;
        QTest::newRow("grouped") << u"1,920"_s << u"0 x 0 Scale:"_s << 0.0;
        QTest::newRow("zero") << u"0"_s << u"0 x 0 Scale:"_s << 0.0;
        QTest::newRow("above the slider's range") << u"9600"_s << u"9600 x 5400 Scale:"_s << 200.0;
        QTest::newRow("with an exponent, which an integer stops at") << u"1e9"_s << u"0 x 0 Scale:"_s << 0.0;
        QTest::newRow("no 64-bit height comes of it")
            << u"99999999999999999999"_s << u"9223372036854775806 x 5188146770730811392 Scale:"_s << 200.0;
    }
    void typedWidth()
    {
        QFETCH(QString, typed);
        QFETCH(double, scale);
        app->openSize(1920, 1080);
        commit(width(), typed);
        QTEST(shown(), "result");
        QCOMPARE(percent(), scale);
    }

    void typedHeight()
    {
        app->openSize(1920, 1080);
        commit(height(), u"541"_s);
        QCOMPARE(shown(), u"960 x 540 Scale:"_s);
        QCOMPARE(percent(), 50.0);
    }

    void leavingAFieldCommitsWhatWasTyped()
    {
        app->openSize(1920, 1080);
        app->type(width(), u"1001"_s);
        QCOMPARE(height()->text(), u"1080"_s);
        QTest::keyClick(width(), Qt::Key_Tab);
        QCOMPARE(shown(), u"1000 x 562 Scale:"_s);
    }

    void tabbingThroughCommitsNothing()
    {
        app->openSize(853, 480);
        width()->setFocus();
        QTest::keyClick(width(), Qt::Key_Tab);
        QTest::keyClick(height(), Qt::Key_Tab);
        QCOMPARE(shown(), u"853 x 480 Scale:"_s);
    }

    void returnInAnUnchangedFieldCommits()
    {
        app->openSize(853, 480);
        width()->setFocus();
        QTest::keyClick(width(), Qt::Key_Return);
        QCOMPARE(shown(), u"852 x 480 Scale:"_s);
    }

    void uncheckingChangesNoNumberAndFocusesTheHeight()
    {
        app->openSize(853, 480);
        slideTo(100.0);
        clickBox();
        QCOMPARE(shown(), u"854 x 480 Height:"_s);
        QCOMPARE(app->delegate.currentFocussedTF, u"HeightTF"_s);
        QCOMPARE(percent(), 100.0);
        QVERIFY(height()->hasFocus());
    }

    void uncheckingWithAnOpenEditCommitsItUnderScale()
    {
        app->openSize(1920, 1080);
        app->type(width(), u"1001"_s);
        clickBox();
        QCOMPARE(shown(), u"1000 x 562 Height:"_s);
    }

    void uncheckingByKeyCommitsAnOpenEditOfTheHeight()
    {
        app->openSize(1920, 1080);
        app->type(height(), u"541"_s);
        QTest::keyClick(&app->window, Qt::Key_K, Qt::AltModifier);
        QTRY_COMPARE(shown(), u"960 x 540 Height:"_s);
    }

    void checkingRecomputesBothFromTheSlider()
    {
        app->openSize(1920, 1080);
        clickBox();
        commit(height(), u"270"_s);
        QCOMPARE(shown(), u"1920 x 270 Height:"_s);
        clickBox();
        QCOMPARE(shown(), u"480 x 270 Scale:"_s);
        QCOMPARE(app->delegate.currentFocussedTF, u"None"_s);
    }

    void freeModeTypedWidthLeavesTheHeight()
    {
        app->openSize(1920, 1080);
        clickBox();
        QTest::mouseClick(width(), Qt::LeftButton);
        QCOMPARE(app->delegate.currentFocussedTF, u"WidthTF"_s);
        commit(width(), u"1001"_s);
        QCOMPARE(shown(), u"1000 x 1080 Width:"_s);
        QCOMPARE(percent(), 1000.0 / 1920 * 100);
    }

    void freeModeSliderDrivesOneField()
    {
        app->openSize(1920, 1080);
        clickBox();
        slideTo(50);
        QCOMPARE(shown(), u"1920 x 540 Height:"_s);
        QTest::mouseClick(width(), Qt::LeftButton);
        QCOMPARE(percent(), 100.0);
        slideTo(25);
        QCOMPARE(shown(), u"480 x 540 Width:"_s);
        QTest::mouseClick(height(), Qt::LeftButton);
        QCOMPARE(shown(), u"480 x 540 Height:"_s);
        QCOMPARE(percent(), 50.0);
    }

    void clickInProportionalModeOnlyMovesTheSlider()
    {
        app->openSize(854, 480);
        slideTo(50);
        QCOMPARE(shown(), u"428 x 240 Scale:"_s);
        QTest::mouseClick(width(), Qt::LeftButton);
        QCOMPARE(shown(), u"428 x 240 Scale:"_s);
        QCOMPARE(percent(), 428.0 / 854 * 100);
        QTest::mouseClick(height(), Qt::LeftButton);
        QCOMPARE(percent(), 50.0);
        QCOMPARE(app->delegate.currentFocussedTF, u"None"_s);
    }

    void clickInTheOtherFieldCommitsTheOpenEditFirst()
    {
        app->openSize(1920, 1080);
        clickBox();
        QTest::mouseClick(width(), Qt::LeftButton);
        app->type(width(), u"1001"_s);
        QTest::mouseClick(height(), Qt::LeftButton);
        QCOMPARE(shown(), u"1000 x 1080 Height:"_s);
        QCOMPARE(percent(), 100.0);
    }

    void anotherCaptionMatchesNoMode()
    {
        app->openSize(1920, 1080);
        app->delegate.sliderTitleLBL->setText(u"Depth:"_s);
        slideTo(50);
        QCOMPARE(shown(), u"1920 x 1080 Depth:"_s);
        commit(width(), u"1001"_s);
        QCOMPARE(shown(), u"1000 x 1080 Depth:"_s);
    }

    void aSizeThatCannotBeComputedLeavesTheField()
    {
        app->openSize(1920, 0);
        QCOMPARE(shown(), u"1920 x 0 Scale:"_s);
        commit(height(), u"2"_s); // 2 times an infinite ratio
        QCOMPARE(shown(), u"1920 x 2 Scale:"_s);
    }

    void disabledFieldPassesNoClickOn()
    {
        app->delegate.sizeSLDR->setDoubleValue(77);
        QTest::mouseClick(width(), Qt::LeftButton);
        QCOMPARE(percent(), 77.0);
    }

    void settingControlsFromCodeFiresNothing()
    {
        app->openSize(1920, 1080);
        app->delegate.sizeSLDR->setDoubleValue(10);
        box()->setChecked(false);
        width()->setIntegerValue(501);
        height()->setIntegerValue(301);
        QCOMPARE(shown(), u"501 x 301 Scale:"_s);
        QCOMPARE(percent(), 10.0);
    }
};

TESSALY_GUI_TEST_MAIN(TestOutputSize)
#include "output_size_test.moc"
