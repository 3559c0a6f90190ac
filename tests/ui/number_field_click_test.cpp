#include "number_field_fixture.h"
#include "support/test_case.h"

#include <QApplication>

using namespace Qt::StringLiterals;
using namespace tessaly;
using namespace tessaly::test;

class NumberFieldClickTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void plainClickPlacesTheCaret();
    void clickInTheOtherFieldCommitsFirst();
    void smallTremorIsStillAClick();
    void dragsAreNoClicks_data();
    void dragsAreNoClicks();
    void clicksThatSelectAreNotPlain();
    void otherButtonsAndDisabledFieldsPassNoClickOn();
};

void NumberFieldClickTest::plainClickPlacesTheCaret()
{
    NumberFieldFixture fixture;
    fixture.width.setIntegerValue(123456789);
    fixture.width.selectAll();
    const int behindThreeDigits = 8 + fixture.width.fontMetrics().horizontalAdvance(u"123"_s);
    const QPoint place(behindThreeDigits, fixture.width.height() / 2);
    pressAt(&fixture.width, place);
    QCOMPARE(fixture.widthClicked.count(), 0);
    releaseAt(&fixture.width, place);
    QCOMPARE(fixture.widthClicked.count(), 1);
    QVERIFY(!fixture.width.hasSelectedText());
    QVERIFY(fixture.width.hasFocus());
    const int expected = fixture.width.cursorPositionAt(place);
    QCOMPARE(fixture.width.cursorPosition(), expected);
    QVERIFY(expected >= 2 && expected <= 4);
    fixture.type("x");
    QCOMPARE(fixture.width.text().indexOf(u'x'), expected);
    QCOMPARE(fixture.widthCommitted.count(), 0);
}

void NumberFieldClickTest::clickInTheOtherFieldCommitsFirst()
{
    NumberFieldFixture fixture;
    QStringList order;
    connect(&fixture.width, &NumberField::committed, &fixture.width, [&] { order << u"width committed"_s; });
    connect(&fixture.height, &NumberField::clickedPlainly, &fixture.height,
            [&] { order << u"height clicked"_s; });
    fixture.type("1001");
    clickAt(&fixture.height, inText(fixture.height));
    QCOMPARE(order, (QStringList{u"width committed"_s, u"height clicked"_s}));
    QVERIFY(fixture.height.hasFocus());
    QCOMPARE(fixture.widthClicked.count(), 0);
}

void NumberFieldClickTest::smallTremorIsStillAClick()
{
    NumberFieldFixture fixture;
    const QPoint place = inText(fixture.width);
    pressAt(&fixture.width, place);
    moveTo(&fixture.width, place + QPoint(2, 1));
    releaseAt(&fixture.width, place + QPoint(2, 1));
    QCOMPARE(fixture.widthClicked.count(), 1);
}

void NumberFieldClickTest::dragsAreNoClicks_data()
{
    QTest::addColumn<QList<QPoint>>("way");
    QTest::newRow("selecting") << QList<QPoint>{{20, 0}, {40, 0}};
    QTest::newRow("there and back") << QList<QPoint>{{40, 0}, {0, 0}};
    QTest::newRow("just far enough") << QList<QPoint>{{QApplication::startDragDistance(), 0}};
    QTest::newRow("out of the field") << QList<QPoint>{{0, 60}};
}

void NumberFieldClickTest::dragsAreNoClicks()
{
    QFETCH(QList<QPoint>, way);
    NumberFieldFixture fixture;
    const QPoint place = inText(fixture.width);
    pressAt(&fixture.width, place);
    for (const QPoint step : way)
        moveTo(&fixture.width, place + step);
    releaseAt(&fixture.width, place + way.last());
    QCOMPARE(fixture.widthClicked.count(), 0);
    QCOMPARE(fixture.heightClicked.count(), 0);
    clickAt(&fixture.width, place);
    QCOMPARE(fixture.widthClicked.count(), 1);

    // The pointer may be at its new place without a report of the way.
    QTest::mousePress(&fixture.width, Qt::LeftButton, {}, place);
    QTest::mouseRelease(&fixture.width, Qt::LeftButton, {},
                        place + QPoint(QApplication::startDragDistance(), 0));
    QCOMPARE(fixture.widthClicked.count(), 1);
}

void NumberFieldClickTest::clicksThatSelectAreNotPlain()
{
    NumberFieldFixture fixture;
    const QPoint place = inText(fixture.width);
    QTest::mouseDClick(fixture.window.windowHandle(), Qt::LeftButton, {}, inWindow(&fixture.width, place));
    QVERIFY(fixture.width.hasSelectedText());
    QCOMPARE(fixture.widthClicked.count(), 1); // its first click
    clickAt(&fixture.width, place);            // the third selects the line
    QVERIFY(fixture.width.hasSelectedText());
    QCOMPARE(fixture.widthClicked.count(), 1);

    fixture.width.setCursorPosition(0);
    clickAt(&fixture.width, QPoint(100, 20), Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(fixture.width.hasSelectedText());
    QCOMPARE(fixture.widthClicked.count(), 1);
}

void NumberFieldClickTest::otherButtonsAndDisabledFieldsPassNoClickOn()
{
    NumberFieldFixture fixture;
    const QPoint place = inText(fixture.width);
    clickAt(&fixture.width, place, Qt::MiddleButton);
    clickAt(&fixture.width, place, Qt::BackButton);
    pressAt(&fixture.width, place);
    pressAt(&fixture.width, place, Qt::BackButton);
    releaseAt(&fixture.width, place, Qt::BackButton);
    releaseAt(&fixture.width, place);
    fixture.width.setEnabled(false);
    clickAt(&fixture.width, place);
    QCOMPARE(fixture.widthClicked.count(), 0);
    fixture.width.setEnabled(true);
    clickAt(&fixture.width, place);
    QCOMPARE(fixture.widthClicked.count(), 1);
}

TESSALY_GUI_TEST_MAIN(NumberFieldClickTest)
#include "number_field_click_test.moc"
