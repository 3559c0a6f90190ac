#include "support/test_case.h"
#include "ui/image_drop_view.h"
#include "ui/view_styling.h"

#include <QApplication>
#include <QScreen>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

constexpr QRgb ground = 0xFFFF00FF;
constexpr QRgb red = 0xFFFF0000;

QImage plain(const QSize &size, QRgb color = red)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

// Black and white by turns, pixel by pixel.
QImage chequered(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, (x + y) % 2 ? 0xFF000000 : 0xFFFFFFFF);
    }
    return image;
}

// What the view paints, at a scale of the screen, on a ground that it leaves where it shows nothing.
QImage painted(ImageDropView &view, qreal scale = 1)
{
    QImage image((QSizeF(view.size()) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(ground);
    view.render(&image, {}, {}, QWidget::RenderFlags());
    return image;
}

// The smallest rectangle around all pixels that are not ground.
QRect covered(const QImage &image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != ground) area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

class ImageDropViewTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fitsTheImage_data();
    void fitsTheImage();
    void fillsThePlaceEvenly();
    void isSharpAtEveryScale_data();
    void isSharpAtEveryScale();
    void mixesColoursWhenScaling();
    void followsTheSize();
    void showsANewImageOfTheSameSize();
    void paintsANewImageOnTheScreen();
    void showsNothingWithoutAnImage();
    void ignoresTheResolutionOfTheFile();
    void takesTheRoomThatIsThere();
    void isLayerBackedFromTheStart();
    void refusesToBeMadeWithAFrame();
};

void ImageDropViewTest::fitsTheImage_data()
{
    QTest::addColumn<QSize>("image");
    QTest::addColumn<QSize>("view");
    QTest::addColumn<qreal>("scale");
    QTest::addColumn<QRect>("place"); // in pixels of the screen
    const auto row = [](const char *name, QSize image, QSize view, qreal scale, QRect place) {
        QTest::newRow(name) << image << view << scale << place;
    };
    row("same size", {40, 30}, {40, 30}, 1, {0, 0, 40, 30});
    row("too large, wide", {400, 200}, {100, 100}, 1, {0, 25, 100, 50});
    row("too large, tall", {200, 400}, {100, 100}, 1, {25, 0, 50, 100});
    row("small is enlarged", {4, 3}, {80, 80}, 1, {0, 10, 80, 60});
    row("a line stays visible", {2000, 1}, {100, 51}, 1, {0, 25, 100, 1});
    row("200 %", {400, 200}, {100, 100}, 2, {0, 50, 200, 100});
    row("150 %", {400, 200}, {80, 80}, 1.5, {0, 30, 120, 60});
}

void ImageDropViewTest::fitsTheImage()
{
    QFETCH(QSize, image);
    QFETCH(QSize, view);
    QFETCH(qreal, scale);
    QFETCH(QRect, place);
    ImageDropView dropView;
    dropView.resize(view);
    dropView.setImage(plain(image));
    QCOMPARE(covered(painted(dropView, scale)), place);
}

void ImageDropViewTest::fillsThePlaceEvenly()
{
    ImageDropView view;
    view.resize(100, 100);
    view.setImage(plain({400, 200}));
    QCOMPARE(painted(view).copy(0, 25, 100, 50), plain({100, 50}));
}

void ImageDropViewTest::isSharpAtEveryScale_data()
{
    QTest::addColumn<qreal>("scale");
    QTest::newRow("100 %") << 1.0;
    QTest::newRow("150 %") << 1.5;
    QTest::newRow("200 %") << 2.0;
}

void ImageDropViewTest::isSharpAtEveryScale()
{
    QFETCH(qreal, scale);
    const QSize size(60, 40);
    ImageDropView view;
    view.resize(size);
    const QImage image = chequered((QSizeF(size) * scale).toSize());
    view.setImage(image);
    QImage shown = painted(view, scale);
    shown.setDevicePixelRatio(1);
    QCOMPARE(shown, image);
}

void ImageDropViewTest::mixesColoursWhenScaling()
{
    ImageDropView view;
    view.resize(20, 20);
    view.setImage(chequered({80, 80}));
    const int middle = qGray(painted(view).pixel(10, 10));
    QVERIFY2(middle > 64 && middle < 192, qPrintable(QString::number(middle)));
}

void ImageDropViewTest::followsTheSize()
{
    ImageDropView view;
    view.setImage(plain({10, 10}));
    view.resize(50, 50);
    QCOMPARE(covered(painted(view)), QRect(0, 0, 50, 50));
    view.resize(80, 70);
    QCOMPARE(covered(painted(view)), QRect(5, 0, 70, 70));
}

void ImageDropViewTest::showsANewImageOfTheSameSize()
{
    ImageDropView view;
    view.resize(50, 50);
    view.setImage(plain({10, 10}));
    painted(view);
    view.setImage(plain({10, 10}, 0xFF0000FF));
    QCOMPARE(painted(view), plain({50, 50}, 0xFF0000FF));
    QCOMPARE(view.image(), plain({10, 10}, 0xFF0000FF));
}

void ImageDropViewTest::paintsANewImageOnTheScreen()
{
    ImageDropView view;
    view.resize(50, 50);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view, test::waitLimit));
    QScreen *screen = view.screen();
    const auto onScreen = [&] { return screen->grabWindow(view.winId()).toImage().pixel(25, 25); };
    view.setImage(plain({10, 10}));
    QTRY_COMPARE(onScreen(), red);
    view.setImage(plain({10, 10}, 0xFF0000FF));
    QTRY_COMPARE(onScreen(), 0xFF0000FFU);
}

