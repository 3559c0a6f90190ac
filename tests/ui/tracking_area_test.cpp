#include "support/test_case.h"
#include "ui/tracking_area.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace tessaly {

namespace {

class Owner : public QObject
{
public:
    // "entered 20,20" and so on, in order.
    QStringList heard;

    bool event(QEvent *event) override
    {
        if (event->type() != TrackingEvent::eventType()) return QObject::event(event);
        const auto *tracking = static_cast<TrackingEvent *>(event);
        const QStringList words{u"entered"_s, u"exited"_s, u"moved"_s};
        heard << u"%1 %2,%3"_s.arg(words.at(static_cast<int>(tracking->kind())))
                     .arg(tracking->position().x())
                     .arg(tracking->position().y());
        return true;
    }
};

// A shown window with a view of 100 x 80 points, and the pointer outside of the view.
struct Stage
{
    Stage()
    {
        window.setGeometry(100, 100, 200, 150);
        view.setGeometry(50, 50, 100, 80);
        window.show();
        moveTo({-20, -20});
    }

    QPoint inWindow(const QPoint &position) const { return view.mapTo(&window, position); }

    void moveTo(const QPoint &position)
    {
        QTest::mouseMove(window.windowHandle(), inWindow(position));
        QCoreApplication::processEvents();
    }

    Owner owner;
    QWidget window;
    QWidget view{&window};
};

} // namespace

class TrackingAreaTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhatTheMouseDoes();
    void tellsWhenTheMouseLeavesTheView();
    void endsAtTheEdgeOfTheView();
    void tracksOverAViewInside();
    void tracksInADisabledView();
    void tracksInAWindowThatIsNotActive();
    void isSilentWhileAButtonIsHeld();
    void servesTwoAreas();
    void tellsNobodyWhenTheOwnerIsGone();
    void endsWithTheArea();
};

void TrackingAreaTest::tellsWhatTheMouseDoes()
{
    Stage stage;
    new TrackingArea(&stage.view, {20, 10, 40, 40}, &stage.owner);
    stage.moveTo({5, 5});
    QCOMPARE(stage.owner.heard, QStringList());
    stage.moveTo({25, 15});
    stage.moveTo({30, 16});
    stage.moveTo({59, 49});
    stage.moveTo({60, 49});
    stage.moveTo({70, 49});
    QCOMPARE(stage.owner.heard,
             (QStringList{u"entered 25,15"_s, u"moved 30,16"_s, u"moved 59,49"_s, u"exited 60,49"_s}));
}

void TrackingAreaTest::tellsWhenTheMouseLeavesTheView()
{
    Stage stage;
    new TrackingArea(&stage.view, stage.view.rect(), &stage.owner);
    stage.moveTo({5, 5});
    stage.moveTo({-5, 5});
    QCOMPARE(stage.owner.heard.size(), 2);
    QCOMPARE(stage.owner.heard.first(), u"entered 5,5"_s);
    QVERIFY2(stage.owner.heard.last().startsWith("exited"_L1), qPrintable(stage.owner.heard.last()));
}

void TrackingAreaTest::endsAtTheEdgeOfTheView()
{
    Stage stage;
    new TrackingArea(&stage.view, stage.view.rect().adjusted(-40, -40, 40, 40), &stage.owner);
    stage.moveTo({5, 5});
    stage.moveTo({-5, 5});
    stage.moveTo({-8, 5});
    QCOMPARE(stage.owner.heard.size(), 2);
    QVERIFY(stage.owner.heard.last().startsWith("exited"_L1));
}

void TrackingAreaTest::tracksOverAViewInside()
{
    Stage stage;
    new TrackingArea(&stage.view, stage.view.rect(), &stage.owner);
    QLabel inside(u"Label"_s, &stage.view);
    inside.setGeometry(20, 20, 60, 40);
    inside.show();
    stage.moveTo({10, 10});
    stage.moveTo({30, 30});
    stage.moveTo({31, 30});
    QCOMPARE(stage.owner.heard, (QStringList{u"entered 10,10"_s, u"moved 30,30"_s, u"moved 31,30"_s}));
}

void TrackingAreaTest::tracksInADisabledView()
{
    Stage stage;
    new TrackingArea(&stage.view, stage.view.rect(), &stage.owner);
    stage.view.setEnabled(false);
    stage.moveTo({10, 10});
    stage.moveTo({12, 10});
    QCOMPARE(stage.owner.heard, (QStringList{u"entered 10,10"_s, u"moved 12,10"_s}));
}

void TrackingAreaTest::tracksInAWindowThatIsNotActive()
{
    Stage stage;
    new TrackingArea(&stage.view, stage.view.rect(), &stage.owner);
    QWidget other;
    other.setGeometry(400, 400, 50, 50);
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other, test::waitLimit));
    QVERIFY(!stage.window.isActiveWindow());
    stage.moveTo({10, 10});
    QCOMPARE(stage.owner.heard, QStringList{u"entered 10,10"_s});
}

void TrackingAreaTest::isSilentWhileAButtonIsHeld()
{
    Stage stage;
    new TrackingArea(&stage.view, {20, 10, 40, 40}, &stage.owner);
    stage.moveTo({5, 5});
    const QPoint inView = stage.inWindow(QPoint(5, 5));
    QTest::mousePress(stage.window.windowHandle(), Qt::LeftButton, {}, inView);
    stage.moveTo({25, 15});
    QCOMPARE(stage.owner.heard, QStringList());
    QTest::mouseRelease(stage.window.windowHandle(), Qt::LeftButton, {}, stage.inWindow(QPoint(25, 15)));
    stage.moveTo({26, 15});
    QCOMPARE(stage.owner.heard, QStringList{u"entered 26,15"_s});
}

void TrackingAreaTest::servesTwoAreas()
{
    Stage stage;
    Owner second;
    new TrackingArea(&stage.view, {0, 0, 50, 80}, &stage.owner);
    new TrackingArea(&stage.view, {40, 0, 60, 80}, &second);
    stage.moveTo({10, 10});
    stage.moveTo({45, 10});
    stage.moveTo({60, 10});
    QCOMPARE(stage.owner.heard, (QStringList{u"entered 10,10"_s, u"moved 45,10"_s, u"exited 60,10"_s}));
    QCOMPARE(second.heard, (QStringList{u"entered 45,10"_s, u"moved 60,10"_s}));
}

void TrackingAreaTest::tellsNobodyWhenTheOwnerIsGone()
{
    Stage stage;
    auto shortLived = std::make_unique<Owner>();
    new TrackingArea(&stage.view, stage.view.rect(), &stage.owner);
    const auto *area = new TrackingArea(&stage.view, stage.view.rect(), shortLived.get());
    shortLived.reset();
    stage.moveTo({10, 10});
    QVERIFY(!area->owner());
    QCOMPARE(stage.owner.heard, QStringList{u"entered 10,10"_s});
}

void TrackingAreaTest::endsWithTheArea()
{
    Stage stage;
    const auto *area = new TrackingArea(&stage.view, stage.view.rect(), &stage.owner);
    delete area;
    stage.moveTo({10, 10});
    QCOMPARE(stage.owner.heard, QStringList());
}

} // namespace tessaly

using tessaly::TrackingAreaTest;
TESSALY_GUI_TEST_MAIN(TrackingAreaTest)
#include "tracking_area_test.moc"
