#include "ui/alert_fixture.h"
#include "ui/drag.h"

#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTimer>

namespace tessaly {

using namespace tessaly::test;
using namespace Qt::StringLiterals;

// How many events of a kind an object got.
class Events : public QObject
{
public:
    Events(QObject *watched, QEvent::Type type) : QObject(watched), m_type(type)
    {
        watched->installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == m_type) ++count;
        return false;
    }
    int count = 0;

private:
    QEvent::Type m_type;
};

class AlertTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void opensAtOnceAsASheet();
    void belongsToTheWindowOfAView();
    void blocksTheWindow();
    void keepsKeysFromTheWindow();
    void comesToTheFrontOnceForEachActivationOfTheWindow();
    void letsDragsThrough_data();
    void letsDragsThrough();
    void leavesNoMenuOpen();
    void answersAllAsEscapeDoes();
    void hasOneButtonWithoutAny();
    void answersTheClickedButton_data();
    void answersTheClickedButton();
    void answersKeys_data();
    void answersKeys();
    void answersTheWindowManagersClose();
    void staysWhenNothingAnswersTheClose();
    void answersOnceForManyKeys();
    void answersAfterTheSheetHasClosed();
    void needsNoCompletion();
    void saysWhenItWasEndedByCode();
    void stacksASecondAlertOnTheFirst();
    void mayBeginAnotherWhenAnswered();
    void mayDeleteTheWindowWhenAnswered();
    void survivesTheWindowsEnd();
    void survivesTheWindowsClose();
    void keepsNoProgramRunning();
    void worksWithoutAWindow();
};

void AlertTest::opensAtOnceAsASheet()
{
    Stage stage;
    stage.begin(stage.alert());
    const QMessageBox *box = stage.box();
    QVERIFY(box);
    QVERIFY(box->isVisible());
    QCOMPARE(box->parentWidget(), &stage.window);
    QCOMPARE(stage.responses, QList<int>());
}

void AlertTest::belongsToTheWindowOfAView()
{
    Stage stage;
    QWidget view(&stage.window);
    stage.alert().beginSheet(&view);
    QCOMPARE(stage.box()->parentWidget(), &stage.window);
}

void AlertTest::blocksTheWindow()
{
    Stage stage;
    QPushButton button(&stage.window);
    button.setGeometry(0, 0, 60, 30);
    button.show();
    int clicks = 0;
    connect(&button, &QPushButton::clicked, this, [&] { ++clicks; });
    const auto click = [&] { QTest::mouseClick(stage.window.windowHandle(), Qt::LeftButton, {}, {20, 20}); };
    stage.begin(stage.alert());
    click();
    QCOMPARE(clicks, 0);
    press(stage.box(), Qt::Key_Return);
    click();
    QCOMPARE(clicks, 1);
}

void AlertTest::keepsKeysFromTheWindow()
{
    Stage stage;
    QLineEdit field(&stage.window);
    field.show();
    QAction action;
    action.setShortcut(Qt::Key_F7);
    stage.window.addAction(&action);
    const QSignalSpy triggered(&action, &QAction::triggered);
    field.setFocus();
    const auto work = [&] {
        stage.window.activateWindow();
        press(&stage.window, Qt::Key_A);
        press(&stage.window, Qt::Key_F7);
        QWheelEvent wheel({9, 9}, {9, 9}, {}, {0, 120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&field, &wheel);
    };
    stage.begin(stage.alert());
    QVERIFY(QTest::qWaitForWindowActive(stage.box()));
    work();
    QCOMPARE(field.text(), QString());
    QCOMPARE(triggered.count(), 0);
    QTRY_VERIFY(stage.box()->isActiveWindow());
    press(stage.box(), Qt::Key_Return);
    QTRY_VERIFY(!stage.box());
    stage.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&stage.window));
    work();
    QCOMPARE(field.text(), u"a"_s);
    QCOMPARE(triggered.count(), 1);
}

