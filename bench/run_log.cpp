#include "bench/run_log.h"

#include "bench/measure.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>

namespace tessaly::bench {

namespace {

std::string logFile()
{
    const char *file = std::getenv("TESSALY_BENCH_LOG");
    require(file != nullptr, "TESSALY_BENCH_LOG is not set");
    return file;
}

double inSeconds(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

double processorSeconds(int whose)
{
    rusage usage{};
    require(::getrusage(whose, &usage) == 0, "no processor time");
    return inSeconds(usage.ru_utime) + inSeconds(usage.ru_stime);
}

void addRecord(const RunRecord &record)
{
    std::ofstream log(logFile(), std::ios::app);
    log << record.who << ' ' << record.seconds << ' ' << record.processorSeconds << ' ' << record.peakMemory
        << '\n';
    require(log.flush().good(), "the log cannot be written");
}

std::vector<RunRecord> takeRecords()
{
    std::vector<RunRecord> records;
    std::ifstream log(logFile());
    for (RunRecord one; log >> one.who >> one.seconds >> one.processorSeconds >> one.peakMemory;)
        records.push_back(one);
    std::filesystem::remove(logFile());
    return records;
}

} // namespace tessaly::bench
