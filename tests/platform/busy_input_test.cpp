#include "platform/busy_input.h"
#include "support/test_case.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

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

    void whatIsPostedDuringTheLastPassIsThrownAwayToo()
    {
        Target target;
        bool posted = false;
        {
            const BusyInput busy;
            QTimer::singleShot(0, &target, [&] {
                QCoreApplication::postEvent(&target, new QEvent(QEvent::KeyPress));
                posted = true;
            });
        }
        QVERIFY(posted);
        QCoreApplication::processEvents();
        QVERIFY(!target.seen.contains(QEvent::KeyPress));
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
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::BusyInputTest)
#include "busy_input_test.moc"
