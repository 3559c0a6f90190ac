#include "number_field_fixture.h"
#include "support/test_case.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class NumberFieldEditTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void codeFiresNothingAndEndsTheEdit_data();
    void codeFiresNothingAndEndsTheEdit();
    void upAndDownGoByTwo_data();
    void upAndDownGoByTwo();
    void returnCommitsOnce();
    void returnOnAnUnchangedFieldCommits();
    void leavingCommitsAChangeOnce_data();
    void leavingCommitsAChangeOnce();
    void leavingAnUnchangedFieldCommitsNothing();
    void typingTheSameAgainIsNoChange();
    void leavingForAMenuOrAnotherWindowKeepsTheEdit();
    void commitEditTakesWhatWasTyped();
    void discardEditFiresNothing();
    void disablingAnEditedFieldFiresNothing();
    void handlerThatSetsTheFieldFiresNoSecondTime();
    void escapeRestoresWithoutFiring();
    void escapeInAnUnchangedFieldPassesOn();
    void undoOpensAndClosesTheEdit();
    void pastedAndAssistedTextIsAnEdit();
};

void NumberFieldEditTest::codeFiresNothingAndEndsTheEdit_data()
{
    QTest::addColumn<QString>("setter");
    for (const char *setter : {"integer", "double", "string", "text"})
        QTest::newRow(setter) << QString::fromLatin1(setter);
}

void NumberFieldEditTest::codeFiresNothingAndEndsTheEdit()
{
    QFETCH(QString, setter);
    for (const char *typed : {"77", "640"}) { // another text, and the one that code sets
        NumberFieldFixture fixture;
        fixture.type(typed);
        QVERIFY(fixture.width.hasOpenEdit());
        if (setter == "integer"_L1) fixture.width.setIntegerValue(640);
        if (setter == "double"_L1) fixture.width.setDoubleValue(640);
        if (setter == "string"_L1) fixture.width.setStringValue(u"640"_s);
        if (setter == "text"_L1) fixture.width.setText(u"640"_s);
        QVERIFY(!fixture.width.hasOpenEdit());
        QCOMPARE(fixture.width.text(), u"640"_s);
        fixture.key(Qt::Key_Tab);
        QVERIFY(fixture.height.hasFocus());
        QCOMPARE(fixture.widthCommitted.count(), 0);
    }
}

void NumberFieldEditTest::upAndDownGoByTwo_data()
{
    QTest::addColumn<QByteArray>("typed");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("text");
    QTest::newRow("up") << QByteArray() << Qt::Key_Up << u"855"_s;
    QTest::newRow("down") << QByteArray() << Qt::Key_Down << u"851"_s;
    QTest::newRow("from what is typed") << QByteArray("100") << Qt::Key_Up << u"102"_s;
    QTest::newRow("not below nothing") << QByteArray("1") << Qt::Key_Down << u"0"_s;
    QTest::newRow("from no number") << QByteArray("x") << Qt::Key_Up << u"2"_s;
    QTest::newRow("at the end of numbers")
        << QByteArray("9223372036854775807") << Qt::Key_Up << u"9223372036854775807"_s;
}

void NumberFieldEditTest::upAndDownGoByTwo()
{
    QFETCH(QByteArray, typed);
    QFETCH(Qt::Key, key);
    NumberFieldFixture fixture;
    if (!typed.isEmpty()) fixture.type(typed.constData());
    fixture.key(key);
    QTEST(fixture.width.text(), "text");
    QCOMPARE(fixture.widthCommitted.count(), 1);
    QVERIFY(!fixture.width.hasOpenEdit());
}

