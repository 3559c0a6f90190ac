// What tessaly-cli says, and where.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>

namespace tessaly {

// From now on what children write to their standard output comes out on standard error, and what output() is
// written to is this program's alone. To be called before there are other threads.
void keepOutputFromChildren();

// Standard output, as it was at the start of the program.
std::FILE *output();

// Writes and flushes; false when the stream does not take it.
bool write(std::FILE *stream, const QByteArray &text);

// Writes to standard output; false, and says so, when that does not take it.
[[nodiscard]] bool writeOutput(const QByteArray &text);

// One line on standard error, behind the program's name; control characters become escapes.
void complain(const QString &sentence);

} // namespace tessaly
