// Why no window can be opened, in words.
#include "app/start_up.h"
#include "support/test_case.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>

using namespace tessaly;
using namespace Qt::StringLiterals;

class TestStartUp : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void tellsWhy_data()
    {
        QTest::addColumn<QString>("wayland");
        QTest::addColumn<QString>("x11");
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("plugin");
        QTest::addColumn<QString>("reason");
        const auto none = QString();
        const auto screen = u"wayland-0"_s;
        const auto other = u"libqxcb.so"_s;
        const auto noScreen = u"there is no screen to open a window on"_s;
        const auto noPlugin = u"qt6-wayland is missing, the package with which Qt opens windows on Wayland"_s;
        const auto asked =
            u"QT_QPA_PLATFORM=%1 in the environment asks for windows that cannot be opened here"_s;
        const auto closed = u"no window can be opened on the screen of %1"_s;
        QTest::newRow("no screen at all") << none << none << none << other << noScreen;
        QTest::newRow("no screen, and one is asked for") << none << none << u"xcb"_s << other << noScreen;
        QTest::newRow("Wayland without its plugin") << screen << none << none << other << noPlugin;
        QTest::newRow("Wayland without its plugin, and asked for")
            << screen << none << u"wayland-egl"_s << other << noPlugin;
        QTest::newRow("Wayland with its plugin")
            << screen << none << none << u"libqwayland.so"_s << closed.arg(u"WAYLAND_DISPLAY=wayland-0"_s);
        QTest::newRow("Wayland with one of its older plugins")
            << screen << none << none << u"libqwayland-generic.so"_s
            << closed.arg(u"WAYLAND_DISPLAY=wayland-0"_s);
        QTest::newRow("Wayland with another plugin than asked for")
            << screen << none << u"wayland-egl"_s << u"libqwayland-generic.so"_s
            << asked.arg(u"wayland-egl"_s);
        QTest::newRow("Wayland and X11") << screen << u":0"_s << none << other
                                         << closed.arg(u"WAYLAND_DISPLAY=wayland-0 or of DISPLAY=:0"_s);
        QTest::newRow("X11 alone") << none << u":77"_s << none << other << closed.arg(u"DISPLAY=:77"_s);
        QTest::newRow("Wayland asked for on X11")
            << none << u":0"_s << u"wayland"_s << other << asked.arg(u"wayland"_s);
        QTest::newRow("X11 asked for on Wayland")
            << screen << none << u"xcb"_s << other << asked.arg(u"xcb"_s);
        QTest::newRow("no desktop's platform")
            << screen << u":0"_s << u"eglfs"_s << other << asked.arg(u"eglfs"_s);
    }

    void tellsWhy()
    {
        QFETCH(QString, wayland);
        QFETCH(QString, x11);
        QFETCH(QString, platform);
        QFETCH(QString, plugin);
        QFETCH(QString, reason);
        const QTemporaryDir folder;
        QFile file(folder.filePath(plugin));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QProcessEnvironment environment;
        environment.insert(u"WAYLAND_DISPLAY"_s, wayland);
        environment.insert(u"DISPLAY"_s, x11);
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        const QString why = whyNoWindow(environment, {u"/nonexistent"_s, QString(), folder.path()});
        QCOMPARE(why, u"tessaly: %1; tessaly-cli does the same on the command line.\n"_s.arg(reason));
    }
};

TESSALY_GUI_TEST_MAIN(TestStartUp)
#include "start_up_test.moc"
