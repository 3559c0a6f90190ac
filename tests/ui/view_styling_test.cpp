#include "support/test_case.h"
#include "ui/tracking_area.h"
#include "ui/view_styling.h"

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>

#include <limits>

using namespace Qt::StringLiterals;

namespace tessaly {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using MaybeColor = std::optional<QColor>;
using SetColor = void (ViewStyling::*)(const MaybeColor &);
using GetColor = MaybeColor (ViewStyling::*)() const;
using SetLength = void (ViewStyling::*)(double);
using GetLength = double (ViewStyling::*)() const;

// Every geometry that a view takes on, in order.
class FrameLog : public QObject
{
public:
    explicit FrameLog(QWidget *view) : m_view(view) { view->installEventFilter(this); }

    QList<QRect> frames;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        const bool written = event->type() == QEvent::Move || event->type() == QEvent::Resize;
        if (written && (frames.isEmpty() || frames.last() != m_view->geometry()))
            frames << m_view->geometry();
        return false;
    }

private:
    QWidget *m_view;
};

} // namespace

class ViewStylingTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsDefaultsWithoutMakingALayer();
    void readsTheLayersInitialValues();
    void makesALayerWithEachSetter_data();
    void makesALayerWithEachSetter();
    void makesALayerForAnEqualValue();
    void keepsAndClearsColors_data();
    void keepsAndClearsColors();
    void keepsLengthsAsTheyAre_data();
    void keepsLengthsAsTheyAre();
    void keepsTheOffset();
    void keepsTheOpacityAsItIs();
    void cutsTheCornerRadius_data();
    void cutsTheCornerRadius();
    void masksWithEachCornerRadius();
    void changesOneValueOnly();
    void setsTheOriginInTwoSteps();
    void setsTheSizeInTwoSteps();
    void setsOneSideInOneStep();
    void addsATrackingArea();
};

void ViewStylingTest::readsDefaultsWithoutMakingALayer()
{
    QWidget view;
    const ViewStyling styling(&view);
    QVERIFY(!styling.backgroundColor());
    QVERIFY(!styling.borderColor());
    QCOMPARE(styling.borderWidth(), 0.0);
    QCOMPARE(styling.cornerRadius(), 0.0);
    QVERIFY(!styling.shadowColor());
    QCOMPARE(styling.shadowOffset(), QSizeF(0.0, 0.0));
    QCOMPARE(styling.shadowOpacity(), 0.0F);
    QCOMPARE(styling.shadowRadius(), 0.0);
    QVERIFY(!styling.wantsLayer());
}

void ViewStylingTest::readsTheLayersInitialValues()
{
    QWidget view;
    ViewLayer::wantedFor(&view);
    const ViewStyling styling(&view);
    QVERIFY(styling.wantsLayer());
    QVERIFY(!styling.backgroundColor());
    QCOMPARE(styling.borderColor(), MaybeColor(Qt::black));
    QCOMPARE(styling.shadowColor(), MaybeColor(Qt::black));
    QCOMPARE(styling.shadowOffset(), QSizeF(0.0, -3.0));
    QCOMPARE(styling.shadowRadius(), 3.0);
}

void ViewStylingTest::makesALayerWithEachSetter_data()
{
    using Set = std::function<void(ViewStyling)>;
    QTest::addColumn<Set>("set");
    QTest::newRow("backgroundColor") << Set([](ViewStyling view) { view.setBackgroundColor(std::nullopt); });
    QTest::newRow("borderColor") << Set([](ViewStyling view) { view.setBorderColor(QColor(Qt::red)); });
    QTest::newRow("borderWidth") << Set([](ViewStyling view) { view.setBorderWidth(0.0); });
    QTest::newRow("cornerRadius") << Set([](ViewStyling view) { view.setCornerRadius(0.0); });
    QTest::newRow("cornerRadius that does not fit")
        << Set([](ViewStyling view) { view.setCornerRadius(1e300); });
    QTest::newRow("shadowColor") << Set([](ViewStyling view) { view.setShadowColor(std::nullopt); });
    QTest::newRow("shadowOffset") << Set([](ViewStyling view) { view.setShadowOffset({0.0, 0.0}); });
    QTest::newRow("shadowOpacity") << Set([](ViewStyling view) { view.setShadowOpacity(0.0F); });
    QTest::newRow("shadowRadius") << Set([](ViewStyling view) { view.setShadowRadius(0.0); });
}

