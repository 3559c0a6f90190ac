#include "bench/measure.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessaly::bench {

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double percentile(std::vector<double> values, double percent)
{
    std::sort(values.begin(), values.end());
    const double rank = std::ceil(percent / 100 * static_cast<double>(values.size()));
    return values.at(static_cast<std::size_t>(std::max(rank, 1.0)) - 1);
}

double secondsOf(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Medians measureInTurns(int rounds, const std::function<void()> &ours, const std::function<void()> &reference)
{
    std::vector<double> oursSeconds;
    std::vector<double> referenceSeconds;
    for (int i = 0; i < rounds; ++i) {
        oursSeconds.push_back(secondsOf(ours));
        referenceSeconds.push_back(secondsOf(reference));
    }
    return {median(oursSeconds), median(referenceSeconds)};
}

void require(bool condition, const std::string &what)
{
    if (condition) return;
    std::fprintf(stderr, "benchmark: %s\n", what.c_str());
    std::exit(1);
}

namespace {

int printRow(const std::string &what, const std::string &ours, const std::string &against,
             const std::string &ratio, const std::string &bound, bool holds)
{
    const bool bounded = bound != "-";
    std::printf("%s\t%s\t%s\t%s\t%s\t%s\n", what.c_str(), ours.c_str(), against.c_str(), ratio.c_str(),
                bound.c_str(),
                !bounded ? "-"
                : holds  ? "holds"
                         : "BROKEN");
    std::fflush(stdout);
    return !bounded || holds ? 0 : 1;
}

std::string fixed(double value, int digits)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return text.data();
}

std::string boundText(double bound)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "<= %g", bound);
    return bound == noBound ? "-" : text.data();
}

} // namespace

int ratioRow(const std::string &what, const std::string &ours, const std::string &against, double ratio,
             double bound)
{
    return printRow(what, ours, against, fixed(ratio, 3), boundText(bound), ratio <= bound);
}

int valueRow(const std::string &what, double value, double bound, const std::string &unit)
{
    return printRow(what, fixed(value, 2) + ' ' + unit, "-", "-", boundText(bound) + ' ' + unit,
                    value <= bound);
}

std::string inUnit(double value, double unit, const char *name)
{
    return fixed(value / unit, 2) + ' ' + name;
}

std::string inMilliseconds(double seconds)
{
    return inUnit(seconds, 1e-3, "ms");
}

std::string inMegabytes(double bytes)
{
    return inUnit(bytes, 1e6, "MB");
}

double memoryFigure(const std::string &file, const std::string &key)
{
    std::ifstream facts(file);
    for (std::string word; facts >> word;) {
        double kilobytes = 0;
        if (word == key && facts >> kilobytes) return kilobytes * 1024;
    }
    require(false, file + " does not tell " + key);
    return 0;
}

double peakMemory()
{
    return memoryFigure("/proc/self/status", "VmHWM:");
}

Child::Child(const std::vector<std::string> &words) : m_name(words.at(0))
{
    std::array<int, 2> ends{};
    require(::pipe2(ends.data(), O_CLOEXEC) == 0, "no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    const int failed = ::posix_spawnp(&m_id, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    m_output = ends[0];
    if (failed != 0) m_id = 0;
    require(failed == 0, m_name + " cannot be run");
}

Child::~Child()
{
    ::close(m_output);
    if (m_id == 0) return;
    ::kill(m_id, SIGTERM);
    ::waitpid(m_id, nullptr, 0);
}

std::string Child::readLine()
{
    std::string line;
    char letter = 0;
    while (::read(m_output, &letter, 1) == 1) {
        if (letter == '\n') return line;
        line += letter;
    }
    require(false, m_name + " said nothing");
    return {};
}

std::string Child::readToEnd()
{
    std::string text;
    std::array<char, 65536> block{};
    for (ssize_t got = 0; (got = ::read(m_output, block.data(), block.size())) > 0;)
        text.append(block.data(), static_cast<std::size_t>(got));
    return text;
}

void Child::succeed()
{
    int status = 0;
    const bool ended = ::waitpid(m_id, &status, 0) == m_id;
    m_id = 0;
    require(ended && WIFEXITED(status) && WEXITSTATUS(status) == 0, m_name + " failed");
}

ChildRun runChild(const std::vector<std::string> &words)
{
    std::string output;
    const double seconds = secondsOf([&] {
        Child child(words);
        output = child.readToEnd();
        child.succeed();
    });
    return {seconds, output};
}

} // namespace tessaly::bench
