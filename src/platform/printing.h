// Diagnostic lines for people who watch the program's output.
#pragma once

#include <QString>

namespace tessaly {

enum class PrintTarget { standardOutput, standardError, nowhere };

// Where print() writes from now on; standard output at the start. Any thread.
void setPrintTarget(PrintTarget target);

// Writes the text and a line break, as UTF-8, and flushes. Any thread; lines are never mixed.
void print(const QString &text);

} // namespace tessaly
