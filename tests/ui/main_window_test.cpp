// The window by itself: what it shows, and how it takes its room.
#include "support/test_case.h"
#include "ui/alert.h"
#include "ui/file_panels.h"
#include "ui/image_drop_view.h"
#include "ui/main_window.h"
#include "ui/mnemonics.h"
#include "ui/number_field.h"
#include "ui/progress_sheet.h"
#include "ui/slider.h"
#include "ui/window_memory.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QStatusTipEvent>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

using Text = MainWindow::PosterText;
Q_DECLARE_METATYPE(MainWindow::PosterText)

class MainWindowTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void noMnemonicStandsTwice();
    void aMenuLeavesTheStatusAlone();
    void tellsWhatIsInThePostersPlace_data();
    void tellsWhatIsInThePostersPlace();
    void theButtonOpensAVideo();
    void captionsAreGreyedWithTheirControls();
    void hasRoomForTheSlider_data();
    void hasRoomForTheSlider();
    void theCaptionMovesNothing();
    void tellsPercentages();
    void followsALargerType();
    void allBeginsOnOneEdge_data();
    void allBeginsOnOneEdge();
    void alignsTheLabelsInBothDirections();
    void remembersItsSize();
    void neverGrowsBeyondTheScreen();

private:
    template<class T>
    static T *find(const QObject &window, const char *name)
    {
        return window.findChild<T *>(QLatin1StringView(name));
    }
};

void MainWindowTest::noMnemonicStandsTwice()
{
    MainWindow window;
    window.show();
    QVERIFY(mnemonics(window).size() >= 7); // all states at once
    QCOMPARE(repeated(mnemonics(window)), QStringList());
    for (const auto *menu : window.findChildren<QMenu *>())
        QCOMPARE(repeated(mnemonics(*menu)), QStringList());
    QCOMPARE(repeated(mnemonics(*window.findChild<ProgressSheet *>())), QStringList());
    OpenPanel{}.beginSheet(&window, [](int, const QString &) {});
    SavePanel{}.beginSheet(&window, [](int, const QString &) {});
    const QList<QFileDialog *> panels = window.findChildren<QFileDialog *>();
    QCOMPARE(panels.size(), 2);
    for (const QFileDialog *panel : panels)
        QCOMPARE(repeated(mnemonics(*panel)), QStringList());
}

void MainWindowTest::aMenuLeavesTheStatusAlone()
{
    MainWindow window;
    window.showStatus(u"35 s"_s);
    QStatusTipEvent nothingToSay{QString()};
    QCoreApplication::sendEvent(&window, &nothingToSay);
    QCOMPARE(window.statusBar()->currentMessage(), u"35 s"_s);
}

void MainWindowTest::tellsWhatIsInThePostersPlace_data()
{
    QTest::addColumn<MainWindow::PosterText>("state");
    QTest::addColumn<QString>("hint");
    QTest::addColumn<bool>("button");
    QTest::newRow("a picture") << Text::none << QString() << false;
    QTest::newRow("no file") << Text::howToOpen << u"Drop a video here, or press Ctrl+O to open one"_s
                             << true;
    QTest::newRow("no still") << Text::noPreview << u"No preview"_s << false;
    QTest::newRow("no such still") << Text::otherStills
                                   << u"No preview here. The slider shows other frames."_s << false;
}

void MainWindowTest::tellsWhatIsInThePostersPlace()
{
    QFETCH(MainWindow::PosterText, state);
    QFETCH(QString, hint);
    QFETCH(bool, button);
    MainWindow window;
    window.show();
    window.showPosterText(state);
    const auto *label = find<QLabel>(window, "dropHintLBL");
    QCOMPARE(label->isVisible() ? label->text() : QString(), hint);
    QCOMPARE(find<QWidget>(window, "emptyOpenBTN")->isVisible(), button);
    QCOMPARE(find<QWidget>(window, "emptySymbolLBL")->isVisible(), button);
    QVERIFY(!find<QLabel>(window, "emptySymbolLBL")->pixmap().isNull());
}

