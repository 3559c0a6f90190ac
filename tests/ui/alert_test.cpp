#include "support/test_case.h"
#include "ui/alert.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTextEdit>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace tessaly {

namespace {

constexpr int noAnswer = 0;

// A shown window and what the alerts on it answered, in order.
struct Stage
{
    Stage()
    {
        window.setGeometry(100, 100, 500, 400);
        window.show();
    }

    Alert alert(const QStringList &titles = {}) const
    {
        Alert result;
        result.messageText = u"Message"_s;
        result.informativeText = u"Information"_s;
        for (const QString &title : titles)
            result.addButtonWithTitle(title);
        return result;
    }

    void begin(const Alert &alert)
    {
        alert.beginSheet(&window, [this](int response) { responses << response; });
    }

    // The alerts on the window, the last one begun last.
    QList<QMessageBox *> boxes() const { return window.findChildren<QMessageBox *>(u"alert"_s); }
    QMessageBox *box() const { return boxes().isEmpty() ? nullptr : boxes().last(); }

    QWidget window;
    QList<int> responses;
};

QPushButton *buttonOf(const QMessageBox *box, int response)
{
    return box->findChild<QPushButton *>(u"alertButton%1"_s.arg(response));
}

QLabel *labelOf(const QMessageBox *box, const QString &text)
{
    const QList<QLabel *> labels = box->findChildren<QLabel *>();
    for (QLabel *label : labels)
        if (label->text() == text) return label;
    return nullptr;
}

// As from the keyboard: to the window, which passes it on to the view with the focus.
void press(QWidget *window, Qt::Key key)
{
    QTest::keyClick(window->windowHandle(), key);
}

} // namespace

class AlertTest : public test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void opensAtOnceAsASheet();
    void belongsToTheWindowOfAView();
    void blocksTheWindow();
    void hasOneButtonWithoutAny();
    void answersTheClickedButton_data();
    void answersTheClickedButton();
    void answersKeys_data();
    void answersKeys();
    void answersTheWindowManagersClose();
    void staysWhenNothingAnswersTheClose();
    void answersOnceForManyKeys();
    void answersAfterTheSheetHasClosed();
    void needsNoCompletion();
    void saysWhenItWasEndedByCode();
    void showsTextsAsTheyAre();
    void stressesTheMessage();
    void showsAmpersandsInButtons();
    void letsTheDesktopPlaceTheButtons();
    void showsDetailsWhenAsked();
    void hasNoDetailsButtonWithoutDetails();
    void tellsItsNameToAccessibility();
    void showsAnIcon_data();
    void showsAnIcon();
    void showsTheApplicationsIcon();
    void stacksASecondAlertOnTheFirst();
    void mayBeginAnotherWhenAnswered();
    void mayDeleteTheWindowWhenAnswered();
    void survivesTheWindowsEnd();
    void survivesTheWindowsClose();
    void worksWithoutAWindow();
    void liesOverItsWindow();
    void fitsOnTheScreen_data();
    void fitsOnTheScreen();
    void breaksLongWords_data();
    void breaksLongWords();
};

void AlertTest::opensAtOnceAsASheet()
{
    Stage stage;
    stage.begin(stage.alert());
    const QMessageBox *box = stage.box();
    QVERIFY(box);
    QVERIFY(box->isVisible());
    QCOMPARE(box->windowModality(), Qt::WindowModal);
    QCOMPARE(box->parentWidget(), &stage.window);
    QCOMPARE(stage.responses, QList<int>());
}

void AlertTest::belongsToTheWindowOfAView()
{
    Stage stage;
    QWidget view(&stage.window);
    stage.alert().beginSheet(&view);
    QCOMPARE(stage.box()->parentWidget(), &stage.window);
}

void AlertTest::blocksTheWindow()
{
    Stage stage;
    QPushButton button(&stage.window);
    button.setGeometry(0, 0, 60, 30);
    button.show();
    int clicks = 0;
    connect(&button, &QPushButton::clicked, this, [&] { ++clicks; });
    const auto click = [&] { QTest::mouseClick(stage.window.windowHandle(), Qt::LeftButton, {}, {20, 20}); };
    stage.begin(stage.alert());
    click();
    QCOMPARE(clicks, 0);
    press(stage.box(), Qt::Key_Return);
    click();
    QCOMPARE(clicks, 1);
}

