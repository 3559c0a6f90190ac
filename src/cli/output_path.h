// Where resize writes to, judged before anything has run.
#pragma once

#include "cli/command_line.h"

namespace tessaly {

// Why what was named cannot be meant as a new video, as a sentence that says what to name instead: a dash, a
// folder, a device or a pipe, or a file of another container. Nothing when it can; its path is then
// withMp4Extension(), also where it has no extension.
std::optional<QString> nameRefusal(const NamedFile &output);

// Why what was named cannot be meant as the folder of several new videos; nothing for a folder, and for a
// name that is free and not that of a file.
std::optional<QString> folderRefusal(const NamedFile &output);

// Whether that is how people name videos ("a.mov"), by the extension alone.
bool isCalledVideo(const QString &path);

// The new video of this input in that folder: named as the input, with the extension mp4 in the place of that
// of another container, or behind the name. The input has a path.
NamedFile outputIn(const NamedFile &folder, const NamedFile &input);

// Why the new video cannot be written to that path, as a sentence: it is the input under whatever name, a
// folder, or a file that exists when none may be replaced.
std::optional<QString> targetRefusal(const QString &input, const QString &output, bool mayReplace);

} // namespace tessaly