void MainWindowTest::theButtonOpensAVideo()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy opened(find<QAction>(window, "openBTN"), &QAction::triggered);
    auto *button = find<QPushButton>(window, "emptyOpenBTN");
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(opened.count(), 1);
    button->setFocus();
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(opened.count(), 2);
}

void MainWindowTest::captionsAreGreyedWithTheirControls()
{
    MainWindow window;
    const QList<std::pair<const char *, QStringList>> controls{
        {"sizeSLDR", {u"inputLBL"_s, u"sliderTitleLBL"_s, u"percentLBL"_s}},
        {"widthTF", {u"widthLBL"_s, u"pixelsLBL"_s}},
        {"heightTF", {u"heightLBL"_s}}};
    for (const auto &[name, captions] : controls) {
        for (const bool enabled : {false, true}) {
            find<QWidget>(window, name)->setEnabled(enabled);
            for (const QString &caption : captions)
                QCOMPARE(window.findChild<QWidget *>(caption)->isEnabled(), enabled);
        }
    }
}

void MainWindowTest::hasRoomForTheSlider_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("width");
    QTest::addColumn<bool>("broken");
    QTest::newRow("plenty") << 10 << 1000 << false;
    QTest::newRow("as narrow as can be") << 10 << 0 << true;
    QTest::newRow("large type") << 24 << 1000 << true;
    QTest::newRow("large type, much room") << 24 << 1900 << false;
    QTest::newRow("large type, as narrow as can be") << 24 << 0 << true;
}

void MainWindowTest::hasRoomForTheSlider()
{
    QFETCH(int, points);
    QFETCH(int, width);
    QFETCH(bool, broken);
    MainWindow window;
    QFont font = window.font();
    font.setPointSize(points);
    window.setFont(font);
    window.show();
    window.resize(width, 700);
    const auto *slider = find<QWidget>(window, "sizeSLDR");
    const auto *field = find<QWidget>(window, "widthTF");
    const auto top = [&](const QWidget *widget) { return widget->mapTo(&window, QPoint()).y(); };
    QTRY_COMPARE(top(field) > top(slider) + slider->height(), broken);
    QVERIFY2(slider->width() >= 160, qPrintable(QString::number(slider->width())));
    for (const char *name :
         {"inputLBL", "sizeSLDR", "percentLBL", "proportionalCBX", "widthTF", "heightTF", "pixelsLBL"}) {
        const auto *widget = find<QWidget>(window, name);
        const QRect place(widget->mapTo(&window, QPoint()), widget->size());
        QVERIFY2(window.rect().contains(place), name);
    }
}

void MainWindowTest::theCaptionMovesNothing()
{
    MainWindow window;
    window.show();
    auto *caption = find<QLabel>(window, "sliderTitleLBL");
    QList<QRect> places;
    for (const QString &text : {u"Scale:"_s, u"Width:"_s, u"Height:"_s}) {
        caption->setText(text);
        window.layout()->activate();
        QCoreApplication::processEvents();
        QVERIFY(caption->width() >= caption->fontMetrics().horizontalAdvance(text));
        places << find<QWidget>(window, "sizeSLDR")->geometry();
    }
    QCOMPARE(places.at(1), places.at(0));
    QCOMPARE(places.at(2), places.at(0));
}

void MainWindowTest::tellsPercentages()
{
    MainWindow window;
    const auto *label = find<QLabel>(window, "percentLBL");
    auto *slider = find<Slider>(window, "sizeSLDR");
    window.showPercent(351.27);
    QCOMPARE(label->text(), u"351.3 %"_s);
    window.showPercent(12345.6);
    QCOMPARE(label->text(), u"12346 %"_s);
    slider->setDoubleValue(50);
    QCOMPARE(label->text(), u"50 %"_s);
    slider->setDoubleValue(33.3);
    QCOMPARE(label->text(), u"33.3 %"_s);
    slider->setDoubleValue(100);
    QCOMPARE(label->text(), u"100 %"_s);
}

