#include "ui/progress_sheet.h"

#include "pointer.h"
#include "support/test_case.h"
#include "ui/progress_bar.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

namespace {

struct Fixture
{
    Fixture()
    {
        window.resize(800, 500);
        button.setGeometry(10, 10, 100, 30);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window, waitLimit)) qFatal("the window does not become active");
        title->setText(u"Resizing Video..."_s);
        cancel->show();
    }

    void begin()
    {
        sheet.beginSheet(&window);
        sheet.activateWindow();
        if (!QTest::qWaitForWindowActive(&sheet, waitLimit)) qFatal("the sheet does not become active");
    }
    void key(Qt::Key key) { QTest::keyClick(sheet.windowHandle(), key); }

    QWidget window;
    QPushButton button{&window};
    ProgressSheet sheet;
    QLabel *title = sheet.findChild<QLabel *>(u"progressTitle"_s);
    ProgressBar *bar = sheet.findChild<ProgressBar *>(u"progressBar"_s);
    QLabel *detail = sheet.findChild<QLabel *>(u"progressDetail"_s);
    QPushButton *cancel = sheet.findChild<QPushButton *>(u"progressCancel"_s);
    QSignalSpy cancelClicked{cancel, &QPushButton::clicked};
    QSignalSpy windowClicked{&button, &QPushButton::clicked};
};

} // namespace

class ProgressSheetTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void partsAreFoundByName();
    void isASheetOfItsWindow();
    void beginReturnsAndBlocksTheWindow();
    void canBeBegunAgainAlsoOnAnotherWindow();
    void endingWithoutBeginningIsHarmless();
    void nothingClosesItWhileCancelIsHidden();
    void escapeAndCloseClickOnCancel();
    void aDisabledCancelIsNotClicked();
    void returnDoesNotCancel();
    void cancelLeavesTheSheetUp();
    void textsArePlain();
    void keepsItsSizeWhateverTheDetailSays();
    void showsWholeTexts();
    void largeTypeFitsToo();
    void growsForCancel();
    void standsOverTheMiddleOfItsWindow();
    void detailIsSmaller();
};

void ProgressSheetTest::partsAreFoundByName()
{
    const Fixture fixture;
    QCOMPARE(fixture.sheet.objectName(), u"progressWindow"_s);
    QVERIFY(fixture.title && fixture.bar && fixture.detail && fixture.cancel);
    QCOMPARE(fixture.cancel->text(), u"Cancel"_s);
    QCOMPARE(fixture.bar->doubleValue(), 0.0);
}

void ProgressSheetTest::isASheetOfItsWindow()
{
    Fixture fixture;
    fixture.begin();
    QCOMPARE(fixture.sheet.parentWidget(), &fixture.window);
    QVERIFY(fixture.sheet.isWindow());
    QCOMPARE(fixture.sheet.windowModality(), Qt::WindowModal);
    QCOMPARE(fixture.sheet.windowType(), Qt::Sheet);
    QVERIFY(!(fixture.sheet.windowFlags() & Qt::WindowCloseButtonHint));
    QCOMPARE(fixture.sheet.windowTitle(), u"Resizing Video..."_s);
    QCOMPARE(fixture.bar->accessibleName(), u"Resizing Video..."_s);
}

void ProgressSheetTest::beginReturnsAndBlocksTheWindow()
{
    Fixture fixture;
    clickAt(&fixture.button, QPoint(20, 10));
    QCOMPARE(fixture.windowClicked.count(), 1);
    fixture.begin();
    QVERIFY(fixture.sheet.isVisible());
    clickAt(&fixture.button, QPoint(20, 10));
    QCOMPARE(fixture.windowClicked.count(), 1);
    fixture.sheet.endSheet();
    QVERIFY(!fixture.sheet.isVisible());
    clickAt(&fixture.button, QPoint(20, 10));
    QCOMPARE(fixture.windowClicked.count(), 2);
}

void ProgressSheetTest::canBeBegunAgainAlsoOnAnotherWindow()
{
    Fixture fixture;
    fixture.begin();
    fixture.sheet.endSheet();
    fixture.title->setText(u"Analyzing Video..."_s);
    fixture.begin();
    QVERIFY(fixture.sheet.isVisible());
    QCOMPARE(fixture.sheet.windowTitle(), u"Analyzing Video..."_s);
    fixture.sheet.endSheet();

    QWidget other;
    other.resize(400, 400);
    other.show();
    fixture.sheet.beginSheet(&other);
    QCOMPARE(fixture.sheet.parentWidget(), &other);
    QCOMPARE(fixture.sheet.windowType(), Qt::Sheet);
    fixture.sheet.endSheet();
    fixture.sheet.setParent(nullptr);
}

void ProgressSheetTest::endingWithoutBeginningIsHarmless()
{
    Fixture fixture;
    fixture.sheet.endSheet();
    QVERIFY(!fixture.sheet.isVisible());
    fixture.begin();
    fixture.sheet.endSheet();
    fixture.sheet.endSheet();
    QVERIFY(!fixture.sheet.isVisible());
}

