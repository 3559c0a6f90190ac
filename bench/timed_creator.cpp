// Stands for the converter among the resources of a measured program: runs it with the same arguments and
// channels, and records how long it took.
#include "bench/measure.h"
#include "bench/run_log.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tessaly::bench;

int main(int, char *argv[])
{
    int status = 0;
    const double seconds = secondsOf([&] {
        pid_t converter = 0;
        require(::posix_spawn(&converter, TESSALY_FFMPEG, nullptr, nullptr, argv, environ) == 0,
                "the converter cannot be run");
        ::waitpid(converter, &status, 0);
    });
    addRecord(
        {.who = "converter", .seconds = seconds, .processorSeconds = processorSeconds(RUSAGE_CHILDREN)});
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
