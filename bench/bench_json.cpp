// Measures the JSON value against the parser library's own tree, on the same bytes and side by side in one
// run.
#include "bench/measure.h"
#include "json/json.h"

#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace tessaly;
using namespace tessaly::bench;

namespace {

constexpr std::size_t reportSize = 1'000'000; // bytes
const std::string libraryTree = " (parser library's tree)";

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

int benchReading(const std::string &text)
{
    const Medians seconds = measureInTurns(
        41, [&text] { require(JSON::fromBytes(text).count() == 2, "the report was not read"); },
        [&text] { require(nlohmann::json::parse(text).size() == 2, "the library did not read the report"); });
    return ratioRow("read a 1 MB report", inMilliseconds(seconds.ours),
                    inMilliseconds(seconds.reference) + libraryTree, seconds.ours / seconds.reference, 2);
}

int benchLookup(const std::string &text)
{
    constexpr int lookups = 20'000;
    const JSON json = JSON::fromBytes(text);
    const nlohmann::json tree = nlohmann::json::parse(text);
    const int streams = static_cast<int>(json["streams"].count());
    std::size_t found = 0;
    std::size_t foundByLibrary = 0;
    const Medians seconds = measureInTurns(
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
    return ratioRow("look up a path of four steps", inUnit(seconds.ours / lookups, 1e-9, "ns"),
                    inUnit(seconds.reference / lookups, 1e-9, "ns") + libraryTree,
                    seconds.ours / seconds.reference, 3);
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
    const double most = median(ours);
    return ratioRow("peak memory for 1 MB of text", inMegabytes(most),
                    inMegabytes(median(library)) + libraryTree, most / median(library), noBound) +
           ratioRow("peak memory over the size of the text", inMegabytes(most), inMegabytes(size),
                    most / size, noBound);
}

} // namespace

int main() // NOLINT(bugprone-exception-escape): a benchmark that cannot measure may end so
{
    const std::string report = makeReport();
    // Memory first, while this process has not kept any from earlier work.
    const int broken = benchMemory(report) + benchReading(report) + benchLookup(report);
    return broken == 0 ? 0 : 1;
}
