#include "platform/busy_input.h"
#include "support/test_case.h"

#include <QApplication>
#include <QDialog>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

// Notes which kinds of event reach it.
class Target : public QObject
{
public:
    bool event(QEvent *event) override
    {
        seen += event->type();
        return QObject::event(event);
    }
    QList<QEvent::Type> seen;
};

// A window with something to type into, to click and to trigger by a key.
struct Window : QWidget
{
    Window()
    {
        setLayout(new QVBoxLayout);
        layout()->addWidget(&field);
        layout()->addWidget(&button);
        button.setFocusPolicy(Qt::NoFocus); // the field keeps the keyboard
        QObject::connect(&button, &QPushButton::clicked, this, [this] { ++actions; });
        QObject::connect(new QShortcut(QKeySequence(u"Ctrl+O"_s), this), &QShortcut::activated, this,
                         [this] { ++actions; });
        show();
        activateWindow();
        field.setFocus();
        opened = QTest::qWaitForWindowActive(this);
    }

    // What the platform reports when somebody types and clicks; it waits in the queue until events are
    // handled.
    void useLikeAPerson()
    {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            qt_handleKeyEvent(windowHandle(), type, Qt::Key_A, Qt::NoModifier, u"a"_s);
            qt_handleKeyEvent(windowHandle(), type, Qt::Key_O, Qt::ControlModifier, QString());
        }
        const QPointF place = button.mapTo(this, button.rect().center());
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
            qt_handleMouseEvent(windowHandle(), place, mapToGlobal(place), held, Qt::LeftButton, type, {},
                                ++time);
        }
    }

    QLineEdit field;
    QPushButton button{u"Save"_s};
    int actions = 0;
    int time = 1000;
    bool opened = false;
};

