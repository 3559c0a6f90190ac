// tessaly-cli info: what is known about media files.
#pragma once

#include "cli/command_line.h"
#include "cli/exit_codes.h"

namespace tessaly {

// Probes the files one after another and writes to standard output.
ExitCode runInfo(const InfoCommand &command);

} // namespace tessaly