void AlertTest::comesToTheFrontOnceForEachActivationOfTheWindow()
{
    Stage stage;
    for (int i = 0; i < 10; ++i)
        (new QLineEdit(&stage.window))->show();
    stage.begin(stage.alert());
    QVERIFY(QTest::qWaitForWindowActive(stage.box()));
    QCoreApplication::processEvents();
    const Events raises(stage.box(), QEvent::ZOrderChange);
    const Events activations(&stage.window, QEvent::WindowActivate);
    stage.window.activateWindow();
    QTRY_VERIFY(raises.count > 0);
    QTRY_VERIFY(stage.box()->isActiveWindow());
    QCoreApplication::processEvents();
    QCOMPARE(raises.count, activations.count);
}

// A window that notes what is dropped on it.
class Target : public QWidget
{
public:
    int drops = 0;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override { event->acceptProposedAction(); }
    void dragMoveEvent(QDragMoveEvent *event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent *event) override
    {
        ++drops;
        event->acceptProposedAction();
    }
};

void AlertTest::letsDragsThrough_data()
{
    QTest::addColumn<bool>("ontoTheSheet");
    QTest::newRow("onto the window") << false;
    QTest::newRow("onto the sheet") << true;
}

void AlertTest::letsDragsThrough()
{
    QFETCH(bool, ontoTheSheet);
    Target window;
    window.setAcceptDrops(true);
    window.show();
    Alert{.messageText = u"Message"_s}.beginSheet(&window);
    auto *box = window.findChild<QMessageBox *>();
    QVERIFY(!box->isModal()); // or Qt would refuse drags to the window
    const RawDrag data("file:///clip.mp4");
    QWidget *onto = ontoTheSheet ? labelOf(box, u"Message"_s) : static_cast<QWidget *>(&window);
    Drag drag(*onto, data);
    QCOMPARE(drag.enter(), copied);
    QVERIFY(drag.move().accepted);
    QCOMPARE(drag.drop(), copied);
    QCOMPARE(window.drops, 1);
    QVERIFY(box->isVisible());
}

void AlertTest::leavesNoMenuOpen()
{
    Stage stage;
    QMenu menu(&stage.window);
    menu.addAction(u"Item"_s);
    menu.popup(stage.window.pos());
    QVERIFY(menu.isVisible());
    stage.begin(stage.alert());
    QVERIFY(!menu.isVisible());
}

void AlertTest::answersAllAsEscapeDoes()
{
    Stage stage;
    stage.begin(stage.alert({u"Delete"_s, u"Keep"_s})); // Escape has no answer
    stage.begin(stage.alert({u"OK"_s}));
    stage.begin(stage.alert({u"Replace"_s, u"Cancel"_s}));
    answerAlerts(&stage.window);
    QTRY_COMPARE(stage.responses, (QList<int>{1001, 1000}));
    QTRY_COMPARE(stage.boxes().size(), 1);
    QVERIFY(stage.box()->isVisible());
}

void AlertTest::hasOneButtonWithoutAny()
{
    Stage stage;
    stage.begin(stage.alert());
    const QList<QAbstractButton *> buttons = stage.box()->buttons();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons.first()->text(), u"OK"_s);
    QCOMPARE(buttons.first()->objectName(), u"alertButton1000"_s);
}

void AlertTest::answersTheClickedButton_data()
{
    QTest::addColumn<int>("response");
    QTest::newRow("the first") << 1000;
    QTest::newRow("the second") << 1001;
    QTest::newRow("the third") << 1002;
    QTest::newRow("the fourth, called Cancel") << 1003;
}

void AlertTest::answersTheClickedButton()
{
    QFETCH(const int, response);
    Stage stage;
    const QStringList titles{u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s, u"Cancel"_s};
    stage.begin(stage.alert(titles));
    QPushButton *button = buttonOf(stage.box(), response);
    QVERIFY(button);
    QCOMPARE(button->text(), titles.at(response - 1000));
    QTest::mouseClick(stage.box()->windowHandle(), Qt::LeftButton, {},
                      button->mapTo(stage.box(), button->rect().center()));
    QTRY_COMPARE(stage.responses, QList<int>{response});
    QTRY_VERIFY(!stage.box());
}

