#include "ui/alert_fixture.h"

#include <QAccessible>
#include <QClipboard>
#include <QFontDatabase>
#include <QScrollBar>

namespace tessaly {

using namespace tessaly::test;
using namespace Qt::StringLiterals;

namespace {

// Of an alert with one answer.
QAbstractButton *detailsButton(const QMessageBox *box)
{
    const QList<QAbstractButton *> buttons = box->buttons();
    return buttons.at(0) == buttonOf(box, 1000) ? buttons.at(1) : buttons.at(0);
}

Alert alertWithLines(const Stage &stage, int count)
{
    Alert alert = stage.alert({u"OK"_s});
    for (int i = 0; i < count; ++i)
        alert.detailsText += u"line %1 <b>&amp;</b>\n"_s.arg(i);
    return alert;
}

} // namespace

class AlertLookTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void showsTextsAsTheyAre();
    void stressesTheMessage();
    void showsAmpersandsInButtons();
    void letsTheDesktopPlaceTheButtons();
    void showsDetailsWhenAsked();
    void showsTheEndOfTheDetailsFirst();
    void copiesTheDetails();
    void hasNoDetailsButtonWithoutDetails();
    void tellsItsNameToAccessibility();
    void showsAnIcon_data();
    void showsAnIcon();
    void showsTheApplicationsIcon();
    void liesOverItsWindow();
    void fitsOnTheScreen_data();
    void fitsOnTheScreen();
    void breaksLongWords_data();
    void breaksLongWords();
};

void AlertLookTest::showsTextsAsTheyAre()
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

void AlertLookTest::stressesTheMessage()
{
    Stage stage;
    stage.begin(stage.alert());
    QVERIFY(labelOf(stage.box(), u"Message"_s)->font().bold());
    QVERIFY(!labelOf(stage.box(), u"Information"_s)->font().bold());
}

void AlertLookTest::letsTheDesktopPlaceTheButtons()
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

void AlertLookTest::showsAmpersandsInButtons()
{
    Stage stage;
    stage.begin(stage.alert({u"Save & Close"_s}));
    const QPushButton *button = buttonOf(stage.box(), 1000);
    QCOMPARE(button->text(), u"Save && Close"_s);
    QVERIFY(button->shortcut().isEmpty());
    QCOMPARE(button->accessibleName(), u"Save & Close"_s);
}

