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
    void tellsAMissingPluginFromAMissingScreen_data()
    {
        QTest::addColumn<QString>("wayland");
        QTest::addColumn<QString>("x11");
        QTest::addColumn<QString>("plugin");
        QTest::addColumn<bool>("isMissingPlugin");
        const auto none = QString();
        const auto other = u"libqxcb.so"_s;
        QTest::newRow("no screen at all") << none << none << other << false;
        QTest::newRow("Wayland without its plugin") << u"wayland-0"_s << none << other << true;
        QTest::newRow("Wayland with its plugin") << u"wayland-0"_s << none << u"libqwayland.so"_s << false;
        QTest::newRow("Wayland with one of its older plugins")
            << u"wayland-0"_s << none << u"libqwayland-generic.so"_s << false;
        QTest::newRow("Wayland and X11") << u"wayland-0"_s << u":0"_s << other << false;
        QTest::newRow("X11 alone") << none << u":0"_s << other << false;
    }

    void tellsAMissingPluginFromAMissingScreen()
    {
        QFETCH(QString, wayland);
        QFETCH(QString, x11);
        QFETCH(QString, plugin);
        QFETCH(bool, isMissingPlugin);
        const QTemporaryDir folder;
        QFile file(folder.filePath(plugin));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QProcessEnvironment environment;
        environment.insert(u"WAYLAND_DISPLAY"_s, wayland);
        environment.insert(u"DISPLAY"_s, x11);
        const QString why = whyNoWindow(environment, {u"/nonexistent"_s, QString(), folder.path()});
        QCOMPARE(why.contains("qt6-wayland is missing"_L1), isMissingPlugin);
        QCOMPARE(why.contains("there is no screen"_L1), !isMissingPlugin);
        QVERIFY2(why.startsWith("tessaly: "_L1) && why.endsWith("on the command line.\n"_L1),
                 qPrintable(why));
        QCOMPARE(why.count(u'\n'), 1);
    }
};

TESSALY_GUI_TEST_MAIN(TestStartUp)
#include "start_up_test.moc"
