#include "ui/layer_fixture.h"

namespace tessaly {

using namespace tessaly::test;
using namespace Qt::StringLiterals;

class LayerTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithThePlatformsValues();
    void isOwnedByItsView();
    void paintsNothingAtFirst();
    void paintsNothing_data();
    void paintsNothing();
    void leavesTextAsItIs();
    void fillsTheBackgroundUnderTheContents();
    void roundsTheBackground();
    void paintsTheBorderInsideTheBounds_data();
    void paintsTheBorderInsideTheBounds();
    void paintsTheBorderAboveTheContents();
    void roundsTheBorder();
    void leavesContentsSquareWithoutMask();
    void clipsContentsWithMask();
    void clipsInOneStep();
    void paintsALargeRadiusAsAPill_data();
    void paintsALargeRadiusAsAPill();
    void paintsLayersInsideLayers();
    void paintsOnAWindowsOwnGround();
    void survivesAView0PointsWide();
    void survivesAnotherEffect();
};

void LayerTest::startsWithThePlatformsValues()
{
    const Layer layer;
    QVERIFY(!layer.backgroundColor);
    QCOMPARE(*layer.borderColor, QColor(Qt::black));
    QCOMPARE(layer.borderWidth, 0.0);
    QCOMPARE(layer.cornerRadius, 0.0);
    QCOMPARE(layer.masksToBounds, false);
    QCOMPARE(*layer.shadowColor, QColor(Qt::black));
    QCOMPARE(layer.shadowOffset, QSizeF(0.0, -3.0));
    QCOMPARE(layer.shadowOpacity, 0.0F);
    QCOMPARE(layer.shadowRadius, 3.0);
}

void LayerTest::isOwnedByItsView()
{
    auto view = std::make_unique<QWidget>();
    QVERIFY(!ViewLayer::of(view.get()));
    QPointer<ViewLayer> layer = ViewLayer::wantedFor(view.get());
    QVERIFY(layer->values() == Layer());
    QCOMPARE(ViewLayer::of(view.get()), layer.data());
    QCOMPARE(ViewLayer::wantedFor(view.get()), layer.data());
    QWidget inside(view.get());
    QVERIFY(!ViewLayer::of(&inside));
    inside.setParent(nullptr);
    view.reset();
    QVERIFY(layer.isNull());
}

void LayerTest::paintsNothingAtFirst()
{
    Stage stage;
    const QImage before = pictureOf(&stage.window);
    stage.setLayer({});
    QCOMPARE(pictureOf(&stage.window), before);
    QVERIFY(!stage.view.graphicsEffect());
}

void LayerTest::paintsNothing_data()
{
    QTest::addColumn<Layer>("layer");
    const auto add = [](const char *name, const Layer &layer) { QTest::newRow(name) << layer; };
    add("a background that is transparent", {.backgroundColor = QColor(Qt::transparent)});
    add("a background that is no colour", {.backgroundColor = QColor()});
    add("a border without width", {.borderColor = QColor(Qt::red)});
    add("a border of negative width", {.borderWidth = -2.0});
    add("a border whose width is not a number", {.borderWidth = notANumber});
    add("a border without colour", {.borderColor = std::nullopt, .borderWidth = 2.0});
    add("a radius without mask", {.cornerRadius = 10.0});
    add("a mask without radius", {.masksToBounds = true});
    add("a mask with a negative radius", {.cornerRadius = -4.0, .masksToBounds = true});
    add("a shadow without opacity", {.shadowColor = QColor(Qt::red), .shadowOffset = {9.0, 9.0}});
    add("a shadow of negative opacity", {.shadowOpacity = -1.0F});
    add("a shadow without colour", {.shadowColor = std::nullopt, .shadowOpacity = 1.0F});
}

void LayerTest::paintsNothing()
{
    QFETCH(const Layer, layer);
    Stage stage;
    fill(&stage.view, Qt::white);
    const QImage before = pictureOf(&stage.window);
    stage.setLayer({.backgroundColor = QColor(Qt::red), .borderWidth = 4.0});
    QVERIFY(pictureOf(&stage.window) != before);
    stage.setLayer(layer);
    QVERIFY(!stage.view.graphicsEffect());
    QCOMPARE(pictureOf(&stage.window), before);
    QVERIFY(ViewLayer::of(&stage.view)->values().borderWidth == layer.borderWidth ||
            std::isnan(layer.borderWidth));
}

void LayerTest::leavesTextAsItIs()
{
    Stage stage;
    QLabel label(u"Illegible at 100 %?"_s, &stage.view);
    label.setGeometry(0, 0, 100, 50);
    const QImage before = pictureOf(&stage.window);
    stage.setLayer({.masksToBounds = true});
    QCOMPARE(pictureOf(&stage.window), before);
}

void LayerTest::fillsTheBackgroundUnderTheContents()
{
    Stage stage;
    QWidget contents(&stage.view);
    contents.setGeometry(10, 10, 30, 20);
    fill(&contents, Qt::green);
    stage.setLayer({.backgroundColor = QColor(Qt::white)});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture, expectedPicture(picture, [](QPainter &painter) {
                 painter.fillRect(place, Qt::white);
                 painter.fillRect(QRect(50, 50, 30, 20), Qt::green);
             }));
}

