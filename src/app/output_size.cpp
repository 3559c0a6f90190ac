// The controls for the output size. The caption in front of the slider is their state: with "Scale:" the
// slider drives both sides, with "Width:" or "Height:" that one alone. A typed size is made even by lowering,
// a computed one by rounding.
#include "app/app_delegate.h"
#include "jobs/even_size.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

const auto scaleCaption = u"Scale:"_s;
const auto widthCaption = u"Width:"_s;
const auto heightCaption = u"Height:"_s;

// A size that cannot be computed (an infinite ratio, an overflow) leaves the field as it is.
void setEvenSize(NumberField &field, double size)
{
    if (const std::optional<qint64> even = evenSize(size)) field.setIntegerValue(*even);
}

void lowerToEven(NumberField &field)
{
    const qint64 size = field.integerValue();
    const bool isOdd = (size & 1) != 0;
    if (isOdd) field.setIntegerValue(size - 1);
}

double percentOf(const NumberField &field, qint64 original)
{
    return field.doubleValue() / static_cast<double>(original) * 100.0;
}

} // namespace

void AppDelegate::proportionalCBXClicked(QObject *)
{
    applyProportionalState();
}
void AppDelegate::sizeSLDRChanged(QObject *)
{
    applySliderValue();
}
void AppDelegate::widthTFChanged(QObject *)
{
    updateFromWidth();
}
void AppDelegate::heightTFChanged(QObject *)
{
    updateFromHeight();
}
void AppDelegate::widthTFClickedWithSender(QObject *)
{
    selectWidthField();
}
void AppDelegate::heightTFClickedWithSender(QObject *)
{
    selectHeightField();
}

void AppDelegate::applyProportionalState()
{
    if (!proportionalCBX->isChecked()) {
        // An edit that was open commits while the caption still says "Scale:"; one in the height field
        // itself, which keeps the focus, is told to.
        heightTF->setFocus();
        heightTF->commitEdit();
        sliderTitleLBL->setText(heightCaption);
        currentFocussedTF = u"HeightTF"_s;
        return;
    }
    sliderTitleLBL->setText(scaleCaption);
    currentFocussedTF = u"None"_s;
    const double scale = sizeSLDR->doubleValue() / 100.0;
    setEvenSize(*widthTF, static_cast<double>(originalWidth) * scale);
    setEvenSize(*heightTF, scale * static_cast<double>(originalHeight));
}

void AppDelegate::applySliderValue()
{
    const QString caption = sliderTitleLBL->text();
    const double scale = sizeSLDR->doubleValue() / 100.0;
    const double width = static_cast<double>(originalWidth) * scale;
    const double height = scale * static_cast<double>(originalHeight);
    if (caption == scaleCaption || caption == widthCaption) setEvenSize(*widthTF, width);
    if (caption == scaleCaption || caption == heightCaption) setEvenSize(*heightTF, height);
}

void AppDelegate::updateFromWidth()
{
    lowerToEven(*widthTF);
    if (sliderTitleLBL->text() == scaleCaption)
        setEvenSize(*heightTF, widthTF->doubleValue() / originalRatio);
    sizeSLDR->setDoubleValue(percentOf(*widthTF, originalWidth));
}

void AppDelegate::updateFromHeight()
{
    lowerToEven(*heightTF);
    if (sliderTitleLBL->text() == scaleCaption)
        setEvenSize(*widthTF, heightTF->doubleValue() * originalRatio);
    sizeSLDR->setDoubleValue(percentOf(*heightTF, originalHeight));
}

void AppDelegate::selectWidthField()
{
    if (!proportionalCBX->isChecked()) {
        sliderTitleLBL->setText(widthCaption);
        currentFocussedTF = u"WidthTF"_s;
    }
    sizeSLDR->setDoubleValue(percentOf(*widthTF, originalWidth));
}

void AppDelegate::selectHeightField()
{
    if (!proportionalCBX->isChecked()) {
        sliderTitleLBL->setText(heightCaption);
        currentFocussedTF = u"HeightTF"_s;
    }
    sizeSLDR->setDoubleValue(percentOf(*heightTF, originalHeight));
}

} // namespace tessaly
