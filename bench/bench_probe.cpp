// What a probe costs over the bare prober: both run in turns on the same file. Usage: bench_probe FILE
#include "probe/file_probe.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int rounds = 41;
constexpr double bound = 1.05;

double milliseconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The prober with the same arguments, its output read to the end: as little as any caller can do.
void runBareProber(const char *prober, const char *file)
{
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0) std::exit(1);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::array<const char *, 11> arguments{prober,        "-v",           "quiet",         "-print_format",
                                           "json",        "-show_format", "-show_streams", "-show_chapters",
                                           "-show_error", file,           nullptr};
    pid_t child = 0;
    const int failed =
        ::posix_spawn(&child, prober, &actions, nullptr, const_cast<char **>(arguments.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(pipe[1]);
    std::array<char, 65536> block{};
    ssize_t got = 0;
    std::size_t total = 0;
    while ((got = ::read(pipe[0], block.data(), block.size())) > 0)
        total += static_cast<std::size_t>(got);
    ::close(pipe[0]);
    int status = 0;
    if (failed == 0) ::waitpid(child, &status, 0);
    if (failed != 0 || total == 0) {
        std::fputs("bench_probe: the prober gave nothing\n", stderr);
        std::exit(1);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: bench_probe FILE\n", stderr);
        return 2;
    }
    const QString file = QString::fromLocal8Bit(argv[1]);
    const QByteArray prober =
        (QCoreApplication::applicationDirPath() + QStringLiteral("/sniffer")).toLocal8Bit();
    bool valid = true;
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < rounds; ++i) {
        ours.push_back(milliseconds([&] { valid = tessaly::FileProbe(file).isValidMediaFile && valid; }));
        bare.push_back(milliseconds([&] { runBareProber(prober.constData(), argv[1]); }));
    }
    if (!valid) {
        std::fputs("bench_probe: the file is no valid media file\n", stderr);
        return 1;
    }
    const double ratio = median(ours) / median(bare);
    const bool holds = ratio <= bound;
    std::printf("probe of one file\t%.1f ms\t%.1f ms (bare prober)\t%.3f\t<= %.2f\t%s\n", median(ours),
                median(bare), ratio, bound, holds ? "holds" : "BROKEN");
    return holds ? 0 : 1;
}
