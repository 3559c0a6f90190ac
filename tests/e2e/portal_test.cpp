// The file panels of a desktop that offers them by its portal.
#include "e2e/end_to_end_case.h"
#include "e2e/media_facts.h"
#include "e2e/tasks.h"

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

private:
    // Tessaly on a desktop whose portal gives these answers.
    Program &launchWith(const QStringList &answers);
    bool open(Program &tessaly);
    bool isAsked(const QString &question);

    Program *m_portal = nullptr;
};

void PortalTest::initTestCase()
{
    const QString plugin = u"/platformthemes/libqxdgdesktopportal.so"_s;
    QVERIFY2(QFile::exists(QLibraryInfo::path(QLibraryInfo::PluginsPath) + plugin), qPrintable(plugin));
}

Program &PortalTest::launchWith(const QStringList &answers)
{
    m_portal = &start(u"../tests/bin/file_portal"_s, {.arguments = answers});
    (void)QTest::qWaitFor([&] { return m_portal->standardOutput().contains("ready"_L1); }, waitLimit);
    QProcessEnvironment themed;
    themed.insert(u"QT_QPA_PLATFORMTHEME"_s, u"xdgdesktopportal"_s);
    return launch({.environment = themed});
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

TESSALY_TEST_MAIN(PortalTest)
#include "portal_test.moc"
