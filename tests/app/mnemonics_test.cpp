// No key with Alt stands for two things, whatever is up.
#include "app/resize_stage.h"
#include "ui/mnemonics.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMessageBox>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

class TestMnemonics : public TestCase, private ResizeStage
{
    Q_OBJECT

public:
    using Reach = void (TestMnemonics::*)();

    void nothing() {}
    void openVideo() { open(); }
    void freeProportions()
    {
        open();
        app->delegate.proportionalCBX->click();
    }
    void help() { QTest::keyClick(&app->window, Qt::Key_F1); }
    void about()
    {
        AppHarness::inEventLoop([this] { app->find<QAction>("aboutBTN")->trigger(); });
    }
    void refusal()
    {
        app->letProberReport("{}");
        app->drop(app->makeFile(u"clip.mov"_s));
    }
    void failure()
    {
        open();
        letConverter({{u"complain"_s, u"Unknown decoder\n"_s}, {u"exit"_s, u"1"_s}});
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(app->alert());
        QVERIFY(app->alert()->findChild<QPushButton *>(u"alertCopy"_s));
    }
    void conversion()
    {
        open();
        letConverter({{u"slow-flush"_s, u"10"_s}});
        app->delegate.saveResponse(1, output());
        QTRY_VERIFY(isConverting());
    }
    void replacing()
    {
        open();
        QFile old(output());
        QVERIFY(old.open(QIODevice::WriteOnly));
        QTest::keyClick(&app->window, Qt::Key_S, Qt::ControlModifier);
        askPanel(output(), QDialogButtonBox::Save);
    }
    void missingFile()
    {
        QTest::keyClick(&app->window, Qt::Key_O, Qt::ControlModifier);
        askPanel(u"/nonexistent.mp4"_s, QDialogButtonBox::Open);
    }

private:
    void askPanel(const QString &path, QDialogButtonBox::StandardButton button)
    {
        QTRY_VERIFY(app->panel());
        app->panel()->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
        QTest::mouseClick(app->panel()->findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
        QTRY_VERIFY(app->panel()->findChild<QMessageBox *>());
    }

    static QWidgetList shownWindows()
    {
        QWidgetList windows = QApplication::topLevelWidgets();
        windows.removeIf([](const QWidget *window) { return !window->isVisible(); });
        return windows;
    }

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        setUp();
    }
    void cleanup() { tearDown(); }

    void standOnce_data();
    void standOnce();
};

Q_DECLARE_METATYPE(TestMnemonics::Reach)

void TestMnemonics::standOnce_data()
{
    QTest::addColumn<Reach>("reach");
    QTest::addColumn<qsizetype>("windows");
    QTest::newRow("nothing is open") << &TestMnemonics::nothing << qsizetype(1);
    QTest::newRow("a video is open") << &TestMnemonics::openVideo << qsizetype(1);
    QTest::newRow("free proportions") << &TestMnemonics::freeProportions << qsizetype(1);
    QTest::newRow("help") << &TestMnemonics::help << qsizetype(2);
    QTest::newRow("about") << &TestMnemonics::about << qsizetype(2);
    QTest::newRow("a refusal") << &TestMnemonics::refusal << qsizetype(2);
    QTest::newRow("a failure with details") << &TestMnemonics::failure << qsizetype(2);
    QTest::newRow("a conversion") << &TestMnemonics::conversion << qsizetype(2);
    QTest::newRow("the question before replacing") << &TestMnemonics::replacing << qsizetype(3);
    QTest::newRow("the word on a missing file") << &TestMnemonics::missingFile << qsizetype(3);
}

void TestMnemonics::standOnce()
{
    QFETCH(Reach, reach);
    QFETCH(qsizetype, windows);
    (this->*reach)();
    if (QTest::currentTestFailed()) return;
    QTRY_COMPARE(shownWindows().size(), windows);
    QVERIFY(mnemonics(app->window).size() >= 7);
    for (const QWidget *window : shownWindows()) {
        QCOMPARE(repeated(mnemonics(*window)), QStringList());
        for (const auto *menu : window->findChildren<QMenu *>())
            QCOMPARE(repeated(mnemonics(*menu)), QStringList());
    }
}

TESSALY_GUI_TEST_MAIN(TestMnemonics)
#include "mnemonics_test.moc"