void NumberFieldEditTest::returnCommitsOnce()
{
    NumberFieldFixture fixture;
    fixture.type("1001");
    QVERIFY(fixture.width.hasOpenEdit());
    QCOMPARE(fixture.widthCommitted.count(), 0);
    fixture.key(Qt::Key_Return);
    QVERIFY(!fixture.width.hasOpenEdit());
    QCOMPARE(fixture.widthCommitted.count(), 1);
    fixture.key(Qt::Key_Tab);
    QVERIFY(fixture.height.hasFocus());
    QCOMPARE(fixture.widthCommitted.count(), 1);
    fixture.type("7");
    fixture.key(Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(fixture.heightCommitted.count(), 1);
}

void NumberFieldEditTest::returnOnAnUnchangedFieldCommits()
{
    NumberFieldFixture fixture;
    fixture.key(Qt::Key_Return);
    QCOMPARE(fixture.widthCommitted.count(), 1);
    QCOMPARE(fixture.width.integerValue(), 853);
    QCOMPARE(fixture.heightCommitted.count(), 0);
}

void NumberFieldEditTest::leavingCommitsAChangeOnce_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"tab", "click", "code"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void NumberFieldEditTest::leavingCommitsAChangeOnce()
{
    QFETCH(QString, way);
    NumberFieldFixture fixture;
    fixture.type("1001");
    if (way == "tab"_L1) fixture.key(Qt::Key_Tab);
    if (way == "click"_L1) clickAt(&fixture.height, inText(fixture.height));
    if (way == "code"_L1) fixture.height.setFocus();
    QVERIFY(fixture.height.hasFocus());
    QCOMPARE(fixture.widthCommitted.count(), 1);
    QCOMPARE(fixture.width.integerValue(), 1001);
    fixture.key(Qt::Key_Backtab);
    QVERIFY(fixture.width.hasFocus());
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.widthCommitted.count(), 1);
    QCOMPARE(fixture.heightCommitted.count(), 0);
}

void NumberFieldEditTest::leavingAnUnchangedFieldCommitsNothing()
{
    NumberFieldFixture fixture;
    fixture.key(Qt::Key_Tab);
    fixture.key(Qt::Key_Tab);
    clickAt(&fixture.height, inText(fixture.height));
    clickAt(&fixture.width, inText(fixture.width));
    QCOMPARE(fixture.widthCommitted.count() + fixture.heightCommitted.count(), 0);
    QCOMPARE(fixture.width.integerValue(), 853);
}

void NumberFieldEditTest::typingTheSameAgainIsNoChange()
{
    NumberFieldFixture fixture;
    fixture.type("853");
    QVERIFY(!fixture.width.hasOpenEdit());
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.widthCommitted.count(), 0);
}

void NumberFieldEditTest::leavingForAMenuOrAnotherWindowKeepsTheEdit()
{
    NumberFieldFixture fixture;
    fixture.type("10");

    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other, waitLimit));
    QVERIFY(!fixture.width.hasFocus());
    QCOMPARE(fixture.widthCommitted.count(), 0);
    fixture.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&fixture.window, waitLimit));
    QVERIFY(fixture.width.hasFocus());
    QVERIFY(fixture.width.hasOpenEdit());

    QMenu menu;
    menu.addAction(u"Something"_s);
    menu.popup(fixture.window.mapToGlobal(QPoint(20, 20)));
    QVERIFY(QTest::qWaitForWindowExposed(&menu, waitLimit));
    QCOMPARE(fixture.widthCommitted.count(), 0);
    menu.close();

    QMenuBar bar(&fixture.window);
    bar.addMenu(&menu);
    bar.show();
    bar.setFocus(Qt::MenuBarFocusReason);
    QVERIFY(bar.hasFocus());
    QCOMPARE(fixture.widthCommitted.count(), 0);
    fixture.width.setFocus(Qt::MenuBarFocusReason);

    fixture.type("01");
    QCOMPARE(fixture.width.integerValue(), 1001);
    fixture.key(Qt::Key_Return);
    QCOMPARE(fixture.widthCommitted.count(), 1);
}

void NumberFieldEditTest::commitEditTakesWhatWasTyped()
{
    NumberFieldFixture fixture;
    fixture.width.commitEdit();
    QCOMPARE(fixture.widthCommitted.count(), 0);
    fixture.type("1001");
    fixture.width.commitEdit();
    QCOMPARE(fixture.widthCommitted.count(), 1);
    QVERIFY(!fixture.width.hasOpenEdit());
    QVERIFY(fixture.width.hasFocus());
    fixture.width.commitEdit();
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.widthCommitted.count(), 1);
}

