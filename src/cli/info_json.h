// The facts about a file for programs.
#pragma once

#include "probe/file_probe.h"

#include <QByteArray>

namespace tessaly {

// One JSON object on one line, without a line break: the fields of FileProbe under their names and in their
// order, except jsonDictionary, and then "failure", the reason as refusalDetails() has it; track records
// without "trackDictionary"; null for what is absent or no finite number.
QByteArray infoJson(const FileProbe &facts);

} // namespace tessaly