void AlertTest::answersKeys_data()
{
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("response");
    const QStringList three{u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s};
    QTest::newRow("Return, no button") << QStringList() << Qt::Key_Return << 1000;
    QTest::newRow("Escape, no button") << QStringList() << Qt::Key_Escape << 1000;
    QTest::newRow("Return, OK alone") << QStringList{u"OK"_s} << Qt::Key_Return << 1000;
    QTest::newRow("Enter, OK alone") << QStringList{u"OK"_s} << Qt::Key_Enter << 1000;
    QTest::newRow("Escape, OK alone") << QStringList{u"OK"_s} << Qt::Key_Escape << 1000;
    QTest::newRow("Escape, another one alone") << QStringList{u"Quit"_s} << Qt::Key_Escape << 1000;
    QTest::newRow("Return, three") << three << Qt::Key_Return << 1000;
    QTest::newRow("Escape, three") << three << Qt::Key_Escape << 1000;
    QTest::newRow("Return, with Cancel") << QStringList{u"Replace"_s, u"Cancel"_s} << Qt::Key_Return << 1000;
    QTest::newRow("Escape, with Cancel") << QStringList{u"Replace"_s, u"Cancel"_s} << Qt::Key_Escape << 1001;
    QTest::newRow("Return, Cancel first") << QStringList{u"Cancel"_s, u"OK"_s} << Qt::Key_Return << 1000;
    QTest::newRow("Escape, OK and Cancel") << QStringList{u"OK"_s, u"Cancel"_s} << Qt::Key_Escape << 1001;
    QTest::newRow("Escape, cancel in small letters")
        << QStringList{u"OK"_s, u"cancel"_s} << Qt::Key_Escape << 1000;
    QTest::newRow("Escape, neither") << QStringList{u"Delete"_s, u"Keep"_s} << Qt::Key_Escape << noAnswer;
    QTest::newRow("Return, neither") << QStringList{u"Delete"_s, u"Keep"_s} << Qt::Key_Return << 1000;
    QTest::newRow("a mnemonic that is none") << QStringList{u"&OK"_s, u"&Keep"_s} << Qt::Key_K << noAnswer;
}

