#include "ui/layer_fixture.h"

namespace tessaly {

using namespace tessaly::test;
using namespace Qt::StringLiterals;

class LayerShadowTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void dropsAHardShadow_data();
    void dropsAHardShadow();
    void blursTheShadowAsAGaussian_data();
    void blursTheShadowAsAGaussian();
    void fadesTheShadow_data();
    void fadesTheShadow();
    void dropsNoShadowWithMask();
    void dropsTheShadowOfTheContents();
    void redrawsTheShadowOfChangedContents();
    void paintsTheShadowBetweenTheSiblings();
    void cutsTheShadowAtTheParent();
    void keepsTheScreenRight_data();
    void keepsTheScreenRight();
};

void LayerShadowTest::dropsAHardShadow_data()
{
    QTest::addColumn<QSizeF>("offset");
    QTest::addColumn<QPoint>("shift");
    QTest::newRow("three points down") << QSizeF(0.0, -3.0) << QPoint(0, 3);
    QTest::newRow("up") << QSizeF(0.0, 5.0) << QPoint(0, -5);
    QTest::newRow("right and down") << QSizeF(4.0, -2.0) << QPoint(4, 2);
    QTest::newRow("left") << QSizeF(-7.0, 0.0) << QPoint(-7, 0);
    QTest::newRow("away from the view") << QSizeF(-10.0, 52.0) << QPoint(-10, -52);
    QTest::newRow("out of sight") << QSizeF(1e300, -infinity) << QPoint(5000, 5000);
    QTest::newRow("not a number counts as 0") << QSizeF(notANumber, -6.0) << QPoint(0, 6);
}

void LayerShadowTest::dropsAHardShadow()
{
    QFETCH(const QSizeF, offset);
    QFETCH(const QPoint, shift);
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white),
                    .shadowOffset = offset,
                    .shadowOpacity = 1.0F,
                    .shadowRadius = 0.0});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture, expectedPicture(picture, [&](QPainter &painter) {
                 painter.fillRect(place.translated(shift), Qt::black);
                 painter.fillRect(place, Qt::white);
             }));
}

void LayerShadowTest::blursTheShadowAsAGaussian_data()
{
    QTest::addColumn<double>("radius");
    QTest::newRow("1 point") << 1.0;
    QTest::newRow("2.5 points") << 2.5;
    QTest::newRow("3 points") << 3.0;
    QTest::newRow("6 points") << 6.0;
}

// The darkness at a distance from a straight edge is that of a blurred step.
void LayerShadowTest::blursTheShadowAsAGaussian()
{
    QFETCH(const double, radius);
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white),
                    .shadowOffset = {0.0, 0.0},
                    .shadowOpacity = 1.0F,
                    .shadowRadius = radius});
    const QImage picture = pictureOf(&stage.window);
    const double ratio = picture.devicePixelRatio();
    double largestError = 0.0;
    // Both sides across count; the other two are too far away.
    const auto compare = [&](double distance, double across, const QColor &shown) {
        const double darkness = gaussianStep(distance, radius) - gaussianStep(distance + across, radius);
        largestError = std::max(largestError, std::abs(shown.red() - ground.red() * (1.0 - darkness)));
    };
    for (int pixel = 0; pixel < 30 * ratio; ++pixel) {
        const double distance = (pixel + 0.5) / ratio;
        compare(distance, place.height(), colorAt(picture, 90.0, place.bottom() + 1 + distance));
        compare(distance, place.width(), colorAt(picture, place.right() + 1 + distance, 65.0));
    }
    QVERIFY2(largestError <= 0.015 * ground.red(), qPrintable(QString::number(largestError)));
}

