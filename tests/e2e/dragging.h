// A drag from a program that offers one (drag_source) to another.
#pragma once

#include "e2e/program.h"

namespace tessaly::e2e {

// The control that is dropped on.
struct Place
{
    Role role;
    QString name;
};

// A drag as a hand makes it: it starts slowly, goes over the lower edge of the window, and is let go on the
// target. Whether it ended with that answer ("copy", "nothing").
bool drag(const Desktop &desktop, Program &source, const Program &target, const Place &place,
          const QString &answer);

// What the target under the mouse would do, as far as the source has heard.
QString answerOf(Program &source);

} // namespace tessaly::e2e
