#include "support/test_case.h"
#include "ui/symbol_icon.h"

#include <QImage>
#include <QPainter>
#include <QPalette>

using namespace Qt::StringLiterals;
using namespace tessaly;

class SymbolIconTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isDrawnInThePalettesColour_data();
    void isDrawnInThePalettesColour();
    void paintsAsManyPixelsAsTheScreenHas();
    void aChangedCopyStillPaints();
    void anUnknownNameIsNoIcon();
    void theInstalledPicturesShowTheIcon_data();
    void theInstalledPicturesShowTheIcon();
};

namespace {

// The one colour of everything that is fully painted; invalid when nothing is or when there are several.
QColor inkOf(const QImage &picture)
{
    QColor ink;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor pixel = picture.pixelColor(x, y);
            if (pixel.alpha() < 255) continue;
            if (ink.isValid() && ink != pixel) return {};
            ink = pixel;
        }
    }
    return ink;
}

QImage painted(const QIcon &icon, double density, QIcon::Mode mode = QIcon::Normal)
{
    QImage picture(QSize(32, 32) * density, QImage::Format_ARGB32);
    picture.setDevicePixelRatio(density);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    icon.paint(&painter, QRect(0, 0, 32, 32), Qt::AlignCenter, mode);
    return picture;
}

} // namespace

void SymbolIconTest::isDrawnInThePalettesColour_data()
{
    QTest::addColumn<QIcon::Mode>("mode");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("normal") << QIcon::Normal << QColor(10, 20, 30);
    QTest::newRow("disabled") << QIcon::Disabled << QColor(40, 50, 60);
    QTest::newRow("selected") << QIcon::Selected << QColor(70, 80, 90);
}

void SymbolIconTest::isDrawnInThePalettesColour()
{
    QFETCH(QIcon::Mode, mode);
    const QIcon icon = symbolIcon(u"save"_s);
    const QPalette before = QGuiApplication::palette();
    QPalette palette = before;
    palette.setColor(QPalette::Active, QPalette::WindowText, QColor(10, 20, 30));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(40, 50, 60));
    palette.setColor(QPalette::Active, QPalette::HighlightedText, QColor(70, 80, 90));
    QGuiApplication::setPalette(palette);
    const QColor ink = inkOf(icon.pixmap(QSize(32, 32), mode).toImage());
    const QColor paintedInk = inkOf(painted(icon, 1, mode));
    QGuiApplication::setPalette(before);
    QTEST(ink, "colour");
    QTEST(paintedInk, "colour");
}

void SymbolIconTest::paintsAsManyPixelsAsTheScreenHas()
{
    const QIcon icon = symbolIcon(u"open"_s);
    const QImage fine = painted(icon, 2);
    const QImage coarse = painted(icon, 1);
    QVERIFY(inkOf(fine).isValid());
    QImage blown = coarse.scaled(fine.size());
    blown.setDevicePixelRatio(fine.devicePixelRatio());
    QVERIFY(fine != blown);
}

void SymbolIconTest::aChangedCopyStillPaints()
{
    const QIcon icon = symbolIcon(u"help"_s);
    QIcon copy = icon;
    copy.setIsMask(true); // lets go of what both share
    QCOMPARE(painted(copy, 1), painted(icon, 1));
    QVERIFY(inkOf(painted(copy, 1)).isValid());
}

void SymbolIconTest::anUnknownNameIsNoIcon()
{
    QVERIFY(symbolIcon(u"none"_s).isNull());
    QVERIFY(!symbolIcon(u"open"_s).isNull());
}

void SymbolIconTest::theInstalledPicturesShowTheIcon_data()
{
    QTest::addColumn<int>("side");
    for (const int side : {16, 22, 24, 32, 48, 64, 128, 256, 512})
        QTest::addRow("%d", side) << side;
}

void SymbolIconTest::theInstalledPicturesShowTheIcon()
{
    QFETCH(int, side);
    const QImage installed(u"%1/%2x%2/tessaly.png"_s.arg(QStringLiteral(TESSALY_ICON_FOLDER)).arg(side));
    QCOMPARE(installed.size(), QSize(side, side));
    const QImage drawn = applicationIcon().pixmap(QSize(side, side)).toImage();
    QCOMPARE(drawn.size(), installed.size());
    constexpr int unlike = 48; // another version may draw edges a little otherwise
    int differing = 0;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const QColor a = installed.pixelColor(x, y);
            const QColor b = drawn.pixelColor(x, y);
            differing += std::abs(a.alpha() - b.alpha()) > unlike ||
                         (a.alpha() > unlike && std::abs(a.lightness() - b.lightness()) > unlike);
        }
    }
    QVERIFY2(differing <= side * side / 50, qPrintable(QString::number(differing)));
}

TESSALY_GUI_TEST_MAIN(SymbolIconTest)
#include "symbol_icon_test.moc"
