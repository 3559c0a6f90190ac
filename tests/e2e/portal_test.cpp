// The file panels of a desktop that offers them by its portal.
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/tasks.h"

#include <QDir>
#include <QFile>
#include <QLibraryInfo>

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;
using tessaly::test::waitLimit;

class PortalTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void opensAndSaves();
    void asksAboutTheNameThatIsMeant_data();
    void asksAboutTheNameThatIsMeant();
    void goesOnAfterACancelledPanel();
    void comesUpUnaskedWhereQtHasNoOtherTheme();
    void givesWayToQtsOwnPanelWithoutAPortal();
    void opensNoWindowByPluginsOfAnotherQt();

private:
    void startPortal(const QStringList &answers);
    // Tessaly on a desktop whose portal gives these answers.
    Program &launchWith(const QStringList &answers);
    // The same program with the few plugins that it needs, the portal's theme alone among them, while the
    // environment names the plugins of the whole system and another theme.
    Program &launchWithOwnPlugins(const QString &platform = u"xcb"_s);
    bool open(Program &tessaly);
    bool isAsked(const QString &question);

    Program *m_portal = nullptr;
};

namespace {

QString systemsPlugins()
{
    return QLibraryInfo::path(QLibraryInfo::PluginsPath);
}

// With the folders that it is to lie in.
void copy(const QString &from, const QString &to)
{
    if (!QDir().mkpath(QFileInfo(to).path()) || !QFile::copy(from, to))
        qFatal("no copy of %s", qUtf8Printable(from));
}

QString mapsOf(const Program &program)
{
    QFile maps(u"/proc/%1/maps"_s.arg(program.id()));
    return maps.open(QFile::ReadOnly) ? QString::fromUtf8(maps.readAll()) : QString();
}

} // namespace

void PortalTest::initTestCase()
{
    const QString plugin = u"/platformthemes/libqxdgdesktopportal.so"_s;
    QVERIFY2(QFile::exists(systemsPlugins() + plugin), qPrintable(plugin));
}

void PortalTest::startPortal(const QStringList &answers)
{
    m_portal = &start(u"../tests/bin/file_portal"_s, {.arguments = answers});
    (void)QTest::qWaitFor([&] { return m_portal->standardOutput().contains("ready"_L1); }, waitLimit);
}

Program &PortalTest::launchWith(const QStringList &answers)
{
    startPortal(answers);
    QProcessEnvironment themed;
    themed.insert(u"QT_QPA_PLATFORMTHEME"_s, u"xdgdesktopportal"_s);
    return launch({.environment = themed});
}

Program &PortalTest::launchWithOwnPlugins(const QString &platform)
{
    const QDir built(QStringLiteral(TESSALY_PROGRAM_FOLDER));
    const QString program = file(u"tree/bin/tessaly"_s);
    copy(built.filePath(u"tessaly"_s), program);
    for (const QString &tool : {u"sniffer"_s, u"creator"_s})
        QFile::link(built.filePath(tool), file(u"tree/bin/"_s + tool));
    for (const QString &plugin :
         {u"/platforms/libqxcb.so"_s, u"/imageformats/libqsvg.so"_s, u"/imageformats/libqjpeg.so"_s,
          u"/iconengines/libqsvgicon.so"_s, u"/platformthemes/libqxdgdesktopportal.so"_s})
        copy(systemsPlugins() + plugin, file(u"tree/plugins"_s + plugin));
    QFile conf(file(u"tree/bin/qt.conf"_s));
    if (!conf.open(QFile::WriteOnly) || conf.write("[Paths]\nPrefix = ..\nPlugins = plugins\n") < 0)
        qFatal("no qt.conf");
    conf.close();

    QProcessEnvironment others;
    others.insert(u"QT_PLUGIN_PATH"_s, systemsPlugins());
    others.insert(u"QT_QPA_PLATFORM_PLUGIN_PATH"_s, systemsPlugins() + u"/platforms"_s);
    others.insert(u"QT_QPA_PLATFORM"_s, platform);
    others.insert(u"QT_QPA_PLATFORMTHEME"_s, u"gtk3"_s);
    others.insert(u"XDG_CURRENT_DESKTOP"_s, u"GNOME"_s);
    Program &tessaly = start(built.relativeFilePath(program), {.environment = others});
    (void)QTest::qWaitFor([&] { return tessaly.shows(Role::frame) || tessaly.hasEnded(); }, waitLimit);
    return tessaly;
}

bool PortalTest::open(Program &tessaly)
{
    return tessaly.press({u"ctrl+o"_s}) && isAsked(u"open, Open Video\n"_s) &&
           QTest::qWaitFor([&] { return tessaly.isEnabled(Role::button, u"Save"_s); }, workTime);
}

