// A change between light and dark colours while the window is up.
#include "app/app_harness.h"
#include "support/test_case.h"

#include <QAction>
#include <QStatusBar>

using namespace tessaly;
using namespace tessaly::test;
using namespace Qt::StringLiterals;

namespace {

QPalette coloured(const QColor &window, const QColor &text, const QColor &field)
{
    QPalette palette(window, window); // the shades between follow
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(128, 128, 128));
    palette.setColor(QPalette::Base, field);
    return palette;
}

QPalette light()
{
    return coloured({239, 239, 239}, {20, 20, 20}, Qt::white);
}

QPalette dark()
{
    return coloured({45, 47, 51}, {230, 230, 230}, {32, 34, 37});
}

} // namespace

class TestTheme : public TestCase
{
    Q_OBJECT

private:
    // A window in one of the states that look differently.
    static std::unique_ptr<AppHarness> makeWindow(const QString &state)
    {
        auto app = std::make_unique<AppHarness>();
        if (state != "no file"_L1) {
            if (state == "a video with stills"_L1) app->letConverterMakeStills();
            app->openSize(640, 360);
        }
        app->delegate.sizeSLDR->setFocus(); // no text cursor that blinks
        return app;
    }

    static QImage pictureOf(const AppHarness &app, const char *part)
    {
        auto *widget = app.find<QWidget>(part);
        return (widget ? widget : app.delegate.window.get())->grab().toImage();
    }

private Q_SLOTS:
    void cleanup() { QApplication::setPalette(QPalette()); }

    void isFollowedWhileTheWindowIsUp_data()
    {
        QTest::addColumn<QString>("state");
        for (const QString &state : {u"no file"_s, u"a video with stills"_s, u"a video without stills"_s})
            QTest::newRow(qPrintable(state)) << state;
    }

    // Nothing is left of the old colours: every part looks as in a window that was never light.
    void isFollowedWhileTheWindowIsUp()
    {
        QFETCH(QString, state);
        const QList<const char *> parts{"toolBar",         "posterView", "posterPositionSlider",
                                        "sizeGroup",       "inputLBL",   "sliderTitleLBL",
                                        "sizeSLDR",        "percentLBL", "widthTF",
                                        "proportionalCBX", "statusBar",  "menuBar",
                                        "the window"};
        QApplication::setPalette(light());
        std::unique_ptr<AppHarness> changed = makeWindow(state);
        QList<QImage> before;
        for (const char *part : parts)
            before << pictureOf(*changed, part); // also fills what may be kept of them
        QApplication::setPalette(dark());
        QCoreApplication::processEvents();
        QList<QImage> after;
        for (const char *part : parts)
            after << pictureOf(*changed, part);
        changed.reset();
        const std::unique_ptr<AppHarness> darkFromTheStart = makeWindow(state);
        for (qsizetype i = 0; i < parts.size(); ++i) {
            QVERIFY2(after.at(i) == pictureOf(*darkFromTheStart, parts.at(i)), parts.at(i));
            // The poster's ground is dark in both.
            if (qstrcmp(parts.at(i), "posterView") != 0) QVERIFY2(after.at(i) != before.at(i), parts.at(i));
        }
    }

    void iconsFollowIt()
    {
        QApplication::setPalette(light());
        const AppHarness app;
        const QIcon icon = app.find<QAction>("openBTN")->icon();
        const QImage inLight = icon.pixmap(24, 24).toImage();
        QApplication::setPalette(dark());
        const QImage inDark = icon.pixmap(24, 24).toImage();
        const auto brightest = [](const QImage &image) {
            int most = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x)
                    if (image.pixelColor(x, y).alpha() == 255)
                        most = std::max(most, image.pixelColor(x, y).lightness());
            }
            return most;
        };
        QCOMPARE(brightest(inLight), 20);
        QCOMPARE(brightest(inDark), 230);
    }
};

TESSALY_GUI_TEST_MAIN(TestTheme)
#include "theme_test.moc"
