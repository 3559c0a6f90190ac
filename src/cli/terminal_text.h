// Text of unknown origin for a terminal.
#pragma once

#include <QString>

namespace tessaly {

// The text on one line that cannot drive the terminal: control characters, line and paragraph separators and
// what turns the direction of writing become escapes such as \u{1B}.
QString terminalText(const QString &text);

} // namespace tessaly
