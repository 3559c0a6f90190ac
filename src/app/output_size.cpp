// The controls for the output size. The caption in front of the slider is their state: with "Scale:" the
// slider drives both sides, with "Width:" or "Height:" that one alone. A typed size is made even by lowering,
// a computed one by rounding.
#include "app/app_delegate.h"
#include "jobs/frame_size.h"

#include <QRegularExpression>

#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

const auto scaleCaption = u"Scale:"_s;
const auto widthCaption = u"Width:"_s;
const auto heightCaption = u"Height:"_s;

// A side that cannot be computed (an infinite ratio, an overflow) leaves the field as it is.
void setSide(NumberField &field, std::optional<qint64> side)
{
    if (side) field.setIntegerValue(*side);
}

void lowerToEven(NumberField &field)
{
    const qint64 side = field.integerValue();
    const qint64 even = loweredToEven(side);
    if (even != side) field.setIntegerValue(even);
}

bool isWhollyANumber(const QString &text)
{
    static const QRegularExpression number(u"^\\s*[+-]?[0-9]+\\s*$"_s);
    return number.match(text).hasMatch();
}

} // namespace

// The slider stops at its end; the text beside it goes on.
void AppDelegate::showPercent(double percent)
{
    sizeSLDR->setDoubleValue(percent);
    window->showPercent(std::isfinite(percent) ? percent : sizeSLDR->doubleValue());
    window->tellSize();
}

// A text such as "1,920" is read up to the comma; the person hears of it.
void AppDelegate::tellReading(const NumberField &field)
{
    if (!globalFP) return;
    if (!isWhollyANumber(field.text())) {
        window->showStatus(tr("“%1” is read as %2").arg(field.text()).arg(field.integerValue()));
        m_readingIsTold = true;
    } else if (m_readingIsTold) {
        showInputFacts();
        m_readingIsTold = false;
    }
}

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
        window->tellSize();
        return;
    }
    sliderTitleLBL->setText(scaleCaption);
    currentFocussedTF = u"None"_s;
    setSide(*widthTF, scaledSide(originalWidth, sizeSLDR->doubleValue()));
    setSide(*heightTF, scaledSide(originalHeight, sizeSLDR->doubleValue()));
    showPercent(sizeSLDR->doubleValue());
}

void AppDelegate::applySliderValue()
{
    const QString caption = sliderTitleLBL->text();
    const std::optional<qint64> width = scaledSide(originalWidth, sizeSLDR->doubleValue());
    const std::optional<qint64> height = scaledSide(originalHeight, sizeSLDR->doubleValue());
    if (caption == scaleCaption || caption == widthCaption) setSide(*widthTF, width);
    if (caption == scaleCaption || caption == heightCaption) setSide(*heightTF, height);
    window->tellSize();
}

void AppDelegate::updateFromWidth()
{
    tellReading(*widthTF);
    lowerToEven(*widthTF);
    if (sliderTitleLBL->text() == scaleCaption)
        setSide(*heightTF, heightFollowing(widthTF->doubleValue(), originalRatio));
    showPercent(percentOf(widthTF->doubleValue(), originalWidth));
}

void AppDelegate::updateFromHeight()
{
    tellReading(*heightTF);
    lowerToEven(*heightTF);
    if (sliderTitleLBL->text() == scaleCaption)
        setSide(*widthTF, widthFollowing(heightTF->doubleValue(), originalRatio));
    showPercent(percentOf(heightTF->doubleValue(), originalHeight));
}

void AppDelegate::selectWidthField()
{
    if (!proportionalCBX->isChecked()) {
        sliderTitleLBL->setText(widthCaption);
        currentFocussedTF = u"WidthTF"_s;
    }
    showPercent(percentOf(widthTF->doubleValue(), originalWidth));
}

void AppDelegate::selectHeightField()
{
    if (!proportionalCBX->isChecked()) {
        sliderTitleLBL->setText(heightCaption);
        currentFocussedTF = u"HeightTF"_s;
    }
    showPercent(percentOf(heightTF->doubleValue(), originalHeight));
}

} // namespace tessaly
