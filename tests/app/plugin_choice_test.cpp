// Which of Qt's plugins the program takes.
#include "app/plugin_choice.h"
#include "support/test_case.h"

#include <QDir>
#include <QTemporaryDir>

using namespace tessaly;
using namespace Qt::StringLiterals;

class TestPluginChoice : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void findsThePluginsOfAnOwnQt_data()
    {
        QTest::addColumn<QByteArray>("conf");
        QTest::addColumn<QString>("folder");
        QTest::newRow("beside the program's folder")
            << "[Paths]\nPrefix = ..\nPlugins = plugins\n"_ba << u"/plugins"_s;
        QTest::newRow("a folder further down") << "[Paths]\nPrefix=..\nPlugins=lib/qt6\n"_ba << u"/lib/qt6"_s;
        QTest::newRow("under its usual name") << "[Paths]\nPrefix = ..\n"_ba << u"/plugins"_s;
        QTest::newRow("in the program's folder") << "[Paths]\nPlugins = p\n"_ba << u"/bin/p"_s;
        QTest::newRow("nothing said") << QByteArray("") << u"/bin/plugins"_s;
    }

    void findsThePluginsOfAnOwnQt()
    {
        QFETCH(QByteArray, conf);
        QFETCH(QString, folder);
        const QTemporaryDir tree;
        write(tree.filePath(u"bin/qt.conf"_s), conf);
        QCOMPARE(ownPluginFolder(tree.filePath(u"bin"_s)), tree.path() + folder);
    }

    void takesAPathAsItIs()
    {
        const QTemporaryDir tree;
        write(tree.filePath(u"qt.conf"_s), "[Paths]\nPrefix = /opt/qt\nPlugins = /opt/plugins\n"_ba);
        QCOMPARE(ownPluginFolder(tree.path()), u"/opt/plugins"_s);
    }

    void findsNoneWithTheSystemsQt_data()
    {
        QTest::addColumn<QString>("programFolder");
        QTest::newRow("no qt.conf") << m_empty.path();
        QTest::newRow("no such folder") << m_empty.filePath(u"none"_s);
        QTest::newRow("an unknown folder") << QString();
    }

    void findsNoneWithTheSystemsQt()
    {
        QFETCH(QString, programFolder);
        QCOMPARE(ownPluginFolder(programFolder), QString());
    }

    void givesWayToOtherThemes_data()
    {
        QTest::addColumn<QStringList>("plugins");
        QTest::addColumn<bool>("isAlone");
        const auto portal = u"platformthemes/libqxdgdesktopportal.so"_s;
        QTest::newRow("none at all") << QStringList() << false;
        QTest::newRow("the portal's") << QStringList{portal} << true;
        QTest::newRow("beside GTK's") << QStringList{portal, u"platformthemes/libqgtk3.so"_s} << false;
        QTest::newRow("beside KDE's")
            << QStringList{portal, u"platformthemes/KDEPlasmaPlatformTheme6.so"_s} << false;
        QTest::newRow("GTK's") << QStringList{u"platformthemes/libqgtk3.so"_s} << false;
        QTest::newRow("other plugins do not count") << QStringList{portal, u"platforms/libqxcb.so"_s} << true;
    }

    void givesWayToOtherThemes()
    {
        QFETCH(QStringList, plugins);
        QFETCH(bool, isAlone);
        const QTemporaryDir folder;
        for (const QString &plugin : plugins)
            write(folder.filePath(plugin), {});
        QCOMPARE(isPortalsThemeAlone(folder.path()), isAlone);
    }

private:
    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
            file.write(content) != content.size())
            qFatal("no %s", qUtf8Printable(path));
    }

    const QTemporaryDir m_empty;
};

TESSALY_GUI_TEST_MAIN(TestPluginChoice)
#include "plugin_choice_test.moc"