void AlertTest::answersKeys()
{
    QFETCH(const QStringList, titles);
    QFETCH(const Qt::Key, key);
    QFETCH(const int, response);
    Stage stage;
    stage.begin(stage.alert(titles));
    QVERIFY(QTest::qWaitForWindowActive(stage.box(), waitLimit));
    QPointer<QMessageBox> box = stage.box();
    press(box, key);
    if (response != noAnswer) {
        QTRY_COMPARE(stage.responses, QList<int>{response});
        QTRY_VERIFY(!box);
        return;
    }
    QCoreApplication::processEvents();
    QVERIFY(box->isVisible());
    press(box, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::answersTheWindowManagersClose()
{
    Stage stage;
    stage.begin(stage.alert({u"Replace"_s, u"Cancel"_s}));
    stage.box()->windowHandle()->close();
    QTRY_COMPARE(stage.responses, QList<int>{1001});
}

void AlertTest::staysWhenNothingAnswersTheClose()
{
    Stage stage;
    stage.begin(stage.alert({u"Delete"_s, u"Keep"_s}));
    stage.box()->windowHandle()->close();
    QCoreApplication::processEvents();
    QVERIFY(stage.box()->isVisible());
    QCOMPARE(stage.responses, QList<int>());
}

void AlertTest::answersOnceForManyKeys()
{
    Stage stage;
    stage.begin(stage.alert({u"Replace"_s, u"Cancel"_s}));
    QVERIFY(QTest::qWaitForWindowActive(stage.box(), waitLimit));
    const QPointer<QMessageBox> box = stage.box();
    buttonOf(box, 1001)->animateClick();
    buttonOf(box, 1000)->click();
    buttonOf(box, 1001)->click();
    QTRY_VERIFY(!box);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::answersAfterTheSheetHasClosed()
{
    Stage stage;
    QPushButton button(&stage.window);
    button.setGeometry(0, 0, 60, 30);
    button.show();
    bool sheetWasUp = true;
    bool windowWasFree = false;
    const QPointer<QMessageBox> *watched = nullptr;
    stage.alert().beginSheet(&stage.window, [&](int) {
        sheetWasUp = *watched && (*watched)->isVisible();
        const QSignalSpy spy(&button, &QPushButton::clicked);
        QTest::mouseClick(stage.window.windowHandle(), Qt::LeftButton, {}, {20, 20});
        windowWasFree = spy.count() == 1;
    });
    const QPointer<QMessageBox> box = stage.box();
    watched = &box;
    buttonOf(box, 1000)->click();
    QTRY_VERIFY(!sheetWasUp);
    QVERIFY(windowWasFree);
}

void AlertTest::needsNoCompletion()
{
    Stage stage;
    stage.alert().beginSheet(&stage.window);
    const QPointer<QMessageBox> box = stage.box();
    press(box, Qt::Key_Return);
    QTRY_VERIFY(!box);
}

void AlertTest::saysWhenItWasEndedByCode()
{
    Stage stage;
    stage.begin(stage.alert({u"Delete"_s, u"Keep"_s}));
    stage.box()->done(0);
    QTRY_COMPARE(stage.responses, QList<int>{alertAbortedResponse});
}

void AlertTest::stacksASecondAlertOnTheFirst()
{
    Stage stage;
    stage.alert().beginSheet(&stage.window, [&](int) { stage.responses << 1; });
    const QPointer<QMessageBox> first = stage.box();
    QVERIFY(QTest::qWaitForWindowActive(first, waitLimit));
    stage.alert().beginSheet(&stage.window, [&](int) { stage.responses << 2; });
    const QPointer<QMessageBox> second = stage.box();
    QVERIFY(second != first);
    QVERIFY(QTest::qWaitForWindowActive(second, waitLimit));
    press(first, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(stage.responses, QList<int>());
    press(second, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{2});
    QVERIFY(first->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(first, waitLimit));
    press(first, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, (QList<int>{2, 1}));
    QTRY_VERIFY(stage.boxes().isEmpty());
}

void AlertTest::mayBeginAnotherWhenAnswered()
{
    Stage stage;
    stage.alert().beginSheet(&stage.window, [&](int) { stage.begin(stage.alert({u"Again"_s})); });
    press(stage.box(), Qt::Key_Return);
    QTRY_VERIFY(stage.box() && stage.box()->isVisible());
    QCOMPARE(buttonOf(stage.box(), 1000)->text(), u"Again"_s);
    press(stage.box(), Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::mayDeleteTheWindowWhenAnswered()
{
    auto *window = new QWidget;
    const QPointer<QWidget> watched = window;
    window->show();
    Alert alert;
    alert.messageText = u"Message"_s;
    alert.beginSheet(window, [=](int) { delete window; });
    press(window->findChild<QMessageBox *>(), Qt::Key_Return);
    QTRY_VERIFY(!watched);
}

void AlertTest::survivesTheWindowsEnd()
{
    int calls = 0;
    Alert alert;
    for (const bool answered : {false, true}) {
        auto window = std::make_unique<QWidget>();
        window->show();
        alert.beginSheet(window.get(), [&](int) { ++calls; });
        const QPointer<QMessageBox> box = window->findChild<QMessageBox *>();
        if (answered) buttonOf(box, 1000)->click();
        window.reset();
        QVERIFY(!box);
    }
    QCoreApplication::processEvents();
    QCOMPARE(calls, 0);
}

void AlertTest::survivesTheWindowsClose()
{
    Stage stage;
    stage.begin(stage.alert());
    const QPointer<QMessageBox> box = stage.box();
    stage.window.close();
    QCoreApplication::processEvents();
    QVERIFY(box);
    buttonOf(box, 1000)->click();
    QTRY_COMPARE(stage.responses, QList<int>{1000});
    QTRY_VERIFY(!box);
}

void AlertTest::keepsNoProgramRunning()
{
    Stage stage;
    stage.begin(stage.alert());
    constexpr int limit = 20'000; // milliseconds
    QTimer::singleShot(0, &stage.window, &QWidget::close);
    QTimer::singleShot(limit, &stage.window, [] { QCoreApplication::exit(1); });
    QCOMPARE(QCoreApplication::exec(), 0);
}

void AlertTest::worksWithoutAWindow()
{
    int answer = 0;
    Alert alert;
    alert.messageText = u"Message"_s;
    alert.beginSheet(nullptr, [&](int response) { answer = response; });
    QWidget *box = QApplication::activeModalWidget();
    QVERIFY(box);
    press(box, Qt::Key_Return);
    QTRY_COMPARE(answer, 1000);
}

} // namespace tessaly

using tessaly::AlertTest;
TESSALY_GUI_TEST_MAIN(AlertTest)
#include "alert_test.moc"
