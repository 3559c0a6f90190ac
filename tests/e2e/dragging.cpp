#include "e2e/dragging.h"

#include "e2e/desktop.h"
#include "support/test_case.h"

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

QStringList at(const QPoint &point)
{
    return {u"mousemove"_s, QString::number(point.x()), QString::number(point.y())};
}

// The target gets the time for many answers, as from a hand that trembles: of a refusal the source does not
// hear, and after an answer that came late, to an earlier place, a drop can arrive before the target has
// heard of this one.
bool restOn(const Desktop &desktop, const QPoint &to, const Program &target)
{
    bool isAlive = true;
    for (int rests = 0; rests < 15; ++rests) {
        desktop.xdotool(at(to + QPoint(rests % 2, 0)));
        isAlive = isAlive && target.shows(Role::frame);
    }
    return isAlive;
}

// Each wait is for what only the last movement should have brought about: over the edge a first "copy", over
// the source itself, which takes nothing, the end of it, and over the goal a second one. A single movement
// onto the goal can get lost between the two programs; a hand would tremble, and come again.
bool enter(const Desktop &desktop, const QPoint &to, const QPoint &home, Program &source,
           const Program &target, const QString &answer)
{
    constexpr int patience = 5000; // milliseconds
    const auto waitFor = [&](const QString &awaited) {
        return QTest::qWaitFor([&] { return answerOf(source) == awaited; }, test::waitLimit);
    };
    const auto come = [&] {
        int trembles = 0;
        const auto isTaken = [&] {
            desktop.xdotool(at(to + QPoint(++trembles % 2, 0)));
            return answerOf(source) == answer;
        };
        desktop.xdotool(at(home));
        return waitFor(u"nothing"_s) && QTest::qWaitFor(isTaken, patience);
    };
    constexpr int mostAttempts = test::waitLimit / patience;
    if (!waitFor(answer)) return false;
    for (int attempts = 1; !come(); ++attempts) {
        if (attempts == mostAttempts) return false;
    }
    return restOn(desktop, to, target) && waitFor(answer);
}

} // namespace

bool drag(const Desktop &desktop, Program &source, const Program &target, const Place &place,
          const QString &answer)
{
    const auto isReady = [&] {
        return source.standardOutput().contains("ready"_L1) && source.shows(Role::filler);
    };
    if (!QTest::qWaitFor(isReady, test::waitLimit)) return false;
    const std::optional<Control> start = source.find(Role::filler);
    const std::optional<Control> window = target.find(Role::frame);
    const std::optional<Control> goal = target.find(place.role, place.name);
    if (!start || !window || !goal) return false;
    const QPoint from = desktop.originOf(source.id()) + start->extents().center();
    const QPoint origin = desktop.originOf(target.id(), Stacked::back);
    const QPoint edge = origin + window->extents().bottomLeft() + QPoint(40, -6);
    const QPoint to = origin + goal->extents().center();

    desktop.xdotool(at(from));
    const auto isEntered = [&] { return source.standardOutput().contains("entered"_L1); };
    if (!QTest::qWaitFor(isEntered, test::waitLimit)) return false;
    desktop.xdotool({u"mousedown"_s, u"1"_s});
    for (int step = 1; step <= 5; ++step)
        desktop.xdotool(at(from - QPoint(4 * step, 0)));
    for (int step = 1; step <= 12; ++step)
        desktop.xdotool(at(from + (edge - from) * step / 12));
    const bool isAnswered = answer == "nothing"_L1 ? restOn(desktop, to, target)
                                                   : enter(desktop, to, from, source, target, answer);
    desktop.xdotool({u"mouseup"_s, u"1"_s});
    const auto isDone = [&] { return source.standardOutput().contains(u"done "_s + answer); };
    return isAnswered && QTest::qWaitFor(isDone, test::waitLimit);
}

QString answerOf(Program &source)
{
    return source.standardOutput().section("over "_L1, -1).trimmed();
}

} // namespace tessaly::e2e