void ViewStylingTest::makesALayerWithEachSetter()
{
    QFETCH(const std::function<void(ViewStyling)>, set);
    QWidget view;
    set(ViewStyling(&view));
    QVERIFY(ViewStyling(&view).wantsLayer());
}

void ViewStylingTest::makesALayerForAnEqualValue()
{
    QWidget view;
    ViewStyling(&view).setShadowRadius(ViewStyling(&view).shadowRadius());
    QVERIFY(ViewStyling(&view).wantsLayer());
    QCOMPARE(ViewStyling(&view).shadowRadius(), 0.0);
}

void ViewStylingTest::keepsAndClearsColors_data()
{
    QTest::addColumn<SetColor>("set");
    QTest::addColumn<GetColor>("get");
    QTest::newRow("backgroundColor") << &ViewStyling::setBackgroundColor << &ViewStyling::backgroundColor;
    QTest::newRow("borderColor") << &ViewStyling::setBorderColor << &ViewStyling::borderColor;
    QTest::newRow("shadowColor") << &ViewStyling::setShadowColor << &ViewStyling::shadowColor;
}

void ViewStylingTest::keepsAndClearsColors()
{
    QFETCH(const SetColor, set);
    QFETCH(const GetColor, get);
    QWidget view;
    ViewStyling styling(&view);
    (styling.*set)(QColor(10, 20, 30, 40));
    QCOMPARE((styling.*get)(), MaybeColor(QColor(10, 20, 30, 40)));
    (styling.*set)(std::nullopt);
    QCOMPARE((styling.*get)(), MaybeColor());
    (styling.*set)(QColor(Qt::red));
    (styling.*set)(QColor());
    QCOMPARE((styling.*get)(), MaybeColor());
    QVERIFY(styling.wantsLayer());
}

void ViewStylingTest::keepsLengthsAsTheyAre_data()
{
    QTest::addColumn<SetLength>("set");
    QTest::addColumn<GetLength>("get");
    QTest::addColumn<double>("value");
    for (const double value : {2.5, 0.001, -4.0, 1e300, -infinity}) {
        QTest::addRow("borderWidth %g", value)
            << &ViewStyling::setBorderWidth << &ViewStyling::borderWidth << value;
        QTest::addRow("shadowRadius %g", value)
            << &ViewStyling::setShadowRadius << &ViewStyling::shadowRadius << value;
    }
}

void ViewStylingTest::keepsLengthsAsTheyAre()
{
    QFETCH(const SetLength, set);
    QFETCH(const GetLength, get);
    QFETCH(const double, value);
    QWidget view;
    ViewStyling styling(&view);
    (styling.*set)(value);
    QVERIFY((styling.*get)() == value);
}

void ViewStylingTest::keepsTheOffset()
{
    QWidget view;
    ViewStyling(&view).setShadowOffset({2.0, -2.0});
    QVERIFY(ViewStyling(&view).shadowOffset() == QSizeF(2.0, -2.0));
    ViewStyling(&view).setShadowOffset({-1.25, 1e9});
    QVERIFY(ViewStyling(&view).shadowOffset() == QSizeF(-1.25, 1e9));
}

void ViewStylingTest::keepsTheOpacityAsItIs()
{
    QWidget view;
    for (const float opacity : {0.1F, 1.0F, 4.0F, -2.0F}) {
        ViewStyling(&view).setShadowOpacity(opacity);
        QVERIFY(ViewStyling(&view).shadowOpacity() == opacity);
    }
}

void ViewStylingTest::cutsTheCornerRadius_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("stored");
    QTest::newRow("cut, not rounded") << 12.345 << 12.34;
    QTest::newRow("cut towards zero") << -3.999 << 3.99;
    QTest::newRow("without its sign") << -6.5 << 6.5;
    QTest::newRow("too small") << 0.004 << 0.0;
    QTest::newRow("too small, negative") << -0.009 << 0.0;
    QTest::newRow("whole") << 25.0 << 25.0;
    QTest::newRow("the least that fits") << -9.223372036854775808e16 << 9.223372036854775808e16;
    // 7 is the radius before.
    QTest::newRow("the first that does not fit") << 9.223372036854775808e16 << 7.0;
    QTest::newRow("far too large") << 1e308 << 7.0;
    QTest::newRow("far too small") << -1e30 << 7.0;
    QTest::newRow("infinite") << infinity << 7.0;
    QTest::newRow("minus infinite") << -infinity << 7.0;
    QTest::newRow("not a number") << notANumber << 7.0;
}