void LayerShadowTest::fadesTheShadow_data()
{
    QTest::addColumn<float>("opacity");
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QColor>("shown");
    QTest::newRow("half") << 0.5F << QColor(0, 0, 0) << QColor(100, 100, 100);
    QTest::newRow("whole") << 1.0F << QColor(0, 0, 200) << QColor(0, 0, 200);
    QTest::newRow("more than whole") << 7.0F << QColor(0, 0, 0) << QColor(0, 0, 0);
    QTest::newRow("times the colour's alpha") << 0.5F << QColor(0, 0, 0, 128) << QColor(150, 150, 150);
}

void LayerShadowTest::fadesTheShadow()
{
    QFETCH(const float, opacity);
    QFETCH(const QColor, color);
    QFETCH(const QColor, shown);
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white),
                    .shadowColor = color,
                    .shadowOffset = {0.0, -9.0},
                    .shadowOpacity = opacity,
                    .shadowRadius = 0.0});
    const QColor seen = colorAt(pictureOf(&stage.window), 90.0, 95.0);
    QVERIFY2(std::abs(seen.red() - shown.red()) <= 1 && std::abs(seen.blue() - shown.blue()) <= 1,
             qPrintable(seen.name()));
}

void LayerShadowTest::dropsNoShadowWithMask()
{
    Stage stage;
    stage.setLayer({.backgroundColor = QColor(Qt::white),
                    .masksToBounds = true,
                    .shadowOffset = {0.0, -9.0},
                    .shadowOpacity = 1.0F});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture,
             expectedPicture(picture, [](QPainter &painter) { painter.fillRect(place, Qt::white); }));
}

void LayerShadowTest::dropsTheShadowOfTheContents()
{
    Stage stage;
    QWidget contents(&stage.view);
    contents.setGeometry(10, 10, 30, 20);
    fill(&contents, Qt::green);
    stage.setLayer({.shadowOffset = {5.0, -5.0}, .shadowOpacity = 1.0F, .shadowRadius = 0.0});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(picture, expectedPicture(picture, [](QPainter &painter) {
                 painter.fillRect(QRect(55, 55, 30, 20), Qt::black);
                 painter.fillRect(QRect(50, 50, 30, 20), Qt::green);
             }));
}

void LayerShadowTest::redrawsTheShadowOfChangedContents()
{
    Stage stage;
    QWidget contents(&stage.view);
    contents.setGeometry(10, 10, 30, 20);
    fill(&contents, Qt::green);
    const Layer hard{.shadowOffset = {5.0, -5.0}, .shadowOpacity = 1.0F, .shadowRadius = 0.0};
    stage.setLayer(hard);
    QCOMPARE(colorAt(pictureOf(&stage.window), 82.0, 60.0), QColor(Qt::black));
    contents.move(20, 10);
    QCOMPARE(colorAt(pictureOf(&stage.window), 82.0, 60.0), QColor(Qt::green));
    QCOMPARE(colorAt(pictureOf(&stage.window), 92.0, 60.0), QColor(Qt::black));

    Layer blue = hard;
    blue.shadowColor = QColor(Qt::blue);
    stage.setLayer(blue);
    QCOMPARE(colorAt(pictureOf(&stage.window), 92.0, 60.0), QColor(Qt::blue));
    for (const double radius : {2.0, 4.0}) {
        blue.shadowRadius = radius;
        stage.setLayer(blue);
        const QImage shown = pictureOf(&stage.window);
        stage.setLayer({});
        stage.setLayer(blue);
        QCOMPARE(shown, pictureOf(&stage.window));
    }
}

void LayerShadowTest::paintsTheShadowBetweenTheSiblings()
{
    Stage stage;
    QWidget behind(&stage.window);
    behind.setGeometry(0, 95, 90, 35);
    fill(&behind, Qt::yellow);
    behind.lower();
    QWidget before(&stage.window);
    before.setGeometry(90, 95, 90, 35);
    fill(&before, Qt::cyan);
    before.raise();
    stage.setLayer({.backgroundColor = QColor(Qt::white),
                    .shadowOffset = {0.0, -15.0},
                    .shadowOpacity = 1.0F,
                    .shadowRadius = 0.0});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(colorAt(picture, 60.0, 100.0), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 60.0, 110.0), QColor(Qt::yellow));
    QCOMPARE(colorAt(picture, 120.0, 100.0), QColor(Qt::cyan));
}

