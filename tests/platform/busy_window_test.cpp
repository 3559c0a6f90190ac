#include "platform/busy_input.h"
#include "support/test_case.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>
#include <functional>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

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
        opened = QTest::qWaitForWindowActive(this, waitLimit);
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

// The same with a real window, as the platform reports what a person does.
class BusyWindowTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
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
            QTimer::singleShot(waitLimit, &loop, [] { QCoreApplication::exit(1); });
            loop.exec();
            loopEnded = true;
        });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(loopEnded);
    }
};

} // namespace tessaly::test

TESSALY_GUI_TEST_MAIN(tessaly::test::BusyWindowTest)
#include "busy_window_test.moc"