void AlertTest::hasOneButtonWithoutAny()
{
    Stage stage;
    stage.begin(stage.alert());
    const QList<QAbstractButton *> buttons = stage.box()->buttons();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons.first()->text(), u"OK"_s);
    QCOMPARE(buttons.first()->objectName(), u"alertButton1000"_s);
}

void AlertTest::answersTheClickedButton_data()
{
    QTest::addColumn<int>("response");
    QTest::newRow("the first") << 1000;
    QTest::newRow("the second") << 1001;
    QTest::newRow("the third") << 1002;
    QTest::newRow("the fourth, called Cancel") << 1003;
}

void AlertTest::answersTheClickedButton()
{
    QFETCH(const int, response);
    Stage stage;
    const QStringList titles{u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s, u"Cancel"_s};
    stage.begin(stage.alert(titles));
    QPushButton *button = buttonOf(stage.box(), response);
    QVERIFY(button);
    QCOMPARE(button->text(), titles.at(response - 1000));
    QTest::mouseClick(stage.box()->windowHandle(), Qt::LeftButton, {},
                      button->mapTo(stage.box(), button->rect().center()));
    QTRY_COMPARE(stage.responses, QList<int>{response});
    QTRY_VERIFY(!stage.box());
}

void AlertTest::answersKeys_data()
{
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("response");
    const QStringList three{u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s};
    QTest::newRow("Return, no button") << QStringList() << Qt::Key_Return << 1000;
    QTest::newRow("Escape, no button") << QStringList() << Qt::Key_Escape << 1000;
    QTest::newRow("Return, OK alone") << QStringList{u"OK"_s} << Qt::Key_Return << 1000;
    QTest::newRow("Enter, OK alone") << QStringList{u"OK"_s} << Qt::Key_Enter << 1000;
    QTest::newRow("Escape, OK alone") << QStringList{u"OK"_s} << Qt::Key_Escape << 1000;
    QTest::newRow("Escape, another one alone") << QStringList{u"Quit"_s} << Qt::Key_Escape << 1000;
    QTest::newRow("Return, three") << three << Qt::Key_Return << 1000;
    QTest::newRow("Escape, three") << three << Qt::Key_Escape << 1000;
    QTest::newRow("Return, with Cancel") << QStringList{u"Replace"_s, u"Cancel"_s} << Qt::Key_Return << 1000;
    QTest::newRow("Escape, with Cancel") << QStringList{u"Replace"_s, u"Cancel"_s} << Qt::Key_Escape << 1001;
    QTest::newRow("Return, Cancel first") << QStringList{u"Cancel"_s, u"OK"_s} << Qt::Key_Return << 1000;
    QTest::newRow("Escape, OK and Cancel") << QStringList{u"OK"_s, u"Cancel"_s} << Qt::Key_Escape << 1001;
    QTest::newRow("Escape, cancel in small letters")
        << QStringList{u"OK"_s, u"cancel"_s} << Qt::Key_Escape << 1000;
    QTest::newRow("Escape, neither") << QStringList{u"Delete"_s, u"Keep"_s} << Qt::Key_Escape << noAnswer;
    QTest::newRow("Return, neither") << QStringList{u"Delete"_s, u"Keep"_s} << Qt::Key_Return << 1000;
    QTest::newRow("a mnemonic that is none") << QStringList{u"&OK"_s, u"&Keep"_s} << Qt::Key_K << noAnswer;
}

