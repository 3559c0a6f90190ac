// Where resize writes to, judged before anything has run.
#pragma once

#include "cli/command_line.h"

namespace tessaly {

// Why what was named cannot be meant as a new video, as a sentence that says what to name instead: a dash, a
// folder, a device or a pipe, or a file of another container. Nothing when it can; its path is then
// withMp4Extension(), also where it has no extension.
std::optional<QString> nameRefusal(const NamedFile &output);

// Why the new video cannot be written to that path, as a sentence: it is the input under whatever name, a
// folder, or a file that exists when none may be replaced.
std::optional<QString> targetRefusal(const QString &input, const QString &output, bool mayReplace);

} // namespace tessaly
