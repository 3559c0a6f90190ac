#include "platform/paths.h"
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

class OpenPanelTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void takesATypedName_data();
    void takesATypedName();
    void takesAFileOfTheList_data();
    void takesAFileOfTheList();
    void takesATypedPath();
    void takesATypedPathOnceTheListIsComplete_data();
    void takesATypedPathOnceTheListIsComplete();
    void keepsWhatIsTypedWhileItsFieldHasNoFocus();
    void takesReturn();
    void isCancelled_data();
    void isCancelled();
    void isASheet();
    void startsInAFolder_data();
    void startsInAFolder();
    void listsEveryKindOfFile();
    void goesIntoATypedFolder();
    void goesIntoAFolderOfTheList();
    void aMissingFileIsSaidAndThePanelStays_data();
    void aMissingFileIsSaidAndThePanelStays();
    void opensNothingWithoutAName();
    void tellsFilesByTheirNamesAlone();
    void goesOnInAFolderOfFilesThatNeverAnswer();
    void offersThePlacesOfFilms();
    void answersNothingWhenTheWindowDies();

private:
    QString path(const QString &name) const { return m_folder.path() + u'/' + name; }
    void begin(PanelDriver &driver) const
    {
        OpenPanel{u"Open Video"_s, m_folder.path()}.beginSheet(&driver.window, driver.completion());
    }

    QTemporaryDir m_folder;
};

void OpenPanelTest::initTestCase()
{
    for (const QString &name :
         {u"clip.mp4"_s, u"notes.txt"_s, u".hidden.mp4"_s, u"a \"b\" c.mp4"_s, u"\"quoted\".mp4"_s, u"b"_s,
          u"<b>&amp;.mp4"_s, u"-y.mp4"_s, u"dot."_s, u"100%d.mp4"_s, u"é漢😀.mp4"_s, u"line\nbreak.mp4"_s}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir().mkdir(path(u"folder"_s)));
    QFile inside(path(u"folder/inside.mp4"_s));
    QVERIFY(inside.open(QIODevice::WriteOnly));
}

void OpenPanelTest::takesATypedName_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"clip.mp4"_s;
    QTest::newRow("no video") << u"notes.txt"_s;
    QTest::newRow("hidden") << u".hidden.mp4"_s;
    QTest::newRow("quotation marks inside") << u"a \"b\" c.mp4"_s;
    QTest::newRow("quotation marks at the start") << u"\"quoted\".mp4"_s;
    QTest::newRow("markup") << u"<b>&amp;.mp4"_s;
    QTest::newRow("dash") << u"-y.mp4"_s;
    QTest::newRow("point at the end") << u"dot."_s;
    QTest::newRow("percent sign") << u"100%d.mp4"_s;
    QTest::newRow("below the folder") << u"folder/inside.mp4"_s;
    QTest::newRow("by dots") << u"folder/../clip.mp4"_s;
}

void OpenPanelTest::takesATypedName()
{
    QFETCH(QString, name);
    PanelDriver driver;
    begin(driver);
    QTRY_VERIFY(driver.listIndex(u"clip.mp4"_s).isValid());
    driver.type(name);
    QTRY_VERIFY(driver.acceptButton()->isEnabled());
    driver.accept();
    QTRY_COMPARE(driver.answers.size(), 1);
    QCOMPARE(driver.answers.first().first, 1);
    QVERIFY2(isSameFile(driver.answers.first().second, path(name)),
             qPrintable(driver.answers.first().second));
    QVERIFY(!driver.wasVisibleAtAnswer);
    QTRY_VERIFY(!driver.panel());
}

void OpenPanelTest::takesAFileOfTheList_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"clip.mp4"_s;
    QTest::newRow("quotation marks") << u"a \"b\" c.mp4"_s;
    QTest::newRow("line break") << u"line\nbreak.mp4"_s;
    QTest::newRow("other scripts") << u"é漢😀.mp4"_s;
}

void OpenPanelTest::takesAFileOfTheList()
{
    QFETCH(QString, name);
    PanelDriver driver;
    begin(driver);
    QTRY_VERIFY(driver.listIndex(name).isValid());
    driver.clickInList(name);
    QTRY_VERIFY(driver.acceptButton()->isEnabled());
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(name)}}));
}

void OpenPanelTest::takesATypedPath()
{
    PanelDriver driver;
    OpenPanel{{}, QDir::rootPath()}.beginSheet(&driver.window, driver.completion());
    driver.type(path(u"clip.mp4"_s));
    QTRY_VERIFY(driver.acceptButton()->isEnabled());
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"clip.mp4"_s)}}));
}

void OpenPanelTest::takesATypedPathOnceTheListIsComplete_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("over the folder itself") << u"folder/../clip.mp4"_s;
    QTest::newRow("from the folder itself") << u"./clip.mp4"_s;
    QTest::newRow("over the folder above") << u"../%1/clip.mp4"_s.arg(QFileInfo(m_folder.path()).fileName());
}