void ViewStylingTest::cutsTheCornerRadius()
{
    QFETCH(const double, given);
    QFETCH(const double, stored);
    QWidget view;
    ViewStyling styling(&view);
    styling.setCornerRadius(7.0);
    styling.setCornerRadius(given);
    QVERIFY(styling.cornerRadius() == stored);
    QVERIFY(!std::signbit(styling.cornerRadius()));
}

void ViewStylingTest::masksWithEachCornerRadius()
{
    QWidget view;
    ViewStyling(&view).setBorderWidth(1.0);
    QVERIFY(!ViewLayer::of(&view)->values().masksToBounds);
    ViewStyling(&view).setCornerRadius(0.0);
    QVERIFY(ViewLayer::of(&view)->values().masksToBounds);
    ViewStyling(&view).setBorderWidth(2.0);
    QVERIFY(ViewLayer::of(&view)->values().masksToBounds);
}

void ViewStylingTest::changesOneValueOnly()
{
    QWidget view;
    ViewStyling styling(&view);
    Layer expected;
    const auto isAsExpected = [&] { return ViewLayer::of(&view)->values() == expected; };
    styling.setBackgroundColor(QColor(1, 2, 3));
    expected.backgroundColor = QColor(1, 2, 3);
    QVERIFY(isAsExpected());
    styling.setBorderColor(QColor(4, 5, 6));
    expected.borderColor = QColor(4, 5, 6);
    QVERIFY(isAsExpected());
    styling.setBorderWidth(7.0);
    expected.borderWidth = 7.0;
    QVERIFY(isAsExpected());
    styling.setShadowColor(QColor(8, 9, 10));
    expected.shadowColor = QColor(8, 9, 10);
    QVERIFY(isAsExpected());
    styling.setShadowOffset({11.0, 12.0});
    expected.shadowOffset = {11.0, 12.0};
    QVERIFY(isAsExpected());
    styling.setShadowOpacity(0.5F);
    expected.shadowOpacity = 0.5F;
    QVERIFY(isAsExpected());
    styling.setShadowRadius(13.0);
    expected.shadowRadius = 13.0;
    QVERIFY(isAsExpected());
    styling.setCornerRadius(14.0);
    expected.cornerRadius = 14.0;
    expected.masksToBounds = true;
    QVERIFY(isAsExpected());
}

void ViewStylingTest::setsTheOriginInTwoSteps()
{
    QWidget window;
    QWidget view(&window);
    view.setGeometry(10, 20, 30, 40);
    window.show();
    FrameLog log(&view);
    ViewStyling(&view).setOrigin({11, 22});
    QCOMPARE(log.frames, (QList<QRect>{{11, 20, 30, 40}, {11, 22, 30, 40}}));
    QCOMPARE(ViewStyling(&view).origin(), QPoint(11, 22));
}

void ViewStylingTest::setsTheSizeInTwoSteps()
{
    QWidget window;
    QWidget view(&window);
    view.setGeometry(10, 20, 30, 40);
    window.show();
    FrameLog log(&view);
    ViewStyling(&view).setSize({33, 44});
    QCOMPARE(log.frames, (QList<QRect>{{10, 20, 33, 40}, {10, 20, 33, 44}}));
    QCOMPARE(ViewStyling(&view).size(), QSize(33, 44));
}

void ViewStylingTest::setsOneSideInOneStep()
{
    QWidget window;
    QWidget view(&window);
    view.setGeometry(10, 20, 30, 40);
    window.show();
    FrameLog log(&view);
    ViewStyling(&view).setWidth(35);
    ViewStyling(&view).setHeight(45);
    QCOMPARE(log.frames, (QList<QRect>{{10, 20, 35, 40}, {10, 20, 35, 45}}));
    QCOMPARE(ViewStyling(&view).width(), 35);
    QCOMPARE(ViewStyling(&view).height(), 45);
    QVERIFY(!ViewStyling(&view).wantsLayer());
}

void ViewStylingTest::addsATrackingArea()
{
    QWidget view;
    QObject owner;
    const TrackingArea *area = ViewStyling(&view).addTrackingArea({1, 2, 3, 4}, &owner);
    QCOMPARE(area->rectangle(), QRect(1, 2, 3, 4));
    QCOMPARE(area->owner(), &owner);
    QCOMPARE(area->parent(), &view);
}

} // namespace tessaly

using tessaly::ViewStylingTest;
TESSALY_GUI_TEST_MAIN(ViewStylingTest)
#include "view_styling_test.moc"