void LayerTest::roundsTheBackground()
{
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white), .cornerRadius = 10.0});
    const QImage picture = pictureOf(&stage.window);
    for (const QPoint corner : {QPoint(41, 41), QPoint(138, 41), QPoint(41, 88), QPoint(138, 88)})
        QCOMPARE(colorAt(picture, corner.x(), corner.y()), ground);
    // On the diagonal the curve runs 2.93 points inside of the corner.
    QCOMPARE(colorAt(picture, 41.5, 41.5), ground);
    QCOMPARE(colorAt(picture, 44.5, 44.5), QColor(Qt::white));
    QCOMPARE(colorAt(picture, 51.0, 40.2), QColor(Qt::white));
}

void LayerTest::paintsTheBorderInsideTheBounds_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<QRect>("inside");
    QTest::newRow("two points leave 96 x 46") << 2.0 << QRect(42, 42, 96, 46);
    QTest::newRow("a fine line") << 1.0 << QRect(41, 41, 98, 48);
    QTest::newRow("half the short side takes all") << 25.0 << QRect();
    QTest::newRow("more than half the short side takes all") << 40.0 << QRect();
    QTest::newRow("infinity takes all") << infinity << QRect();
}

void LayerTest::paintsTheBorderInsideTheBounds()
{
    QFETCH(const double, width);
    QFETCH(const QRect, inside);
    Stage stage;
    fill(&stage.view, Qt::white);
    stage.setLayer({.borderWidth = width});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture, expectedPicture(picture, [&](QPainter &painter) {
                 painter.fillRect(place, Qt::black);
                 painter.fillRect(inside, Qt::white);
             }));
}

void LayerTest::paintsTheBorderAboveTheContents()
{
    Stage stage;
    fill(&stage.view, Qt::white);
    QWidget contents(&stage.view);
    contents.setGeometry(stage.view.rect());
    fill(&contents, Qt::green);
    stage.setLayer({.borderColor = QColor(255, 0, 0, 128), .borderWidth = 3.0});
    const QImage picture = pictureOf(&stage.window);
    const QColor border = colorAt(picture, 41.0, 60.0);
    QVERIFY2(std::abs(border.red() - 128) <= 1 && std::abs(border.green() - 127) <= 1 && border.blue() == 0,
             qPrintable(border.name()));
    QCOMPARE(colorAt(picture, 42.9, 60.0), border);
    QCOMPARE(colorAt(picture, 43.1, 60.0), QColor(Qt::green));
    QCOMPARE(colorAt(picture, 39.9, 60.0), ground);
}

void LayerTest::roundsTheBorder()
{
    Stage stage;
    stage.setLayer({.borderWidth = 4.0, .cornerRadius = 12.0});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(colorAt(picture, 41.0, 41.0), ground);
    // Along the diagonal the ring begins 12 x (1 - 0.7071) = 3.5 points inside of the corner; it is 2.8 wide
    // there.
    QCOMPARE(colorAt(picture, 42.4, 42.4), ground);
    QCOMPARE(colorAt(picture, 45.0, 45.0), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 47.5, 47.5), ground);
    QCOMPARE(colorAt(picture, 90.0, 40.2), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 90.0, 43.8), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 90.0, 44.2), ground);
}

void LayerTest::leavesContentsSquareWithoutMask()
{
    Stage stage;
    QWidget contents(&stage.view);
    contents.setGeometry(stage.view.rect());
    fill(&contents, Qt::green);
    stage.setLayer({.borderWidth = 2.0, .cornerRadius = 10.0});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(colorAt(picture, 40.0, 40.0), QColor(Qt::green));
    QCOMPARE(colorAt(picture, 139.9, 89.9), QColor(Qt::green));
    QCOMPARE(colorAt(picture, 90.0, 41.0), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 43.8, 43.8), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 90.0, 60.0), QColor(Qt::green));
}

void LayerTest::clipsContentsWithMask()
{
    Stage stage;
    fill(&stage.view, Qt::blue);
    QWidget contents(&stage.view);
    contents.setGeometry(stage.view.rect());
    fill(&contents, Qt::green);
    stage.setLayer({.cornerRadius = 10.0, .masksToBounds = true});
    const QImage picture = pictureOf(&stage.window);
    for (const QPoint corner : {QPoint(40, 40), QPoint(139, 40), QPoint(40, 89), QPoint(139, 89)})
        QCOMPARE(colorAt(picture, corner.x(), corner.y()), ground);
    QCOMPARE(colorAt(picture, 41.5, 41.5), ground);
    QCOMPARE(colorAt(picture, 44.5, 44.5), QColor(Qt::green));
    QCOMPARE(colorAt(picture, 40.0, 65.0), QColor(Qt::green));
    QCOMPARE(colorAt(picture, 139.9, 65.0), QColor(Qt::green));
}