// The list comes to know the folders around its own one a little later than its files.
void OpenPanelTest::takesATypedPathOnceTheListIsComplete()
{
    QFETCH(QString, typed);
    PanelDriver driver;
    begin(driver);
    QTest::qWait(500); // waits on purpose: Qt tells nobody when its list is complete
    driver.type(typed);
    QTRY_VERIFY(driver.acceptButton()->isEnabled());
    driver.accept();
    QTRY_COMPARE(driver.answers.size(), 1);
    QVERIFY2(isSameFile(driver.answers.first().second, path(u"clip.mp4"_s)),
             qPrintable(driver.answers.first().second));
}

// A list of completions can take the focus away while a person types on; Qt then puts the name of the file
// that the text leads to in the place of the path.
void OpenPanelTest::keepsWhatIsTypedWhileItsFieldHasNoFocus()
{
    PanelDriver driver;
    OpenPanel{{}, QDir::rootPath()}.beginSheet(&driver.window, driver.completion());
    QVERIFY(QTest::qWaitForWindowActive(driver.panel(), test::waitLimit));
    driver.panel()->findChild<QWidget *>(u"lookInCombo"_s)->setFocus();
    QVERIFY(!driver.nameField()->hasFocus());
    QTest::keyClicks(driver.nameField(), path(u"clip.mp4"_s));
    QCOMPARE(driver.nameField()->text(), path(u"clip.mp4"_s));
    driver.accept();
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"clip.mp4"_s)}}));
}

void OpenPanelTest::takesReturn()
{
    PanelDriver driver;
    begin(driver);
    QVERIFY(QTest::qWaitForWindowActive(driver.panel(), test::waitLimit));
    driver.type(u"clip.mp4"_s);
    QTRY_VERIFY(driver.acceptButton()->isEnabled());
    QTest::keyClick(driver.nameField(), Qt::Key_Return);
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{1, path(u"clip.mp4"_s)}}));
}

void OpenPanelTest::isCancelled_data()
{
    using Way = std::function<void(PanelDriver &)>;
    QTest::addColumn<Way>("way");
    QTest::newRow("button") << Way(
        [](PanelDriver &driver) { driver.click(driver.button(QDialogButtonBox::Cancel)); });
    QTest::newRow("Escape") << Way(
        [](PanelDriver &driver) { QTest::keyClick(driver.panel(), Qt::Key_Escape); });
    QTest::newRow("closed") << Way([](PanelDriver &driver) { driver.panel()->close(); });
}

void OpenPanelTest::isCancelled()
{
    QFETCH(std::function<void(PanelDriver &)>, way);
    PanelDriver driver;
    begin(driver);
    driver.type(u"clip.mp4"_s);
    way(driver);
    QTRY_COMPARE(driver.answers, (PanelDriver::Answers{{0, QString()}}));
    QTRY_VERIFY(!driver.panel());
    QTRY_COMPARE(driver.answers.size(), 1);
}

void OpenPanelTest::isASheet()
{
    PanelDriver driver;
    begin(driver);
    QVERIFY(driver.panel()->isVisible());
    QVERIFY(driver.answers.isEmpty());
    QCOMPARE(driver.panel()->windowModality(), Qt::WindowModal);
    QCOMPARE(driver.panel()->parentWidget(), &driver.window);
    QCOMPARE(driver.panel()->windowTitle(), u"Open Video"_s);
    QCOMPARE(driver.panel()->acceptMode(), QFileDialog::AcceptOpen);
    QCOMPARE(driver.panel()->fileMode(), QFileDialog::ExistingFile);
    QVERIFY(driver.panel()->testOption(QFileDialog::DontUseNativeDialog));
    QCOMPARE(driver.panel()->objectName(), u"openPanel"_s);
}

void OpenPanelTest::startsInAFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("start");
    QTest::newRow("given") << m_folder.path() << m_folder.path();
    QTest::newRow("none") << QString() << QDir::homePath();
    QTest::newRow("gone") << path(u"gone"_s) << QDir::homePath();
    QTest::newRow("a file") << path(u"clip.mp4"_s) << QDir::homePath();
}

void OpenPanelTest::startsInAFolder()
{
    QFETCH(QString, folder);
    QFETCH(QString, start);
    PanelDriver driver;
    OpenPanel{{}, folder}.beginSheet(&driver.window, driver.completion());
    QCOMPARE(driver.panel()->directory().canonicalPath(), QDir(start).canonicalPath());
}

void OpenPanelTest::listsEveryKindOfFile()
{
    PanelDriver driver;
    begin(driver);
    QTRY_VERIFY(driver.listed().contains(u"clip.mp4"_s));
    QVERIFY(driver.listed().contains(u"notes.txt"_s));
    QVERIFY(driver.listed().contains(u"folder"_s));
}

