#include "support/test_case.h"
#include "ui/file_panels.h"
#include "ui/panel_driver.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <memory>

using namespace Qt::StringLiterals;
using namespace tessaly;
using tessaly::test::PanelDriver;

namespace {

// Like the rule of a required extension.
QString withMp4(const QString &path)
{
    return path.endsWith(u".mp4"_s, Qt::CaseInsensitive) ? path : path + u".mp4"_s;
}

} // namespace

class SavePanelTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void offersAName();
    void givesTheMeantPath_data();
    void givesTheMeantPath();
    void takesThePathAsTypedWithoutARule();
    void savesNothingWithoutAName();
    void asksAboutTheMeantFile_data();
    void asksAboutTheMeantFile();
    void replaces();
    void goesBackToThePanel_data();
    void goesBackToThePanel();
    void listsTheRequiredKindOnly();
    void asksAboutAFileOfTheList();
    void goesIntoATypedFolder();
    void isCancelled();

private:
    QString path(const QString &name) const { return m_folder->path() + u'/' + name; }
    void begin(PanelDriver &driver, const SavePanel::NameRule &rule = withMp4) const
    {
        const SavePanel panel{u"Save Video"_s, m_folder->path(), u"Resized"_s, u"mp4"_s, rule};
        panel.beginSheet(&driver.window, driver.completion());
    }
    void makeFile(const QString &name) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("old");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void SavePanelTest::initTestCase()
{
    cleanup();
}

// A new folder for each test.
void SavePanelTest::cleanup()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkdir(path(u"folder"_s)));
}

void SavePanelTest::offersAName()
{
    PanelDriver driver;
    begin(driver);
    QCOMPARE(driver.panel()->windowModality(), Qt::WindowModal);
    QCOMPARE(driver.panel()->windowTitle(), u"Save Video"_s);
    QCOMPARE(driver.panel()->acceptMode(), QFileDialog::AcceptSave);
    QVERIFY(driver.panel()->testOption(QFileDialog::DontUseNativeDialog));
    QCOMPARE(driver.panel()->objectName(), u"savePanel"_s);
    QCOMPARE(driver.panel()->directory().path(), m_folder->path());
    QCOMPARE(driver.nameField()->text(), u"Resized"_s);
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"Resized.mp4"_s)}}));
    QVERIFY(!driver.wasVisibleAtAnswer);
    QTRY_VERIFY(!driver.panel());
    QVERIFY(!QFile::exists(path(u"Resized.mp4"_s))); // choosing writes nothing
}

void SavePanelTest::givesTheMeantPath_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("meant"); // below the folder
    QTest::newRow("no extension") << u"new"_s << u"new.mp4"_s;
    QTest::newRow("the extension") << u"out.mp4"_s << u"out.mp4"_s;
    QTest::newRow("the extension in capitals") << u"out.MP4"_s << u"out.MP4"_s;
    QTest::newRow("another extension") << u"a.mov"_s << u"a.mov.mp4"_s;
    QTest::newRow("an extension unknown to the system") << u"my.movie"_s << u"my.movie.mp4"_s;
    QTest::newRow("quotation marks") << u"a \"b\""_s << u"a \"b\".mp4"_s;
    QTest::newRow("one quotation mark") << u"\""_s << u"\".mp4"_s;
    QTest::newRow("markup") << u"<b>&amp;"_s << u"<b>&amp;.mp4"_s;
    QTest::newRow("percent sign") << u"100%d"_s << u"100%d.mp4"_s;
    QTest::newRow("dash") << u"-y"_s << u"-y.mp4"_s;
    QTest::newRow("below a folder") << u"folder/out"_s << u"folder/out.mp4"_s;
}

void SavePanelTest::givesTheMeantPath()
{
    QFETCH(QString, typed);
    QFETCH(QString, meant);
    PanelDriver driver;
    begin(driver);
    driver.type(typed);
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(meant)}}));
}

void SavePanelTest::takesThePathAsTypedWithoutARule()
{
    PanelDriver driver;
    begin(driver, {});
    driver.type(path(u"folder/a.mov"_s));
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"folder/a.mov"_s)}}));
}

void SavePanelTest::savesNothingWithoutAName()
{
    PanelDriver driver;
    begin(driver);
    QVERIFY(driver.acceptButton()->isEnabled());
    driver.type(QString());
    QVERIFY(!driver.acceptButton()->isEnabled());
}

void SavePanelTest::asksAboutTheMeantFile_data()
{
    QTest::addColumn<QString>("existing");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("asked");
    QTest::newRow("the typed name") << u"out.mp4"_s << u"out.mp4"_s << true;
    QTest::newRow("the name that we changed") << u"a.mov.mp4"_s << u"a.mov"_s << true;
    QTest::newRow("the extension added") << u"out.mp4"_s << u"out"_s << true;
    QTest::newRow("the typed name, but another is meant") << u"a.mov"_s << u"a.mov"_s << false;
    QTest::newRow("another file") << u"other.mp4"_s << u"out"_s << false;
    QTest::newRow("markup") << u"<b>&amp;\".mp4"_s << u"<b>&amp;\""_s << true;
    QTest::newRow("place marker") << u"%1.mp4"_s << u"%1"_s << true;
}