void MainWindowTest::followsALargerType()
{
    MainWindow window;
    const auto *field = find<NumberField>(window, "widthTF");
    const auto *hint = find<QLabel>(window, "dropHintLBL");
    const int width = field->width();
    const qreal size = hint->font().pointSizeF();
    QFont font = window.font();
    font.setPointSizeF(font.pointSizeF() * 2);
    window.setFont(font);
    QVERIFY(field->minimumWidth() > width);
    QCOMPARE(hint->font().pointSizeF(), size * 2);
}

void MainWindowTest::allBeginsOnOneEdge_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("from the left") << Qt::LeftToRight;
    QTest::newRow("from the right") << Qt::RightToLeft;
}

// The first column of the picture, counted from where lines begin, in which something else than the ground is
// drawn.
static int firstInk(const QImage &picture, Qt::LayoutDirection direction)
{
    const bool isFromRight = direction == Qt::RightToLeft;
    const QImage image = isFromRight ? picture.transformed(QTransform().scale(-1, 1)) : picture;
    const QRgb ground = image.pixel(0, image.height() / 2);
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 2; y < image.height() - 2; ++y) // without the lines between the bars
            if (image.pixel(x, y) != ground) return x;
    }
    return -1;
}

void MainWindowTest::allBeginsOnOneEdge()
{
    QFETCH(Qt::LayoutDirection, direction);
    MainWindow window;
    window.setLayoutDirection(direction);
    window.showStatus(u"Hi"_s);
    find<QLabel>(window, "inputLBL")->setText(u"Hi"_s);
    find<QLabel>(window, "sliderTitleLBL")->setText(u"Hi"_s);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QImage all = window.grab().toImage();
    const auto edgeOf = [&](const char *name) {
        const auto *widget = find<QWidget>(window, name);
        const int top = widget->mapTo(&window, QPoint()).y();
        return firstInk(all.copy(0, top, all.width(), widget->height()), direction);
    };
    const int poster = edgeOf("posterView");
    QCOMPARE(poster, 9);
    // Letters have a blank of a pixel or two before them.
    for (const char *name : {"inputLBL", "sliderTitleLBL", "statusBar"})
        QVERIFY2(edgeOf(name) >= poster && edgeOf(name) <= poster + 2,
                 qPrintable(u"%1: %2"_s.arg(QLatin1StringView(name)).arg(edgeOf(name))));
}

void MainWindowTest::alignsTheLabelsInBothDirections()
{
    MainWindow window;
    const auto sides = [&window] {
        QSet<int> found;
        for (const char *name : {"inputLBL", "sliderTitleLBL"})
            found << int(find<QLabel>(window, name)->alignment() & Qt::AlignHorizontal_Mask);
        return found;
    };
    QCOMPARE(sides(), QSet<int>{int(Qt::AlignAbsolute | Qt::AlignLeft)});
    window.setLayoutDirection(Qt::RightToLeft);
    QCOMPARE(sides(), QSet<int>{int(Qt::AlignAbsolute | Qt::AlignRight)});
}

void MainWindowTest::remembersItsSize()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(u"a/window.ini"_s);
    MainWindow first;
    const QSize initial = first.size();
    restoreWindowSize(&first, file);
    QCOMPARE(first.size(), initial);
    first.resize(700, 540);
    rememberWindowSize(&first, file);
    MainWindow second;
    restoreWindowSize(&second, file);
    QCOMPARE(second.size(), QSize(700, 540));
    QVERIFY(!second.isMaximized());
    second.showMaximized();
    rememberWindowSize(&second, file);
    MainWindow third;
    restoreWindowSize(&third, file);
    QVERIFY(third.isMaximized());
}

void MainWindowTest::neverGrowsBeyondTheScreen()
{
    QTemporaryDir folder;
    MainWindow window;
    window.resize(9000, 9000);
    rememberWindowSize(&window, folder.filePath(u"window.ini"_s));
    restoreWindowSize(&window, folder.filePath(u"window.ini"_s));
    QCOMPARE(window.size(), window.screen()->availableSize());
}

TESSALY_GUI_TEST_MAIN(MainWindowTest)
#include "main_window_test.moc"