void AlertLookTest::showsDetailsWhenAsked()
{
    Stage stage;
    Alert alert = stage.alert({u"OK"_s});
    alert.detailsText = u"line 1\nline 2"_s;
    stage.begin(alert);
    QMessageBox *box = stage.box();
    QVERIFY(QTest::qWaitForWindowActive(box, waitLimit));
    const auto *details = box->findChild<QTextEdit *>();
    QVERIFY(!details->isVisible());
    QCOMPARE(box->buttons().size(), 2);
    QAbstractButton *show = detailsButton(box);
    QCOMPARE(show->text(), u"Show Details..."_s);
    show->click();
    QVERIFY(details->isVisible());
    QVERIFY(box->isVisible());
    press(box, Qt::Key_Escape);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertLookTest::showsTheEndOfTheDetailsFirst()
{
    Stage stage;
    stage.begin(alertWithLines(stage, 40));
    QMessageBox *box = stage.box();
    QVERIFY(QTest::qWaitForWindowActive(box, waitLimit));
    const auto *view = box->findChild<QTextEdit *>();
    QCOMPARE(view->font().family(), QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
    QVERIFY(view->font().family() != box->font().family());
    detailsButton(box)->click();
    QTRY_VERIFY(view->verticalScrollBar()->maximum() > 0);
    QVERIFY(view->textCursor().atEnd());
    QTRY_VERIFY(view->viewport()->rect().contains(view->cursorRect()));
}

void AlertLookTest::copiesTheDetails()
{
    Stage stage;
    const Alert alert = alertWithLines(stage, 40);
    stage.begin(alert);
    QMessageBox *box = stage.box();
    QVERIFY(QTest::qWaitForWindowActive(box, waitLimit));
    auto *copy = box->findChild<QPushButton *>(u"alertCopy"_s);
    QVERIFY(copy && !copy->isVisible());
    detailsButton(box)->click();
    QTRY_VERIFY(copy->isVisible());
    QGuiApplication::clipboard()->setText(u"before"_s);
    const QPoint middle = copy->mapTo(box, copy->rect().center());
    QTest::mouseClick(box->windowHandle(), Qt::LeftButton, {}, middle);
    QCOMPARE(QGuiApplication::clipboard()->text(), alert.detailsText);
    QVERIFY(box->isVisible());
    press(box, Qt::Key_Return);
    QTRY_COMPARE(stage.responses, QList<int>{1000});
}

void AlertLookTest::hasNoDetailsButtonWithoutDetails()
{
    Stage stage;
    stage.begin(stage.alert({u"OK"_s, u"Cancel"_s}));
    QCOMPARE(stage.box()->buttons().size(), 2);
}

void AlertLookTest::tellsItsNameToAccessibility()
{
    Stage stage;
    stage.begin(stage.alert());
    QCOMPARE(stage.box()->windowTitle(), QGuiApplication::applicationDisplayName());
    QCOMPARE(stage.box()->accessibleName(), u"Message"_s);
    // What the labels say would be heard twice, and breaks within words are no part of a name.
    QCOMPARE(QAccessible::queryAccessibleInterface(stage.box())->text(QAccessible::Description), QString());
    const QString longWord = u"n"_s.repeated(60);
    Alert alert = stage.alert();
    alert.informativeText = longWord;
    stage.begin(alert);
    const QLabel *label = labelOf(stage.box(), withBreaksInLongWords(longWord));
    QVERIFY(label && label->text() != longWord);
    QCOMPARE(label->accessibleName(), longWord);
}

void AlertLookTest::showsAnIcon_data()
{
    QTest::addColumn<Alert::Style>("style");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::newRow("warning") << Alert::Style::warning << QMessageBox::Warning;
    QTest::newRow("informational") << Alert::Style::informational << QMessageBox::Information;
    QTest::newRow("critical") << Alert::Style::critical << QMessageBox::Critical;
}

void AlertLookTest::showsAnIcon()
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

void AlertLookTest::showsTheApplicationsIcon()
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

void AlertLookTest::liesOverItsWindow()
{
    Stage stage;
    stage.begin(stage.alert());
    const QRect sheet = stage.box()->frameGeometry();
    const QRect window = stage.window.frameGeometry();
    QVERIFY(std::abs(sheet.center().x() - window.center().x()) <= 2);
    QVERIFY(window.contains(sheet));
}

void AlertLookTest::fitsOnTheScreen_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("255 wide letters") << QString(255, u'W');
    QTest::newRow("255 dots") << QString(255, u'.');
    QTest::newRow("60 faces") << u"🎬"_s.repeated(60);
    QTest::newRow("words") << u"word "_s.repeated(200);
}

void AlertLookTest::fitsOnTheScreen()
{
    QFETCH(const QString, name);
    Stage stage;
    Alert alert = stage.alert({u"OK"_s, u"Show in Finder"_s, u"Launch Video in QuickTime"_s});
    alert.messageText = u"Cannot open "_s + name;
    alert.informativeText = u"The file "_s + name + u" cannot be opened."_s;
    alert.detailsText = name;
    stage.begin(alert);
    const QMessageBox *box = stage.box();
    QVERIFY(QTest::qWaitForWindowExposed(stage.box(), waitLimit));
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

void AlertLookTest::breaksLongWords_data()
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

void AlertLookTest::breaksLongWords()
{
    QFETCH(const QString, text);
    QFETCH(const QString, expected);
    QCOMPARE(withBreaksInLongWords(text), expected);
}

} // namespace tessaly

using tessaly::AlertLookTest;
TESSALY_GUI_TEST_MAIN(AlertLookTest)
#include "alert_look_test.moc"
