// Which files a resize is about, and what they become.
#pragma once

#include "cli/resize_file.h"

#include <vector>

namespace tessaly {

struct ResizePlan
{
    bool isOfMany = false; // several inputs or a folder, so that the output is a folder
    std::vector<ResizeFile> files;
    QStringList refusals; // why nothing may be begun, as sentences
};

// A folder stands for the files directly in it, sorted by name, without the hidden ones. Reads folders, and
// files where their names alone would meet in the output folder; touches nothing.
ResizePlan planOf(const ResizeCommand &command);

} // namespace tessaly
