// The controls as a Designer form makes them.
#include "support/test_case.h"
#include "ui_controls_form.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace tessaly;

namespace {

struct Form : QWidget
{
    Form() { ui.setupUi(this); }

    Ui::ControlsForm ui;
};

} // namespace

class ControlsFormTest : public tessaly::test::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void sliderTakesItsRangeAndValue();
    void rangeMayComeInAnyOrder();
    void textOfAFieldOpensNoEdit();
    void barTakesItsValue();
};

void ControlsFormTest::sliderTakesItsRangeAndValue()
{
    Form form;
    QCOMPARE(form.ui.percent->minimumValue(), 0.0);
    QCOMPARE(form.ui.percent->maximumValue(), 200.0);
    QCOMPARE(form.ui.percent->doubleValue(), 52.5);
    QCOMPARE(form.ui.percent->unit(), u" %"_s);
    QCOMPARE(form.ui.percent->orientation(), Qt::Horizontal);
    QTest::keyClick(form.ui.percent, Qt::Key_PageUp);
    QCOMPARE(form.ui.percent->doubleValue(), 77.0);
}

void ControlsFormTest::rangeMayComeInAnyOrder()
{
    Form form;
    QCOMPARE(form.ui.whole->minimumValue(), 1.0);
    QCOMPARE(form.ui.whole->maximumValue(), 11.0);
    QCOMPARE(form.ui.whole->intValue(), 1);
    QCOMPARE(form.ui.whole->maximum(), 10); // positions
}

void ControlsFormTest::textOfAFieldOpensNoEdit()
{
    Form form;
    QCOMPARE(form.ui.field->integerValue(), 640);
    QVERIFY(!form.ui.field->hasOpenEdit());
    QSignalSpy committed(form.ui.field, &NumberField::committed);
    form.ui.field->commitEdit();
    QCOMPARE(committed.count(), 0);
}

void ControlsFormTest::barTakesItsValue()
{
    Form form;
    QCOMPARE(form.ui.bar->doubleValue(), 12.5);
}

TESSALY_GUI_TEST_MAIN(ControlsFormTest)
#include "controls_form_test.moc"
