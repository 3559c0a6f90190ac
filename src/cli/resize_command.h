// tessaly-cli resize: a copy of a video in another frame size.
#pragma once

#include "cli/command_line.h"
#include "cli/exit_codes.h"

namespace tessaly {

// Writes progress and refusals to standard error, the report to standard output. SIGINT, SIGTERM and SIGHUP
// cancel; what a cancelled or failed run left behind is removed. The input is never touched.
ExitCode runResize(const ResizeCommand &command);

} // namespace tessaly
