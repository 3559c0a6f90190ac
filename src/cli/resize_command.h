// tessaly-cli resize: copies of videos in another frame size.
#pragma once

#include "cli/command_line.h"
#include "cli/exit_codes.h"

namespace tessaly {

// One video after another. Writes progress and refusals to standard error, the report to standard output. A
// failure does not keep the others from being resized. SIGINT, SIGTERM and SIGHUP cancel the one that is
// being resized, and no further one begins; what a cancelled or failed run left behind is removed. The inputs
// are never touched.
ExitCode runResize(const ResizeCommand &command);

} // namespace tessaly