void ProgressSheetTest::nothingClosesItWhileCancelIsHidden()
{
    Fixture fixture;
    fixture.cancel->hide();
    fixture.begin();
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        fixture.key(key);
    QVERIFY(!fixture.sheet.close());
    QVERIFY(!fixture.sheet.windowHandle()->close());
    QVERIFY(fixture.sheet.isVisible());
    QCOMPARE(fixture.cancelClicked.count(), 0);
}

void ProgressSheetTest::escapeAndCloseClickOnCancel()
{
    Fixture fixture;
    fixture.begin();
    fixture.key(Qt::Key_Escape);
    QCOMPARE(fixture.cancelClicked.count(), 1);
    QVERIFY(fixture.sheet.isVisible());
    QVERIFY(!fixture.sheet.windowHandle()->close());
    QCOMPARE(fixture.cancelClicked.count(), 2);
    QVERIFY(fixture.sheet.isVisible());
}

void ProgressSheetTest::aDisabledCancelIsNotClicked()
{
    Fixture fixture;
    fixture.cancel->setEnabled(false);
    fixture.begin();
    fixture.key(Qt::Key_Escape);
    QCOMPARE(fixture.cancelClicked.count(), 0);
    QVERIFY(fixture.sheet.isVisible());
}

void ProgressSheetTest::returnDoesNotCancel()
{
    Fixture fixture;
    fixture.begin();
    fixture.key(Qt::Key_Return);
    fixture.cancel->setFocus();
    fixture.key(Qt::Key_Enter);
    QCOMPARE(fixture.cancelClicked.count(), 0);
    fixture.key(Qt::Key_Space);
    QCOMPARE(fixture.cancelClicked.count(), 1);
}

void ProgressSheetTest::cancelLeavesTheSheetUp()
{
    Fixture fixture;
    fixture.begin();
    clickAt(fixture.cancel, fixture.cancel->rect().center());
    QCOMPARE(fixture.cancelClicked.count(), 1);
    QVERIFY(fixture.sheet.isVisible());
}

void ProgressSheetTest::textsArePlain()
{
    const Fixture fixture;
    QCOMPARE(fixture.title->textFormat(), Qt::PlainText);
    QCOMPARE(fixture.detail->textFormat(), Qt::PlainText);
}

void ProgressSheetTest::keepsItsSizeWhateverTheDetailSays()
{
    Fixture fixture;
    fixture.begin();
    const QRect before = fixture.sheet.geometry();
    const QRect barBefore = fixture.bar->geometry();
    QVERIFY(before.width() >= 360);
    QCOMPARE(fixture.sheet.minimumSize(), before.size());
    QCOMPARE(fixture.sheet.maximumSize(), before.size());
    for (const QString &text : {u"42 % - about 1 minute left"_s, QString(200, u'W'), QString()}) {
        fixture.detail->setText(text);
        QApplication::sendPostedEvents();
        QCOMPARE(fixture.sheet.geometry(), before);
        QCOMPARE(fixture.bar->geometry(), barBefore);
    }
}

void ProgressSheetTest::showsWholeTexts()
{
    Fixture fixture;
    fixture.begin();
    fixture.detail->setText(u"100 % - about 59 minutes left"_s);
    QApplication::sendPostedEvents();
    QVERIFY(fixture.detail->width() >=
            fixture.detail->fontMetrics().horizontalAdvance(fixture.detail->text()));
    QVERIFY(fixture.detail->height() >= fixture.detail->fontMetrics().height());
    QVERIFY(fixture.title->width() >= fixture.title->fontMetrics().horizontalAdvance(fixture.title->text()));
}

void ProgressSheetTest::largeTypeFitsToo()
{
    const QFont normal = QApplication::font();
    const auto restore = qScopeGuard([&] { QApplication::setFont(normal); });
    QFont large = normal;
    large.setPointSizeF(2.2 * normal.pointSizeF());
    QApplication::setFont(large);
    showsWholeTexts();
}

void ProgressSheetTest::growsForCancel()
{
    Fixture fixture;
    fixture.cancel->hide();
    fixture.begin();
    QVERIFY(fixture.detail->isVisible());
    const int without = fixture.sheet.height();
    fixture.sheet.endSheet();

    fixture.cancel->show();
    fixture.begin();
    QVERIFY(fixture.sheet.height() > without);
    QVERIFY(fixture.detail->isVisible());
    for (const QWidget *part :
         {static_cast<QWidget *>(fixture.cancel), static_cast<QWidget *>(fixture.detail)})
        QVERIFY(fixture.sheet.contentsRect().contains(part->geometry()));
    QVERIFY(fixture.cancel->height() >= fixture.cancel->sizeHint().height());
}

void ProgressSheetTest::standsOverTheMiddleOfItsWindow()
{
    Fixture fixture;
    fixture.begin();
    const int distance =
        fixture.sheet.frameGeometry().center().x() - fixture.window.frameGeometry().center().x();
    QVERIFY2(qAbs(distance) <= 2, qPrintable(QString::number(distance)));
}

void ProgressSheetTest::detailIsSmaller()
{
    const Fixture fixture;
    QVERIFY(fixture.detail->font().pointSizeF() < QApplication::font().pointSizeF());
    QVERIFY(fixture.title->font().bold());
}

TESSALY_GUI_TEST_MAIN(ProgressSheetTest)
#include "progress_sheet_test.moc"