void LayerShadowTest::cutsTheShadowAtTheParent()
{
    Stage stage;
    QWidget inside(&stage.view);
    inside.setGeometry(80, 10, 15, 15);
    fill(&inside, Qt::green);
    ViewLayer::wantedFor(&inside)->setValues(
        {.shadowOffset = {12.0, 0.0}, .shadowOpacity = 1.0F, .shadowRadius = 0.0});
    const QImage picture = pictureOf(&stage.window);
    QCOMPARE(colorAt(picture, 139.0, 55.0), QColor(Qt::black));
    QCOMPARE(colorAt(picture, 140.5, 55.0), ground);
}

// What is on the screen after each change, put together from partial repaints, is what a new picture shows.
void LayerShadowTest::keepsTheScreenRight_data()
{
    QTest::addColumn<Layer>("layer");
    const auto add = [](const char *name, const Layer &layer) { QTest::newRow(name) << layer; };
    add("a translucent border", {.borderColor = QColor(0, 0, 255, 100), .borderWidth = 6.0});
    add("rounded clipping", {.backgroundColor = QColor(255, 255, 255, 90),
                             .borderWidth = 2.0,
                             .cornerRadius = 15.0,
                             .masksToBounds = true});
    add("a blurred shadow",
        {.backgroundColor = QColor(Qt::white), .shadowOffset = {6.0, -8.0}, .shadowOpacity = 0.8F});
    add("a shadow of the contents", {.shadowOffset = {3.0, 3.0}, .shadowOpacity = 0.5F, .shadowRadius = 5.0});
}

void LayerShadowTest::keepsTheScreenRight()
{
    QFETCH(const Layer, layer);
    Stage stage;
    QLabel label(u"Text"_s, &stage.view);
    label.setGeometry(20, 10, 60, 30);
    stage.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&stage.window, waitLimit));
    const auto screenIsRight = [&] { return screenPictureOf(&stage.window) == pictureOf(&stage.window); };
    const QImage bare = pictureOf(&stage.window);

    stage.setLayer(layer);
    QTRY_VERIFY(screenIsRight());
    QVERIFY(pictureOf(&stage.window) != bare);
    const QImage styled = pictureOf(&stage.window);
    label.setText(u"Other"_s);
    QTRY_VERIFY(screenIsRight());
    QVERIFY(pictureOf(&stage.window) != styled);
    label.update(3, 3, 5, 5);
    QTRY_VERIFY(screenIsRight());
    stage.window.update(30, 80, 30, 15);
    QTRY_VERIFY(screenIsRight());
    stage.view.move(50, 30);
    QTRY_VERIFY(screenIsRight());
    stage.view.resize(80, 70);
    QTRY_VERIFY(screenIsRight());
    label.hide();
    QTRY_VERIFY(screenIsRight());
    stage.view.hide();
    QTRY_VERIFY(screenIsRight());
    stage.view.setGeometry(place);
    label.setText(u"Text"_s);
    label.show();
    stage.view.show();
    QTRY_VERIFY(screenIsRight());
    QCOMPARE(pictureOf(&stage.window), styled);

    Layer larger = layer;
    larger.shadowOffset = {-9.0, 9.0};
    larger.borderWidth += 3.0;
    stage.setLayer(larger);
    QTRY_VERIFY(screenIsRight());
    stage.setLayer({});
    QTRY_VERIFY(screenIsRight());
    QCOMPARE(screenPictureOf(&stage.window), bare);
}

} // namespace tessaly

using tessaly::LayerShadowTest;
TESSALY_GUI_TEST_MAIN(LayerShadowTest)
#include "layer_shadow_test.moc"