void ImageDropViewTest::showsNothingWithoutAnImage()
{
    ImageDropView view;
    view.resize(50, 50);
    QCOMPARE(covered(painted(view)), QRect());
    view.setImage(plain({10, 10}));
    QCOMPARE(covered(painted(view)), QRect(0, 0, 50, 50));
    view.setImage({});
    QCOMPARE(covered(painted(view)), QRect());
    QVERIFY(view.image().isNull());
}

void ImageDropViewTest::ignoresTheResolutionOfTheFile()
{
    QImage dense = plain({10, 5});
    dense.setDevicePixelRatio(2);
    dense.setDotsPerMeterX(10000);
    ImageDropView view;
    view.resize(40, 40);
    view.setImage(dense);
    QCOMPARE(covered(painted(view)), QRect(0, 10, 40, 20));
}

void ImageDropViewTest::takesTheRoomThatIsThere()
{
    const ImageDropView view;
    QVERIFY(view.sizeHint().isValid());
    QVERIFY(view.minimumSizeHint().width() <= view.sizeHint().width());
    QCOMPARE(view.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(view.sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
}

void ImageDropViewTest::isLayerBackedFromTheStart()
{
    ImageDropView view;
    QVERIFY(ViewStyling(&view).wantsLayer());
    QVERIFY(!view.graphicsEffect()); // there is nothing to paint yet
}

void ImageDropViewTest::refusesToBeMadeWithAFrame()
{
    int output[2];
    QCOMPARE(::pipe(output), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(output[1], STDERR_FILENO);
        std::signal(SIGABRT, SIG_DFL);
        qInstallMessageHandler(nullptr);
        const ImageDropView view(QRect(0, 0, 10, 10));
        ::_exit(0);
    }
    ::close(output[1]);
    QByteArray text(4096, '\0');
    text.truncate(::read(output[0], text.data(), static_cast<std::size_t>(text.size())));
    ::close(output[0]);
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGABRT);
    QVERIFY2(text.contains("init(frame:)") && text.contains("ImageDropView"), text.constData());
}

TESSALY_GUI_TEST_MAIN(ImageDropViewTest)
#include "image_drop_view_test.moc"