void inLocalLoop(const std::function<void()> &work)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, work);
    QTimer::singleShot(50, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

class BusyInputTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void whichEventsPass_data()
    {
        QTest::addColumn<QEvent::Type>("type");
        QTest::addColumn<bool>("passes");
        const std::pair<QEvent::Type, const char *> input[] = {
            {QEvent::KeyPress, "key press"},
            {QEvent::KeyRelease, "key release"},
            {QEvent::ShortcutOverride, "shortcut override"},
            {QEvent::Shortcut, "shortcut"},
            {QEvent::MouseButtonPress, "mouse press"},
            {QEvent::MouseButtonRelease, "mouse release"},
            {QEvent::MouseButtonDblClick, "double click"},
            {QEvent::MouseMove, "mouse move"},
            {QEvent::NonClientAreaMouseButtonPress, "press on the frame"},
            {QEvent::NonClientAreaMouseButtonRelease, "release on the frame"},
            {QEvent::NonClientAreaMouseButtonDblClick, "double click on the frame"},
            {QEvent::NonClientAreaMouseMove, "move on the frame"},
            {QEvent::Wheel, "wheel"},
            {QEvent::TouchBegin, "touch begin"},
            {QEvent::TouchUpdate, "touch update"},
            {QEvent::TouchEnd, "touch end"},
            {QEvent::TouchCancel, "touch cancel"},
            {QEvent::TabletPress, "tablet press"},
            {QEvent::TabletRelease, "tablet release"},
            {QEvent::TabletMove, "tablet move"},
            {QEvent::TabletEnterProximity, "pen comes near"},
            {QEvent::TabletLeaveProximity, "pen goes"},
            {QEvent::NativeGesture, "native gesture"},
            {QEvent::Gesture, "gesture"},
            {QEvent::GestureOverride, "gesture override"},
            {QEvent::ContextMenu, "context menu"},
            {QEvent::InputMethod, "input method"},
            {QEvent::DragEnter, "drag enter"},
            {QEvent::DragMove, "drag move"},
            {QEvent::Drop, "drop"}};
        for (const auto &[type, name] : input)
            QTest::newRow(name) << type << false;
        const std::pair<QEvent::Type, const char *> others[] = {
            {QEvent::DragLeave, "drag leave"},
            {QEvent::Enter, "enter"},
            {QEvent::Leave, "leave"},
            {QEvent::Paint, "paint"},
            {QEvent::UpdateRequest, "update request"},
            {QEvent::Resize, "resize"},
            {QEvent::Timer, "timer"},
            {QEvent::InputMethodQuery, "input method query"},
            {QEvent::Quit, "quit"},
            {QEvent::Close, "close by code"}};
        for (const auto &[type, name] : others)
            QTest::newRow(name) << type << true;
    }

    void whichEventsPass()
    {
        QFETCH(QEvent::Type, type);
        QFETCH(bool, passes);
        Target target;
        const QList<QEvent::Type> once{type};
        {
            const BusyInput busy;
            QEvent event(type);
            QCoreApplication::sendEvent(&target, &event);
            QCOMPARE(target.seen, passes ? once : QList<QEvent::Type>());
        }
        target.seen.clear();
        QEvent event(type);
        QCoreApplication::sendEvent(&target, &event);
        QCOMPARE(target.seen, once);
    }

    void theSenderLearnsTheAnswer_data()
    {
        QTest::addColumn<QEvent::Type>("type");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("a drag is not accepted") << QEvent::DragEnter << false;
        QTest::newRow("a drag that moves is not accepted") << QEvent::DragMove << false;
        QTest::newRow("a drop is not accepted") << QEvent::Drop << false;
        QTest::newRow("a key is not tried as a shortcut") << QEvent::ShortcutOverride << true;
    }

    void theSenderLearnsTheAnswer()
    {
        QFETCH(QEvent::Type, type);
        QFETCH(bool, accepted);
        Target target;
        const BusyInput busy;
        for (const bool before : {true, false}) {
            QEvent event(type);
            event.setAccepted(before);
            QCoreApplication::sendEvent(&target, &event);
            QCOMPARE(event.isAccepted(), accepted);
        }
    }

    void isNestable()
    {
        Target target;
        QVERIFY(!BusyInput::isBusy());
        {
            const BusyInput outer;
            {
                const BusyInput inner;
                QVERIFY(BusyInput::isBusy());
            }
            QVERIFY(BusyInput::isBusy());
            QEvent event(QEvent::KeyPress);
            QCoreApplication::sendEvent(&target, &event);
            QVERIFY(target.seen.isEmpty());
        }
        QVERIFY(!BusyInput::isBusy());
    }

    void aPersonIsHeardBeforeAndAfter()
    {
        Window window;
        QVERIFY(window.opened);
        window.useLikeAPerson();
        QTRY_COMPARE(window.actions, 2);
        QCOMPARE(window.field.text(), u"a"_s);
        {
            const BusyInput busy;
        }
        window.useLikeAPerson();
        QTRY_COMPARE(window.actions, 4);
        QCOMPARE(window.field.text(), u"aa"_s);
    }

    void inputOfTheBusyTimeIsThrownAway_data()
    {
        QTest::addColumn<bool>("handled");
        QTest::newRow("handled by a loop meanwhile") << true;
        QTest::newRow("still waiting at the end") << false;
    }

    void inputOfTheBusyTimeIsThrownAway()
    {
        QFETCH(bool, handled);
        Window window;
        QVERIFY(window.opened);
        {
            const BusyInput outer;
            {
                const BusyInput inner;
                window.useLikeAPerson();
                if (handled) inLocalLoop([] {});
            }
            window.useLikeAPerson();
            if (handled) inLocalLoop([] {});
        }
        QCoreApplication::processEvents();
        QCOMPARE(window.actions, 0);
        QCOMPARE(window.field.text(), QString());
        window.useLikeAPerson();
        QTRY_COMPARE(window.actions, 2);
        QCOMPARE(window.field.text(), u"a"_s);
    }

    void theCloseButtonIsThrownAway()
    {
        Window window;
        QVERIFY(window.opened);
        {
            const BusyInput busy;
            inLocalLoop(
                [&] { window.windowHandle()->close(); }); // the way that the close button's request takes
            QVERIFY(window.isVisible());
        }
        QVERIFY(window.isVisible());
        QVERIFY(window.close());
        QVERIFY(!window.isVisible());
    }

    void codeMayEndASheet()
    {
        Window window;
        QVERIFY(window.opened);
        QDialog sheet(&window);
        sheet.setWindowModality(Qt::WindowModal);
        const BusyInput busy;
        sheet.open();
        inLocalLoop([] {});
        QVERIFY(sheet.isVisible());
        sheet.done(QDialog::Accepted);
        QVERIFY(!sheet.isVisible());
    }

    void theApplicationMayEnd()
    {
        Window window;
        QVERIFY(window.opened);
        QDialog sheet(&window);
        sheet.setWindowModality(Qt::WindowModal);
        sheet.open();
        bool loopEnded = false;
        QTimer::singleShot(0, &window, [&] {
            const BusyInput busy;
            QTimer::singleShot(0, &window, [] { QCoreApplication::quit(); });
            QEventLoop loop;
            QTimer::singleShot(10000, &loop, [] { QCoreApplication::exit(1); });
            loop.exec();
            loopEnded = true;
        });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(loopEnded);
    }
};

} // namespace tessaly::test

TESSALY_GUI_TEST_MAIN(tessaly::test::BusyInputTest)
#include "test_busy_input.moc"