void NumberFieldEditTest::discardEditFiresNothing()
{
    NumberFieldFixture fixture;
    fixture.width.setDoubleValue(0.1 + 0.2);
    fixture.type("77");
    fixture.width.discardEdit();
    QVERIFY(!fixture.width.hasOpenEdit());
    QCOMPARE(fixture.width.text(), u"0.3"_s);
    QVERIFY(fixture.width.doubleValue() == 0.1 + 0.2);
    fixture.width.setEnabled(false);
    QCOMPARE(fixture.widthCommitted.count(), 0);

    fixture.width.setEnabled(true);
    fixture.width.setFocus();
    fixture.type("7");
    fixture.key(Qt::Key_Return);
    fixture.type("8");
    fixture.width.discardEdit();
    QCOMPARE(fixture.width.text(), u"0.37"_s); // the text that was committed last
}

void NumberFieldEditTest::disablingAnEditedFieldFiresNothing()
{
    NumberFieldFixture fixture;
    fixture.type("77");
    fixture.width.setEnabled(false);
    QVERIFY(!fixture.width.hasFocus());
    QCOMPARE(fixture.widthCommitted.count(), 0);

    fixture.height.setFocus();
    fixture.height.selectAll();
    fixture.type("77");
    fixture.window.setEnabled(false);
    QVERIFY(!fixture.height.hasFocus());
    QCOMPARE(fixture.heightCommitted.count(), 0);
}

void NumberFieldEditTest::handlerThatSetsTheFieldFiresNoSecondTime()
{
    NumberFieldFixture fixture;
    connect(&fixture.width, &NumberField::committed, &fixture.width, [&] {
        fixture.width.setIntegerValue(fixture.width.integerValue() - 1);
        fixture.height.setIntegerValue(562);
    });
    fixture.type("1001");
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.width.text(), u"1000"_s);
    QCOMPARE(fixture.widthCommitted.count(), 1);
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.heightCommitted.count(), 0);
}

void NumberFieldEditTest::escapeRestoresWithoutFiring()
{
    NumberFieldFixture fixture;
    fixture.type("1001");
    fixture.key(Qt::Key_Escape);
    QCOMPARE(fixture.width.text(), u"853"_s);
    QVERIFY(fixture.width.hasFocus());
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.widthCommitted.count(), 0);
}

void NumberFieldEditTest::escapeInAnUnchangedFieldPassesOn()
{
    struct Parent : QWidget
    {
        void keyPressEvent(QKeyEvent *event) override { escapes += event->key() == Qt::Key_Escape; }
        int escapes = 0;
    } parent;
    NumberField field(&parent);
    parent.show();
    field.setFocus();
    parent.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&parent, waitLimit));
    QTest::keyClick(parent.windowHandle(), Qt::Key_5);
    QTest::keyClick(parent.windowHandle(), Qt::Key_Escape);
    QCOMPARE(parent.escapes, 0);
    QTest::keyClick(parent.windowHandle(), Qt::Key_Escape);
    QCOMPARE(parent.escapes, 1);
}

void NumberFieldEditTest::undoOpensAndClosesTheEdit()
{
    NumberFieldFixture fixture;
    fixture.type("1001");
    fixture.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(fixture.width.text(), u"853"_s);
    QVERIFY(!fixture.width.hasOpenEdit());
    fixture.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(fixture.width.text(), u"1001"_s);
    QVERIFY(fixture.width.hasOpenEdit());
    fixture.key(Qt::Key_Return);
    fixture.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(fixture.width.integerValue(), 853);
    QVERIFY(fixture.width.hasOpenEdit());

    fixture.width.setIntegerValue(640);
    fixture.key(Qt::Key_Z, Qt::ControlModifier); // does not reach behind what code has set
    QCOMPARE(fixture.width.text(), u"640"_s);
}

void NumberFieldEditTest::pastedAndAssistedTextIsAnEdit()
{
    NumberFieldFixture fixture;
    fixture.width.insert(u"1001"_s); // what pasting and dropping call
    QVERIFY(fixture.width.hasOpenEdit());
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.widthCommitted.count(), 1);

    QLineEdit *asSeenByAssistiveTechnology = &fixture.height;
    asSeenByAssistiveTechnology->setText(u"700"_s);
    fixture.key(Qt::Key_Tab);
    QCOMPARE(fixture.heightCommitted.count(), 1);
}

TESSALY_GUI_TEST_MAIN(NumberFieldEditTest)
#include "number_field_edit_test.moc"
