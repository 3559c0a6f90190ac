#include "e2e/tasks.h"

#include "support/test_case.h"

#include <QTest>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

const auto nameField = u"File name:"_s;

// The panel's button can be used as soon as it has taken note of the path.
bool answerPanel(Program &tessaly, const QString &path, const QString &button)
{
    const auto isReady = [&] {
        return tessaly.fieldText(nameField) == path && tessaly.isEnabled(Role::button, button);
    };
    return tessaly.waitForFocus(Role::field, nameField) && tessaly.typeOver(path) &&
           QTest::qWaitFor(isReady, test::waitLimit) && tessaly.press({u"Return"_s});
}

bool panelIsGone(const Program &tessaly)
{
    return QTest::qWaitFor([&] { return !tessaly.shows(Role::field, nameField); }, test::waitLimit);
}

} // namespace

bool chooseVideo(Program &tessaly, const QString &path)
{
    return tessaly.press({u"ctrl+o"_s}) && answerPanel(tessaly, path, u"Open"_s) && panelIsGone(tessaly);
}

bool openVideo(Program &tessaly, const QString &path, const QString &size)
{
    const auto isOpen = [&] {
        return tessaly.shows(Role::label, u"Input: "_s + size) && tessaly.isEnabled(Role::button, u"Save"_s);
    };
    return chooseVideo(tessaly, path) && QTest::qWaitFor(isOpen, workTime);
}

bool chooseOutput(Program &tessaly, const QString &path)
{
    return tessaly.press({u"ctrl+s"_s}) && answerPanel(tessaly, path, u"Save"_s);
}

bool setPercent(Program &tessaly, int percent)
{
    const auto slider = u"Size in percent of the input"_s;
    QStringList keys{u"Home"_s};
    for (int tens = 0; tens < percent / 10; ++tens)
        keys << u"Prior"_s;
    if (!tessaly.click(Role::slider, slider) || !tessaly.press(keys)) return false;
    const auto isSet = [&] {
        const std::optional<Control> control = tessaly.find(Role::slider, slider);
        return control && control->value() == percent;
    };
    return QTest::qWaitFor(isSet, test::waitLimit);
}

bool typeSize(Program &tessaly, const QString &field, const QString &digits)
{
    return tessaly.click(Role::field, field) && tessaly.waitForFocus(Role::field, field) &&
           tessaly.typeOver(digits) &&
           QTest::qWaitFor([&] { return tessaly.fieldText(field) == digits; }, test::waitLimit);
}

QStringList waitForAlert(const Program &tessaly)
{
    (void)QTest::qWaitFor([&] { return tessaly.shows(Role::alert); }, workTime);
    return tessaly.labelsIn(Role::alert);
}

} // namespace tessaly::e2e
