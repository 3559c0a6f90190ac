// The container's tags under the labels that people see.
#pragma once

#include "json/json.h"

#include <QString>

#include <map>
#include <vector>

namespace tessaly {

// Always twelve entries, in a fixed order, each with "key" (the label) and "value" (empty for a missing tag).
// Tag names are matched exactly, capitals included.
std::vector<std::map<QString, QString>> metadataOf(const JSON &tags);

} // namespace tessaly
