// Linked into a program: records at its end what it took itself. The program knows nothing of it.
#include "bench/measure.h"
#include "bench/run_log.h"

#include <sys/resource.h>

namespace {

struct Meter
{
    ~Meter()
    {
        using namespace tessaly::bench;
        addRecord({.who = "program",
                   .processorSeconds = processorSeconds(RUSAGE_SELF),
                   .peakMemory = peakMemory()});
    }
};

const Meter meter;

} // namespace