void SavePanelTest::asksAboutTheMeantFile()
{
    QFETCH(QString, existing);
    QFETCH(QString, typed);
    QFETCH(bool, asked);
    makeFile(existing);
    PanelDriver driver;
    begin(driver);
    driver.type(typed);
    driver.accept();
    QTRY_COMPARE(driver.answers.size(), asked ? 0 : 1);
    if (!asked) return;
    QVERIFY(driver.panel()->isVisible());
    QVERIFY(driver.question());
    QCOMPARE(driver.question()->text(),
             u"“"_s + existing + u"” already exists. Do you want to replace it?"_s);
    QCOMPARE(driver.question()->textFormat(), Qt::PlainText);
    QCOMPARE(driver.question()->windowModality(), Qt::WindowModal);
    QCOMPARE(driver.question()->buttons().size(), 2);
}

void SavePanelTest::replaces()
{
    makeFile(u"out.mp4"_s);
    PanelDriver driver;
    begin(driver);
    driver.type(u"out"_s);
    driver.accept();
    QVERIFY(driver.question());
    driver.click(driver.questionButton(u"Replace"_s));
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"out.mp4"_s)}}));
    QVERIFY(!driver.wasVisibleAtAnswer);
    QTRY_VERIFY(!driver.panel());
    QTRY_COMPARE(driver.answers.size(), 1);
    QFile file(path(u"out.mp4"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("old")); // replacing is the writer's matter
}

void SavePanelTest::goesBackToThePanel_data()
{
    using Way = std::function<void(PanelDriver &)>;
    QTest::addColumn<Way>("way");
    QTest::newRow("button") << Way(
        [](PanelDriver &driver) { driver.click(driver.questionButton(u"Cancel"_s)); });
    QTest::newRow("Escape") << Way(
        [](PanelDriver &driver) { QTest::keyClick(driver.question(), Qt::Key_Escape); });
    QTest::newRow("Return") << Way(
        [](PanelDriver &driver) { QTest::keyClick(driver.question(), Qt::Key_Return); });
    QTest::newRow("closed") << Way([](PanelDriver &driver) { driver.question()->close(); });
}

void SavePanelTest::goesBackToThePanel()
{
    QFETCH(std::function<void(PanelDriver &)>, way);
    makeFile(u"out.mp4"_s);
    PanelDriver driver;
    begin(driver);
    driver.type(u"out"_s);
    driver.accept();
    QVERIFY(driver.question());
    way(driver);
    QTRY_VERIFY(driver.panel()->findChildren<QMessageBox *>().isEmpty());
    QVERIFY(driver.panel()->isVisible());
    QVERIFY(driver.answers.isEmpty());
    QCOMPARE(driver.nameField()->text(), u"out"_s);

    driver.type(u"out 2"_s);
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"out 2.mp4"_s)}}));
}

void SavePanelTest::listsTheRequiredKindOnly()
{
    for (const QString &name : {u"clip.mp4"_s, u"LOUD.MP4"_s, u"notes.txt"_s})
        makeFile(name);
    PanelDriver driver;
    begin(driver);
    QTRY_COMPARE(driver.listed(), (QStringList{u"LOUD.MP4"_s, u"clip.mp4"_s, u"folder"_s}));
}

void SavePanelTest::asksAboutAFileOfTheList()
{
    makeFile(u"clip.mp4"_s);
    PanelDriver driver;
    begin(driver);
    QTRY_VERIFY(driver.listIndex(u"clip.mp4"_s).isValid());
    driver.clickInList(u"clip.mp4"_s);
    driver.accept();
    QVERIFY(driver.answers.isEmpty());
    QVERIFY(driver.question());
}

void SavePanelTest::goesIntoATypedFolder()
{
    PanelDriver driver;
    begin(driver);
    driver.type(u"folder"_s);
    driver.accept();
    QVERIFY(driver.answers.isEmpty());
    QVERIFY(!driver.question());
    QCOMPARE(driver.panel()->directory().path(), path(u"folder"_s));
    QCOMPARE(driver.nameField()->text(), QString());
}

void SavePanelTest::isCancelled()
{
    PanelDriver driver;
    begin(driver);
    driver.click(driver.button(QDialogButtonBox::Cancel));
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{0, QString()}}));
    QTRY_VERIFY(!driver.panel());
    QTRY_COMPARE(driver.answers.size(), 1);
}

TESSALY_GUI_TEST_MAIN(SavePanelTest)
#include "save_panel_test.moc"