void AlertTest::answersKeys()
{
    QFETCH(const QStringList, titles);
    QFETCH(const Qt::Key, key);
    QFETCH(const int, response);
    Stage stage;
    stage.begin(stage.alert(titles));
    QVERIFY(QTest::qWaitForWindowActive(stage.box()));
    QPointer<QMessageBox> box = stage.box();
    press(box, key);
    if (response != noAnswer) {
        QTRY_COMPARE(stage.responses, QList<int>{response});
        QTRY_VERIFY(!box);
        return;
    }
    QCoreApplication::processEvents();
    QVERIFY(box->isVisible());
    press(box, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::answersTheWindowManagersClose()
{
    Stage stage;
    stage.begin(stage.alert({u"Replace"_s, u"Cancel"_s}));
    stage.box()->windowHandle()->close();
    QTRY_COMPARE(stage.responses, QList<int>{1001});
}

void AlertTest::staysWhenNothingAnswersTheClose()
{
    Stage stage;
    stage.begin(stage.alert({u"Delete"_s, u"Keep"_s}));
    stage.box()->windowHandle()->close();
    QCoreApplication::processEvents();
    QVERIFY(stage.box()->isVisible());
    QCOMPARE(stage.responses, QList<int>());
}

void AlertTest::answersOnceForManyKeys()
{
    Stage stage;
    stage.begin(stage.alert({u"Replace"_s, u"Cancel"_s}));
    QVERIFY(QTest::qWaitForWindowActive(stage.box()));
    const QPointer<QMessageBox> box = stage.box();
    buttonOf(box, 1001)->animateClick();
    buttonOf(box, 1000)->click();
    buttonOf(box, 1001)->click();
    QTRY_VERIFY(!box);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::answersAfterTheSheetHasClosed()
{
    Stage stage;
    bool sheetWasUp = true;
    bool windowWasFree = false;
    const QPointer<QMessageBox> *watched = nullptr;
    stage.alert().beginSheet(&stage.window, [&](int) {
        sheetWasUp = *watched && (*watched)->isVisible();
        windowWasFree = !QApplication::activeModalWidget();
    });
    const QPointer<QMessageBox> box = stage.box();
    watched = &box;
    buttonOf(box, 1000)->click();
    QTRY_VERIFY(!sheetWasUp);
    QVERIFY(windowWasFree);
}

void AlertTest::needsNoCompletion()
{
    Stage stage;
    stage.alert().beginSheet(&stage.window);
    const QPointer<QMessageBox> box = stage.box();
    press(box, Qt::Key_Return);
    QTRY_VERIFY(!box);
}

void AlertTest::saysWhenItWasEndedByCode()
{
    Stage stage;
    stage.begin(stage.alert({u"Delete"_s, u"Keep"_s}));
    stage.box()->done(0);
    QTRY_COMPARE(stage.responses, QList<int>{alertAbortedResponse});
}

void AlertTest::showsTextsAsTheyAre()
{
    Stage stage;
    Alert alert = stage.alert();
    alert.messageText = u"Cannot open <b>a & b</b>\n&amp; more"_s;
    alert.informativeText = u"<a href=\"x\">Line 1</a>\nLine <i>2</i>"_s;
    alert.detailsText = u"<b>details</b>\n&lt;"_s;
    stage.begin(alert);
    for (const QString &text : {alert.messageText, alert.informativeText}) {
        const QLabel *label = labelOf(stage.box(), text);
        QVERIFY(label);
        QCOMPARE(label->textFormat(), Qt::PlainText);
    }
    QCOMPARE(stage.box()->findChild<QTextEdit *>()->toPlainText(), alert.detailsText);
}

void AlertTest::stressesTheMessage()
{
    Stage stage;
    stage.begin(stage.alert());
    QVERIFY(labelOf(stage.box(), u"Message"_s)->font().bold());
    QVERIFY(!labelOf(stage.box(), u"Information"_s)->font().bold());
}

void AlertTest::letsTheDesktopPlaceTheButtons()
{
    Stage stage;
    stage.begin(stage.alert({u"Replace"_s, u"Cancel"_s, u"Use Both"_s}));
    const auto roleOf = [&](int response) {
        return stage.box()->buttonRole(buttonOf(stage.box(), response));
    };
    QCOMPARE(roleOf(1000), QMessageBox::AcceptRole);
    QCOMPARE(roleOf(1001), QMessageBox::RejectRole);
    QCOMPARE(roleOf(1002), QMessageBox::ActionRole);
}

void AlertTest::showsAmpersandsInButtons()
{
    Stage stage;
    stage.begin(stage.alert({u"Save & Close"_s}));
    const QPushButton *button = buttonOf(stage.box(), 1000);
    QCOMPARE(button->text(), u"Save && Close"_s);
    QVERIFY(button->shortcut().isEmpty());
    QCOMPARE(button->accessibleName(), u"Save & Close"_s);
}

void AlertTest::showsDetailsWhenAsked()
{
    Stage stage;
    Alert alert = stage.alert({u"OK"_s});
    alert.detailsText = u"line 1\nline 2"_s;
    stage.begin(alert);
    QMessageBox *box = stage.box();
    QVERIFY(QTest::qWaitForWindowActive(box));
    const auto *details = box->findChild<QTextEdit *>();
    QVERIFY(!details->isVisible());
    const QList<QAbstractButton *> buttons = box->buttons();
    QCOMPARE(buttons.size(), 2);
    QAbstractButton *show = buttons.at(0) == buttonOf(box, 1000) ? buttons.at(1) : buttons.at(0);
    QCOMPARE(show->text(), u"Show Details..."_s);
    show->click();
    QVERIFY(details->isVisible());
    QVERIFY(box->isVisible());
    press(box, Qt::Key_Escape);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::hasNoDetailsButtonWithoutDetails()
{
    Stage stage;
    stage.begin(stage.alert({u"OK"_s, u"Cancel"_s}));
    QCOMPARE(stage.box()->buttons().size(), 2);
}

void AlertTest::tellsItsNameToAccessibility()
{
    Stage stage;
    stage.begin(stage.alert());
    QCOMPARE(stage.box()->windowTitle(), QGuiApplication::applicationDisplayName());
    QCOMPARE(stage.box()->accessibleName(), u"Message"_s);
    QCOMPARE(stage.box()->accessibleDescription(), u"Information"_s);
}

void AlertTest::showsAnIcon_data()
{
    QTest::addColumn<Alert::Style>("style");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::newRow("warning") << Alert::Style::warning << QMessageBox::Warning;
    QTest::newRow("informational") << Alert::Style::informational << QMessageBox::Information;
    QTest::newRow("critical") << Alert::Style::critical << QMessageBox::Critical;
}

void AlertTest::showsAnIcon()
{
    QFETCH(const Alert::Style, style);
    QFETCH(const QMessageBox::Icon, icon);
    Stage stage;
    Alert alert = stage.alert();
    QCOMPARE(alert.style, Alert::Style::warning);
    alert.style = style;
    stage.begin(alert);
    QCOMPARE(stage.box()->icon(), icon);
}

void AlertTest::showsTheApplicationsIcon()
{
    Stage stage;
    QPixmap green(64, 64);
    green.fill(Qt::green);
    stage.window.setWindowIcon(green);
    Alert alert = stage.alert();
    for (const Alert::Style style : {Alert::Style::warning, Alert::Style::informational}) {
        alert.style = style;
        stage.begin(alert);
        QCOMPARE(stage.box()->iconPixmap().toImage().pixelColor(5, 5), QColor(Qt::green));
    }
    alert.style = Alert::Style::critical;
    stage.begin(alert);
    QCOMPARE(stage.box()->icon(), QMessageBox::Critical);
}

void AlertTest::stacksASecondAlertOnTheFirst()
{
    Stage stage;
    stage.alert().beginSheet(&stage.window, [&](int) { stage.responses << 1; });
    const QPointer<QMessageBox> first = stage.box();
    QVERIFY(QTest::qWaitForWindowActive(first));
    stage.alert().beginSheet(&stage.window, [&](int) { stage.responses << 2; });
    const QPointer<QMessageBox> second = stage.box();
    QVERIFY(second != first);
    QVERIFY(QTest::qWaitForWindowActive(second));
    QCOMPARE(QApplication::activeModalWidget(), second.data());
    press(first, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(stage.responses, QList<int>());
    press(second, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{2});
    QVERIFY(first->isVisible());
    QVERIFY(QTest::qWaitForWindowActive(first));
    press(first, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, (QList<int>{2, 1}));
    QTRY_VERIFY(stage.boxes().isEmpty());
}

void AlertTest::mayBeginAnotherWhenAnswered()
{
    Stage stage;
    stage.alert().beginSheet(&stage.window, [&](int) { stage.begin(stage.alert({u"Again"_s})); });
    press(stage.box(), Qt::Key_Return);
    QTRY_VERIFY(stage.box() && stage.box()->isVisible());
    QCOMPARE(buttonOf(stage.box(), 1000)->text(), u"Again"_s);
    press(stage.box(), Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertTest::mayDeleteTheWindowWhenAnswered()
{
    auto *window = new QWidget;
    const QPointer<QWidget> watched = window;
    window->show();
    Alert alert;
    alert.messageText = u"Message"_s;
    alert.beginSheet(window, [=](int) { delete window; });
    press(window->findChild<QMessageBox *>(), Qt::Key_Return);
    QTRY_VERIFY(!watched);
}

void AlertTest::survivesTheWindowsEnd()
{
    int calls = 0;
    Alert alert;
    for (const bool answered : {false, true}) {
        auto window = std::make_unique<QWidget>();
        window->show();
        alert.beginSheet(window.get(), [&](int) { ++calls; });
        const QPointer<QMessageBox> box = window->findChild<QMessageBox *>();
        if (answered) buttonOf(box, 1000)->click();
        window.reset();
        QVERIFY(!box);
    }
    QCoreApplication::processEvents();
    QCOMPARE(calls, 0);
}

void AlertTest::survivesTheWindowsClose()
{
    Stage stage;
    stage.begin(stage.alert());
    const QPointer<QMessageBox> box = stage.box();
    stage.window.close();
    QCoreApplication::processEvents();
    QVERIFY(box);
    buttonOf(box, 1000)->click();
    QTRY_COMPARE(stage.responses, QList<int>{1000});
    QTRY_VERIFY(!box);
}

void AlertTest::worksWithoutAWindow()
{
    int answer = 0;
    Alert alert;
    alert.messageText = u"Message"_s;
    alert.beginSheet(nullptr, [&](int response) { answer = response; });
    QWidget *box = QApplication::activeModalWidget();
    QVERIFY(box);
    press(box, Qt::Key_Return);
    QTRY_COMPARE(answer, 1000);
}

void AlertTest::liesOverItsWindow()
{
    Stage stage;
    stage.begin(stage.alert());
    const QRect sheet = stage.box()->frameGeometry();
    const QRect window = stage.window.frameGeometry();
    QVERIFY(std::abs(sheet.center().x() - window.center().x()) <= 2);
    QVERIFY(window.contains(sheet));
}

void AlertTest::fitsOnTheScreen_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("255 wide letters") << QString(255, u'W');
    QTest::newRow("255 dots") << QString(255, u'.');
    QTest::newRow("60 faces") << u"🎬"_s.repeated(60);
    QTest::newRow("words") << u"word "_s.repeated(200);
}

void AlertTest::fitsOnTheScreen()
{
    QFETCH(const QString, name);
    Stage stage;
    Alert alert = stage.alert({u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s});
    alert.messageText = u"Cannot open "_s + name;
    alert.informativeText = u"The file "_s + name + u" cannot be opened."_s;
    alert.detailsText = name;
    stage.begin(alert);
    const QMessageBox *box = stage.box();
    QVERIFY(QTest::qWaitForWindowExposed(stage.box()));
    QVERIFY(box->screen()->availableGeometry().contains(box->frameGeometry()));
    for (const QString &text : {alert.messageText, alert.informativeText}) {
        const QLabel *label = labelOf(box, withBreaksInLongWords(text));
        QVERIFY(label);
        // Every line of the text lies within the label.
        const QRect needed =
            label->fontMetrics().boundingRect(QRect(0, 0, label->contentsRect().width(), 10000),
                                              static_cast<int>(Qt::TextWordWrap), label->text());
        QVERIFY2(needed.width() <= label->contentsRect().width(),
                 qPrintable(QString::number(needed.width())));
        QVERIFY2(needed.height() <= label->contentsRect().height(),
                 qPrintable(QString::number(needed.height())));
    }
}

void AlertTest::breaksLongWords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString letters24 = u"abcdefghijklmnopqrstuvwx"_s;
    const QString broken25 = u"abcdefghijkl\u200Bmnopqrstuvwx\u200By"_s;
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("short words") << u" a  word\nand\tmore "_s << u" a  word\nand\tmore "_s;
    QTest::newRow("just short enough") << letters24 << letters24;
    QTest::newRow("too long") << letters24 + u'y' << broken25;
    QTest::newRow("too long among others")
        << u"a "_s + letters24 + u"y\nb"_s << u"a "_s + broken25 + u"\nb"_s;
    QTest::newRow("never within a character")
        << u"e\u0301"_s.repeated(25)
        << u"e\u0301"_s.repeated(12) + u"\u200B"_s + u"e\u0301"_s.repeated(12) + u"\u200B"_s + u"e\u0301"_s;
    QTest::newRow("never within a pair")
        << u"🎬"_s.repeated(25) << u"🎬"_s.repeated(12) + u"\u200B"_s + u"🎬"_s.repeated(12) + u"\u200B🎬"_s;
}

void AlertTest::breaksLongWords()
{
    QFETCH(const QString, text);
    QFETCH(const QString, expected);
    QCOMPARE(withBreaksInLongWords(text), expected);
}

} // namespace tessaly

using tessaly::AlertTest;
TESSALY_GUI_TEST_MAIN(AlertTest)
#include "alert_test.moc"
