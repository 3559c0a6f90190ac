// A file to which metered programs add a line at their end, named by the environment variable
// TESSALY_BENCH_LOG.
#pragma once

#include <string>
#include <vector>

namespace tessaly::bench {

struct RunRecord
{
    std::string who;
    double seconds = 0;          // from start to end; 0 when not measured
    double processorSeconds = 0; // its own, user and system
    double peakMemory = 0;       // bytes
};

// Processor time of this process (RUSAGE_SELF) or of its children that have ended (RUSAGE_CHILDREN), in
// seconds.
double processorSeconds(int whose);

void addRecord(const RunRecord &record);

// The records since the last call.
std::vector<RunRecord> takeRecords();

} // namespace tessaly::bench
