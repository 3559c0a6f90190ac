// Start and idle memory of the real program and of an empty window, in turns. Usage: bench_start
#include "bench/measure.h"

#include <chrono>
#include <filesystem>
#include <thread>

using namespace tessaly::bench;

namespace {

constexpr int rounds = 40;

// The proportional share of memory, which counts a page for every process that has it mapped.
double memoryShare(pid_t id)
{
    return memoryFigure("/proc/" + std::to_string(id) + "/smaps_rollup", "Pss:");
}

// Memory is settled when it has not changed for a quarter of a second.
double idleMemory(pid_t id)
{
    double before = 0;
    double now = memoryShare(id);
    for (int i = 0; before != now && i < 20; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        before = now;
        now = memoryShare(id);
    }
    return now;
}

struct Starts
{
    std::string program;
    std::vector<double> seconds; // from spawn to the first painted window
    std::vector<double> memory;  // bytes
    std::string window;          // its size

    void add()
    {
        const auto start = std::chrono::steady_clock::now();
        Child child({program});
        window = child.readLine();
        seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        memory.push_back(idleMemory(child.id()));
    }
};

} // namespace

int main()
{
    const std::string folder = std::filesystem::canonical("/proc/self/exe").parent_path().string();
    Starts ours{.program = folder + "/bench_tessaly"};
    Starts empty{.program = folder + "/bench_empty_window"};
    for (int i = 0; i < rounds; ++i) {
        // Each as often right after the other's end, with which the display is still busy.
        (i % 2 == 0 ? ours : empty).add();
        (i % 2 == 0 ? empty : ours).add();
    }
    require(ours.window == empty.window, "the windows differ in size");
    const double seconds = median(ours.seconds);
    const double memory = median(ours.memory);
    return ratioRow("start to first painted window", inMilliseconds(seconds),
                    inMilliseconds(median(empty.seconds)) + " (empty window)",
                    seconds / median(empty.seconds), 1.3) +
           ratioRow("idle memory (proportional share)", inMegabytes(memory),
                    inMegabytes(median(empty.memory)) + " (empty window)", memory / median(empty.memory),
                    1.6);
}