void OpenPanelTest::goesIntoATypedFolder()
{
    PanelDriver driver;
    begin(driver);
    QTRY_VERIFY(driver.listIndex(u"folder"_s).isValid());
    driver.type(u"folder"_s);
    driver.accept();
    QVERIFY(driver.answers.isEmpty());
    QVERIFY(driver.panel()->isVisible());
    QCOMPARE(driver.panel()->directory().path(), path(u"folder"_s));
    QCOMPARE(driver.nameField()->text(), QString());
    QTRY_COMPARE(driver.listed(), QStringList{u"inside.mp4"_s});
}

void OpenPanelTest::goesIntoAFolderOfTheList()
{
    PanelDriver driver;
    begin(driver);
    QTRY_VERIFY(driver.listIndex(u"folder"_s).isValid());
    driver.clickInList(u"folder"_s);
    QTRY_VERIFY(driver.acceptButton()->isEnabled());
    driver.accept();
    QVERIFY(driver.answers.isEmpty());
    QCOMPARE(driver.panel()->directory().path(), path(u"folder"_s));
}

void OpenPanelTest::aMissingFileIsSaidAndThePanelStays_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"gone.mp4"_s;
    QTest::newRow("markup and quotation marks") << u"no \"<b>such\" file"_s;
}

void OpenPanelTest::aMissingFileIsSaidAndThePanelStays()
{
    QFETCH(QString, name);
    PanelDriver driver;
    begin(driver);
    driver.type(name);
    driver.accept();
    QVERIFY(driver.question());
    QCOMPARE(driver.question()->text(), u"“%1” does not exist."_s.arg(name));
    QCOMPARE(driver.question()->textFormat(), Qt::PlainText);
    QCOMPARE(driver.question()->windowModality(), Qt::WindowModal);
    driver.click(driver.questionButton(u"OK"_s));
    QTRY_VERIFY(driver.panel()->findChildren<QMessageBox *>().isEmpty());
    QVERIFY(driver.panel()->isVisible());
    QVERIFY(driver.answers.isEmpty());
}

void OpenPanelTest::opensNothingWithoutAName()
{
    PanelDriver driver;
    begin(driver);
    QVERIFY(!driver.acceptButton()->isEnabled());
    driver.type(u"clip.mp4"_s);
    QVERIFY(driver.acceptButton()->isEnabled());
    driver.type(QString());
    QVERIFY(!driver.acceptButton()->isEnabled());
}

// What is in them is not read: some files never answer.
void OpenPanelTest::tellsFilesByTheirNamesAlone()
{
    QTemporaryDir folder;
    QImage picture(1, 1, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(folder.filePath(u"a.mp4"_s), "png"));
    PanelDriver driver;
    OpenPanel{{}, folder.path()}.beginSheet(&driver.window, driver.completion());
    QTRY_VERIFY(driver.listIndex(u"a.mp4"_s).isValid());
    constexpr int typeColumn = 2;
    const QString type = driver.listIndex(u"a.mp4"_s).siblingAtColumn(typeColumn).data().toString();
    QVERIFY2(type.contains("video"_L1, Qt::CaseInsensitive), qPrintable(type));
    QVERIFY(!driver.listIndex(u"a.mp4"_s).data(Qt::DecorationRole).value<QIcon>().isNull());
}

// Whoever may read /proc/kmsg waits there for the kernel's next message.
void OpenPanelTest::goesOnInAFolderOfFilesThatNeverAnswer()
{
    PanelDriver driver;
    OpenPanel{{}, u"/proc"_s}.beginSheet(&driver.window, driver.completion());
    QTRY_VERIFY(driver.listIndex(u"kmsg"_s).isValid());
    driver.type(QDir::currentPath().prepend("/proc/self/root"_L1) + u"/gone.mp4"_s);
    driver.accept();
    QTRY_VERIFY(driver.question());
}

void OpenPanelTest::offersThePlacesOfFilms()
{
    QTemporaryDir home;
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(home.path()));
    for (const QString &name : {u"Videos"_s, u"Desktop"_s})
        QVERIFY(QDir(home.path()).mkdir(name));
    PanelDriver driver;
    begin(driver);
    QStringList paths;
    for (const QUrl &url : driver.panel()->sidebarUrls())
        paths << url.toLocalFile();
    qputenv("HOME", before);
    QCOMPARE(paths, (QStringList{{}, home.path(), home.filePath(u"Videos"_s), home.filePath(u"Desktop"_s)}));
}

void OpenPanelTest::answersNothingWhenTheWindowDies()
{
    int answers = 0;
    auto window = std::make_unique<QWidget>();
    window->show();
    OpenPanel{{}, m_folder.path()}.beginSheet(window.get(), [&answers](int, const QString &) { ++answers; });
    window.reset();
    QCoreApplication::processEvents();
    QCOMPARE(answers, 0);
}

TESSALY_GUI_TEST_MAIN(OpenPanelTest)
#include "open_panel_test.moc"