// Red background, red contents, black border: along the outer edge only grey and black may mix.
void LayerTest::clipsInOneStep()
{
    Stage stage;
    fill(&stage.view, Qt::red);
    stage.setLayer({.backgroundColor = QColor(Qt::red),
                    .borderWidth = 5.0,
                    .cornerRadius = 20.0,
                    .masksToBounds = true});
    const QImage picture = pictureOf(&stage.window);
    int mixed = 0;
    for (double x = 40.0; x < 48.0; x += 0.5)
        for (double y = 40.0; y < 48.0; y += 0.5) {
            const QColor color = colorAt(picture, x, y);
            QVERIFY2(std::abs(color.red() - color.green()) <= 1 || color.green() == 0,
                     qPrintable(color.name()));
            if (color != ground && color.green() > 0) ++mixed;
        }
    QVERIFY(mixed > 0);
    QCOMPARE(colorAt(picture, 90.0, 65.0), QColor(Qt::red));
}

void LayerTest::paintsALargeRadiusAsAPill_data()
{
    QTest::addColumn<double>("radius");
    QTest::newRow("a little more than half") << 30.0;
    QTest::newRow("far more") << 4000.0;
    QTest::newRow("infinity") << infinity;
}

void LayerTest::paintsALargeRadiusAsAPill()
{
    QFETCH(const double, radius);
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white), .cornerRadius = 25.0});
    const QImage pill = pictureOf(&stage.window);
    // A half circle of 25 points at either end: at 5 points from the top the edge is 10 points from the side.
    QCOMPARE(colorAt(pill, 48.5, 45.0), ground);
    QCOMPARE(colorAt(pill, 51.5, 45.0), QColor(Qt::white));
    QCOMPARE(colorAt(pill, 66.0, 40.2), QColor(Qt::white));
    stage.setLayer({.backgroundColor = QColor(Qt::white), .cornerRadius = radius});
    QCOMPARE(pictureOf(&stage.window), pill);
}

void LayerTest::paintsLayersInsideLayers()
{
    Stage stage;
    QWidget inside(&stage.view);
    inside.setGeometry(10, 10, 40, 30);
    stage.setLayer({.backgroundColor = QColor(Qt::white), .borderWidth = 1.0});
    ViewLayer::wantedFor(&inside)->setValues({.backgroundColor = QColor(Qt::green),
                                              .borderWidth = 2.0,
                                              .shadowOpacity = 1.0F,
                                              .shadowRadius = 0.0});
    stage.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&stage.window, waitLimit));
    QTRY_VERIFY(screenPictureOf(&stage.window) == pictureOf(&stage.window));
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture, expectedPicture(picture, [](QPainter &painter) {
                 painter.fillRect(place, Qt::black);
                 painter.fillRect(QRect(41, 41, 98, 48), Qt::white);
                 painter.fillRect(QRect(50, 50, 40, 33), Qt::black);
                 painter.fillRect(QRect(52, 52, 36, 26), Qt::green);
             }));
    inside.update(3, 3, 2, 2);
    QTRY_VERIFY(screenPictureOf(&stage.window) == picture);
}

void LayerTest::paintsOnAWindowsOwnGround()
{
    QWidget window;
    window.resize(180, 130);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(40, 160, 80)); // as no other test has it
    window.setPalette(palette);
    ViewLayer::wantedFor(&window)->setValues({.backgroundColor = QColor(0, 0, 0, 128), .borderWidth = 5.0});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, waitLimit));
    QTRY_COMPARE(colorAt(screenPictureOf(&window), 4.9, 65.0), QColor(Qt::black));
    const QColor inside = colorAt(screenPictureOf(&window), 5.1, 65.0);
    QVERIFY2(std::abs(inside.red() - 20) <= 1 && std::abs(inside.green() - 80) <= 1,
             qPrintable(inside.name()));
}

void LayerTest::survivesAView0PointsWide()
{
    Stage stage;
    stage.view.resize(0, 20);
    stage.setLayer({.backgroundColor = QColor(Qt::white),
                    .borderWidth = 2.0,
                    .cornerRadius = 5.0,
                    .shadowOpacity = 1.0F});
    stage.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&stage.window, waitLimit));
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture, plainPicture(picture, ground));
}

// Whoever sets an effect of their own on the view takes the layer's place until the layer changes.
void LayerTest::survivesAnotherEffect()
{
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white)});
    stage.view.setGraphicsEffect(new QGraphicsOpacityEffect);
    QCOMPARE(colorAt(pictureOf(&stage.window), 90.0, 65.0), ground);
    stage.setLayer({});
    QVERIFY(qobject_cast<QGraphicsOpacityEffect *>(stage.view.graphicsEffect()));
    stage.setLayer({.backgroundColor = QColor(Qt::red)});
    QCOMPARE(colorAt(pictureOf(&stage.window), 90.0, 65.0), QColor(Qt::red));
}

} // namespace tessaly

using tessaly::LayerTest;
TESSALY_GUI_TEST_MAIN(LayerTest)
#include "layer_test.moc"
