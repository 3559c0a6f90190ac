// How the program starts, and what it answers without a window.
#include "e2e/end_to_end_case.h"

using namespace Qt::StringLiterals;
using namespace tessaly::e2e;

class StartingTest : public EndToEndCase
{
    Q_OBJECT

private Q_SLOTS:
    void answersWithoutAWindow_data();
    void answersWithoutAWindow();
    void saysInOneSentenceThatThereIsNoWindow_data();
    void saysInOneSentenceThatThereIsNoWindow();
    void saysInOneSentenceWhereFilesAreOpened();
    void startsQuietlyInTheNoFileState();
    void endsByKeyboardAndLeavesNothing();
    void aClickUnderAnAlertOnlyBringsItBack();
    void keepsTheWindowsSizeAndNothingElse();
};

namespace {

QProcessEnvironment environmentWith(const QString &name, const QString &value)
{
    QProcessEnvironment environment;
    environment.insert(name, value);
    return environment;
}

// One line that ends like a sentence.
bool isOneSentence(const QString &text)
{
    return text.count(u'\n') == 1 && text.startsWith("tessaly: "_L1) && text.endsWith(".\n"_L1);
}

} // namespace

void StartingTest::answersWithoutAWindow_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("beginning");
    QTest::newRow("help") << u"--help"_s << u"Usage: tessaly"_s;
    QTest::newRow("help in one letter") << u"-h"_s << u"Usage: tessaly"_s;
    QTest::newRow("version") << u"--version"_s << u"tessaly 0."_s;
}

void StartingTest::answersWithoutAWindow()
{
    QFETCH(QString, argument);
    QFETCH(QString, beginning);
    Program &tessaly =
        start(u"tessaly"_s, {.arguments = {argument}, .environment = environmentWith(u"DISPLAY"_s, {})});
    QTRY_VERIFY(tessaly.hasEnded());
    QCOMPARE(tessaly.exitStatus(), 0);
    QVERIFY2(tessaly.standardOutput().startsWith(beginning), qPrintable(tessaly.standardOutput()));
    QCOMPARE(tessaly.standardError(), QString());
}

void StartingTest::saysInOneSentenceThatThereIsNoWindow_data()
{
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QString>("reason");
    QTest::newRow("none is named") << QString() << QString() << u"there is no screen"_s;
    QTest::newRow("the one that is named does not exist") << u":4711"_s << QString() << u"DISPLAY=:4711"_s;
    QTest::newRow("another kind of window is asked for")
        << u":4711"_s << u"nonsense"_s << u"QT_QPA_PLATFORM=nonsense"_s;
}

void StartingTest::saysInOneSentenceThatThereIsNoWindow()
{
    QFETCH(QString, display);
    QFETCH(QString, platform);
    QFETCH(QString, reason);
    QProcessEnvironment environment = environmentWith(u"DISPLAY"_s, display);
    environment.insert(u"QT_QPA_PLATFORM"_s, platform);
    Program &tessaly = start(u"tessaly"_s, {.environment = environment});
    QTRY_VERIFY(tessaly.hasEnded());
    QCOMPARE(tessaly.exitStatus(), 1);
    QVERIFY2(isOneSentence(tessaly.standardError()), qPrintable(tessaly.standardError()));
    QVERIFY2(tessaly.standardError().contains("tessaly-cli"_L1), qPrintable(tessaly.standardError()));
    QVERIFY2(tessaly.standardError().contains(reason), qPrintable(tessaly.standardError()));
}

void StartingTest::saysInOneSentenceWhereFilesAreOpened()
{
    Program &tessaly = launch({.arguments = {clip(u"plain.mp4"_s)}});
    QTRY_VERIFY(tessaly.shows(Role::label, u"Input: 0 x 0"_s));
    QVERIFY2(isOneSentence(tessaly.standardError()), qPrintable(tessaly.standardError()));
    QVERIFY2(tessaly.standardError().contains("opened in the window"_L1),
             qPrintable(tessaly.standardError()));
}

void StartingTest::startsQuietlyInTheNoFileState()
{
    Program &tessaly = launch();
    QTRY_VERIFY(tessaly.shows(Role::label, u"Input: 0 x 0"_s));
    QVERIFY(tessaly.shows(Role::label, u"Scale:"_s));
    QVERIFY(tessaly.isEnabled(Role::button, u"Open"_s));
    QVERIFY(tessaly.isEnabled(Role::button, u"Help"_s));
    QVERIFY(!tessaly.isEnabled(Role::button, u"Save"_s));
    for (const QString &name : {u"Output width"_s, u"Output height"_s}) {
        QVERIFY(!tessaly.isEnabled(Role::field, name));
        QCOMPARE(tessaly.fieldText(name), u"0"_s);
    }
    const std::optional<Control> box = tessaly.find(Role::checkBox, u"Keep proportions"_s);
    QVERIFY(box);
    QVERIFY(box->is(State::checked));
    QVERIFY(!box->is(State::enabled));
    QCOMPARE(tessaly.standardOutput() + tessaly.standardError(), QString());
}

void StartingTest::endsByKeyboardAndLeavesNothing()
{
    Program &tessaly = launch();
    QVERIFY(tessaly.press({u"F1"_s}));
    QTRY_VERIFY(tessaly.shows(Role::alert));
    QCOMPARE(tessaly.labelsIn(Role::alert), QStringList({u"Questions?"_s, u"support@tessaly.example"_s}));
    QVERIFY(tessaly.press({u"Escape"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(tessaly.press({u"ctrl+q"_s}));
    QTRY_VERIFY(tessaly.hasEnded());
    QCOMPARE(tessaly.exitStatus(), 0);
    QCOMPARE(temporaryFiles(), QStringList());
}

void StartingTest::aClickUnderAnAlertOnlyBringsItBack()
{
    Program &tessaly = launch();
    QVERIFY(tessaly.press({u"F1"_s}));
    QTRY_VERIFY(tessaly.shows(Role::alert));
    QVERIFY(tessaly.click(Role::button, u"Open"_s));
    QVERIFY(tessaly.press({u"Return"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::alert));
    QVERIFY(!tessaly.shows(Role::field, u"File name:"_s));
    QVERIFY(tessaly.press({u"F1"_s})); // the window has the keyboard again
    QTRY_VERIFY(tessaly.shows(Role::alert));
}

void StartingTest::keepsTheWindowsSizeAndNothingElse()
{
    Program &tessaly = launch();
    QVERIFY(tessaly.press({u"ctrl+o"_s}));
    QTRY_VERIFY(tessaly.shows(Role::field, u"File name:"_s));
    QVERIFY(tessaly.press({u"Escape"_s}));
    QTRY_VERIFY(!tessaly.shows(Role::field, u"File name:"_s));
    QVERIFY(tessaly.press({u"ctrl+w"_s}));
    QTRY_VERIFY(tessaly.hasEnded());
    const QDir config(desktop().environment().value(u"HOME"_s) + u"/.config"_s);
    QCOMPARE(config.entryList(QDir::Files), QStringList());
    QCOMPARE(QDir(config.filePath(u"tessaly"_s)).entryList(QDir::Files), QStringList{u"window.ini"_s});
}

TESSALY_TEST_MAIN(StartingTest)
#include "starting_test.moc"
