// Measures the JSON value against the parser library's own tree, on the same bytes and side by side in one
// run.
#include "json/json.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace tessaly;

namespace {

constexpr std::size_t reportSize = 1'000'000; // bytes

// A prober's report of many streams.
std::string makeReport()
{
    std::string text = "{\n    \"streams\": [";
    for (int i = 0; text.size() < reportSize; ++i) {
        const std::string index = std::to_string(i);
        text += (i == 0 ? "\n" : ",\n");
        text += "        {\n            \"index\": " + index + ",\n" + R"(            "codec_name": "h264",
            "codec_long_name": "H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10",
            "profile": "High",
            "codec_type": "video",
            "codec_tag_string": "avc1",
            "codec_tag": "0x31637661",
            "width": 1920,
            "height": 1080,
            "has_b_frames": 2,
            "sample_aspect_ratio": "1:1",
            "display_aspect_ratio": "16:9",
            "pix_fmt": "yuv420p",
            "level": 40,
            "is_avc": "true",
            "r_frame_rate": "30000/1001",
            "avg_frame_rate": "30000/1001",
            "time_base": "1/30000",
            "start_pts": 0,
            "start_time": "0.000000",
            "duration_ts": 375375,
            "duration": "12.512500",
            "bit_rate": "8000000",
            "disposition": {
                "default": 1,
                "dub": 0,
                "original": 0,
                "attached_pic": 0
            },
            "tags": {
                "creation_time": "2020-01-01T00:00:00.000000Z",
                "language": "und",
                "handler_name": "VideoHandler"
            }
        })";
    }
    return text + "\n    ],\n    \"format\": {\"duration\": \"12.512500\", \"bit_rate\": \"800000\"}\n}\n";
}

double secondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Both in turn, so that what disturbs the machine meets both.
struct Medians
{
    double ours;
    double library;
};
Medians measure(int rounds, const std::function<void()> &ours, const std::function<void()> &library)
{
    std::vector<double> oursSeconds;
    std::vector<double> librarySeconds;
    for (int i = 0; i < rounds; ++i) {
        oursSeconds.push_back(secondsOf(ours));
        librarySeconds.push_back(secondsOf(library));
    }
    return {median(oursSeconds), median(librarySeconds)};
}

void require(bool condition, const char *what)
{
    if (condition) return;
    std::fprintf(stderr, "bench_json: %s\n", what);
    std::exit(1);
}

// One row: what was measured, ours, the measure it is held against, ratio, bound.
int row(const char *what, const std::string &ours, const std::string &against, double ratio, double bound)
{
    const bool holds = bound == 0 || ratio <= bound;
    const char *verdict = bound == 0 ? "" : holds ? "holds" : "BROKEN";
    const std::string boundText = bound == 0 ? "-" : "<= " + std::to_string(int(bound));
    std::printf("%s\t%s\t%s\t%.2f\t%s\t%s\n", what, ours.c_str(), against.c_str(), ratio, boundText.c_str(),
                verdict);
    return holds ? 0 : 1;
}

std::string inUnit(double seconds, double unit, const char *name)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.2f %s", seconds / unit, name);
    return text;
}

int benchReading(const std::string &text)
{
    const Medians seconds = measure(
        41, [&text] { require(JSON::fromBytes(text).count() == 2, "the report was not read"); },
        [&text] { require(nlohmann::json::parse(text).size() == 2, "the library did not read the report"); });
    return row("read a 1 MB report", inUnit(seconds.ours, 1e-3, "ms"), inUnit(seconds.library, 1e-3, "ms"),
               seconds.ours / seconds.library, 2);
}

int benchLookup(const std::string &text)
{
    constexpr int lookups = 20'000;
    const JSON json = JSON::fromBytes(text);
    const nlohmann::json tree = nlohmann::json::parse(text);
    const int streams = static_cast<int>(json["streams"].count());
    std::size_t found = 0;
    std::size_t foundByLibrary = 0;
    const Medians seconds = measure(
        41,
        [&] {
            for (int i = 0; i < lookups; ++i)
                found += json[{"streams", i % streams, "tags", "language"}].object().string()->size();
        },
        [&] {
            for (int i = 0; i < lookups; ++i)
                foundByLibrary += tree["streams"][static_cast<std::size_t>(i % streams)]["tags"]["language"]
                                      .get_ref<const std::string &>()
                                      .size();
        });
    require(found == foundByLibrary && found > 0, "the lookups did not find the same");
    return row("look up a path of four steps", inUnit(seconds.ours / lookups, 1e-9, "ns"),
               inUnit(seconds.library / lookups, 1e-9, "ns"), seconds.ours / seconds.library, 3);
}

// In bytes; the most that this process ever held in memory.
double peakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes) return kilobytes * 1024;
    }
    return 0;
}

// What the work adds to the peak of a fresh process that holds the text.
double addedPeak(const std::function<void()> &work)
{
    int pipeEnds[2];
    require(pipe(pipeEnds) == 0, "no pipe");
    const pid_t child = fork();
    require(child >= 0, "no child process");
    if (child == 0) {
        const double before = peakMemory();
        work();
        const double added = peakMemory() - before;
        require(write(pipeEnds[1], &added, sizeof added) == sizeof added, "no answer from the child");
        _exit(0);
    }
    double added = 0;
    require(read(pipeEnds[0], &added, sizeof added) == sizeof added, "no answer from the child");
    close(pipeEnds[0]);
    close(pipeEnds[1]);
    waitpid(child, nullptr, 0);
    return added;
}

int benchMemory(const std::string &text)
{
    std::vector<double> ours;
    std::vector<double> library;
    for (int i = 0; i < 9; ++i) {
        ours.push_back(addedPeak([&text] { require(JSON::fromBytes(text).count() == 2, "not read"); }));
        library.push_back(
            addedPeak([&text] { require(nlohmann::json::parse(text).size() == 2, "not read"); }));
    }
    const double size = static_cast<double>(text.size());
    return row("peak memory for 1 MB of text (library's tree beside it)", inUnit(median(ours), 1e6, "MB"),
               inUnit(median(library), 1e6, "MB"), median(ours) / median(library), 0) +
           row("peak memory over the size of the text", inUnit(median(ours), 1e6, "MB"),
               inUnit(size, 1e6, "MB"), median(ours) / size, 0);
}

} // namespace

int main()
{
    const std::string report = makeReport();
    // Memory first, while this process has not kept any from earlier work.
    const int broken = benchMemory(report) + benchReading(report) + benchLookup(report);
    return broken == 0 ? 0 : 1;
}