bool PortalTest::isAsked(const QString &question)
{
    return QTest::qWaitFor([&] { return m_portal->standardOutput().endsWith(question); }, waitLimit);
}

// The desktop's panel has asked about a file that is there under the very name.
void PortalTest::opensAndSaves()
{
    const QString output = copyOfClip(u"hd.mp4"_s, u"small.mp4"_s);
    Program &tessaly = launchWith({copyOfClip(u"plain.mp4"_s, u"a name with %20 & 'marks'.mp4"_s), output});
    QVERIFY(open(tessaly));
    QVERIFY(tessaly.shows(Role::label, u"Input: 640 x 360"_s));
    QVERIFY(setPercent(tessaly, 50));
    QVERIFY(tessaly.press({u"ctrl+s"_s}));
    QVERIFY(isAsked(u"save, Save Resized Video, Resized in %1\n"_s.arg(desktop().filesFolder())));
    QCOMPARE(waitForAlert(tessaly).value(0), u"Video Resized Successfully!"_s);
    QCOMPARE(mediaFacts(output).size, QSize(320, 180));
}

void PortalTest::asksAboutTheNameThatIsMeant_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("replaced");
    QTest::newRow("replaced") << u"Replace"_s << true;
    QTest::newRow("kept, and the panel is back") << u"Cancel"_s << false;
}

void PortalTest::asksAboutTheNameThatIsMeant()
{
    QFETCH(QString, answer);
    QFETCH(bool, replaced);
    const QString output = copyOfClip(u"long.mp4"_s, u"small.mp4"_s);
    const QByteArray before = checksum(output);
    Program &tessaly = launchWith({clip(u"plain.mp4"_s), file(u"small"_s), u"cancel"_s});
    QVERIFY(open(tessaly));
    QVERIFY(tessaly.press({u"ctrl+s"_s}));
    QVERIFY(tessaly.click(Role::button, answer));
    if (replaced) {
        QCOMPARE(waitForAlert(tessaly).value(0), u"Video Resized Successfully!"_s);
    } else {
        QVERIFY(isAsked(u"save, Save Resized Video, small in %1\n"_s.arg(desktop().filesFolder())));
    }
    QCOMPARE(checksum(output) != before, replaced);
}

void PortalTest::goesOnAfterACancelledPanel()
{
    Program &tessaly = launchWith({u"cancel"_s, clip(u"plain.mp4"_s)});
    QVERIFY(tessaly.press({u"ctrl+o"_s}));
    QVERIFY(isAsked(u"open, Open Video\n"_s));
    const auto asksAgain = [&] {
        return tessaly.press({u"ctrl+o"_s}) && m_portal->standardOutput().count("open,"_L1) == 2;
    };
    QVERIFY(QTest::qWaitFor(asksAgain, waitLimit));
    QVERIFY(QTest::qWaitFor([&] { return tessaly.isEnabled(Role::button, u"Save"_s); }, workTime));
}

void PortalTest::comesUpUnaskedWhereQtHasNoOtherTheme()
{
    startPortal({clip(u"plain.mp4"_s)});
    Program &tessaly = launchWithOwnPlugins();
    QVERIFY(open(tessaly));
    QVERIFY(tessaly.shows(Role::label, u"Input: 640 x 360"_s));
    QVERIFY2(mapsOf(tessaly).contains(file(u"tree/plugins/platforms/libqxcb.so"_s)),
             qPrintable(mapsOf(tessaly)));
    QVERIFY2(!mapsOf(tessaly).contains(systemsPlugins()), qPrintable(mapsOf(tessaly)));
}

void PortalTest::givesWayToQtsOwnPanelWithoutAPortal()
{
    Program &tessaly = launchWithOwnPlugins();
    QVERIFY2(mapsOf(tessaly).contains("libqxdgdesktopportal.so"_L1), qPrintable(mapsOf(tessaly)));
    QVERIFY(tessaly.press({u"ctrl+o"_s}));
    QTRY_VERIFY(tessaly.shows(Role::field, u"File name:"_s));
    QVERIFY(tessaly.typeOver(clip(u"plain.mp4"_s)));
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(tessaly.shows(Role::label, u"Input: 640 x 360"_s));
}

void PortalTest::opensNoWindowByPluginsOfAnotherQt()
{
    Program &tessaly = launchWithOwnPlugins(u"offscreen"_s);
    QTRY_VERIFY(tessaly.hasEnded());
    QCOMPARE(tessaly.exitStatus(), 1);
    QVERIFY2(tessaly.standardError().contains("QT_QPA_PLATFORM=offscreen"_L1),
             qPrintable(tessaly.standardError()));
}

TESSALY_TEST_MAIN(PortalTest)
#include "portal_test.moc"
