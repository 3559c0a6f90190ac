// What a test saw happen, for the table of faults (tests/faults).
#pragma once

#include <QString>

namespace tessaly::test {

// Appends a line to the file that the environment variable TESSALY_SEEN_FILE names; without it this does
// nothing. Line breaks become " / ". Call it with what was observed, not with what was expected.
void seen(const QString &observation);

} // namespace tessaly::test
