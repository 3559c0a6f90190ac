// What tessaly-cli ends with.
#pragma once

namespace tessaly {

enum ExitCode {
    exitDone = 0,
    exitFailed = 1, // info: some file is no valid media file; resize: failed or refused
    exitWrongUsage = 2,
    exitCancelled = 130, // as of a program that Ctrl+C has ended
};

} // namespace tessaly
