// Stands in for a media tool. What it does is told by the file "<name it was started by>.behaviour": one step
// after another, each the step's name on a line of its own, then its parameters on lines that begin with a
// tab. The steps are listed in fake_tools.h. After the last one it exits with 0.
//
// Each start appends to "<name>.calls" the number of arguments and the arguments, each ended by a NUL, and to
// "<name>.pids" its process id on a line.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

struct Step
{
    std::string name;
    Texts parameters;
};

std::string self;
Texts arguments;

[[noreturn]] void refuse(const std::string &complaint)
{
    std::cerr << "fake tool: " << complaint << '\n';
    std::_Exit(99);
}

std::string contents(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) refuse("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void append(const std::string &path, const std::string &text)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (file < 0 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        refuse("cannot write " + path);
    close(file);
}

std::string unescaped(const std::string &text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            plain += text[i];
            continue;
        }
        const char code = text[++i];
        plain += code == 'n' ? '\n' : code == 'r' ? '\r' : code;
    }
    return plain;
}

std::vector<Step> readSteps()
{
    std::ifstream file(self + ".behaviour");
    if (!file) refuse("no behaviour for " + self);
    std::vector<Step> steps;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('\t'))
            steps.push_back({line, {}});
        else if (!steps.empty())
            steps.back().parameters.push_back(unescaped(line.substr(1)));
    }
    return steps;
}

void noteTheCall()
{
    std::string call = std::to_string(arguments.size()) + '\0';
    for (const std::string &argument : arguments)
        call += argument + '\0';
    append(self + ".calls", call);
    append(self + ".pids", std::to_string(getpid()) + '\n');
}

// 1 for the first start, even while others follow.
long numberOfThisCall()
{
    const std::string pids = '\n' + contents(self + ".pids");
    const std::size_t own = pids.rfind('\n' + std::to_string(getpid()) + '\n');
    return 1 + std::count(pids.begin(), pids.begin() + static_cast<std::ptrdiff_t>(own), '\n');
}

void send(int channel, const std::string &text)
{
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t part = write(channel, text.data() + sent, text.size() - sent);
        if (part <= 0) std::_Exit(98); // nobody reads any more
        sent += static_cast<std::size_t>(part);
    }
}

void flood(int channel, long long bytes)
{
    std::string block;
    while (block.size() < 64 * 1024)
        block += std::string(79, 'x') + '\n';
    for (; bytes > 0; bytes -= static_cast<long long>(block.size()))
        send(channel, block.substr(0, static_cast<std::size_t>(
                                          std::min(bytes, static_cast<long long>(block.size())))));
}

void pauseFor(const std::string &milliseconds)
{
    const std::chrono::milliseconds pause(std::stol(milliseconds));
    std::this_thread::sleep_for(pause); // waits on purpose: a slow tool
}

[[noreturn]] void hang()
{
    for (;;)
        pause();
}

const std::string &output()
{
    if (arguments.empty()) refuse("no output is named");
    return arguments.back();
}

void writeOutput(const std::string &bytes)
{
    std::ofstream file(output(), std::ios::binary | std::ios::trunc);
    file << bytes;
    if (!file.flush()) refuse("cannot write " + output());
}

// The same, but stays open.
void holdOutput(const std::string &bytes)
{
    send(open(output().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644), bytes);
}

volatile std::sig_atomic_t terminated = 0;

void slowFlush(const std::string &milliseconds, const std::string &status)
{
    while (!terminated)
        pauseFor("5");
    pauseFor(milliseconds);
    std::_Exit(std::stoi(status));
}

void crash()
{
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

// Whether standard input is the null device, something else that is at its end, or open.
std::string standardInput()
{
    struct stat input = {};
    struct stat null = {};
    char byte = 0;
    if (fstat(STDIN_FILENO, &input) != 0) return "closed";
    if (stat("/dev/null", &null) == 0 && S_ISCHR(input.st_mode) && input.st_rdev == null.st_rdev)
        return "null device";
    return read(STDIN_FILENO, &byte, 1) == 0 ? "ended" : "open";
}

// Leaves a process behind that keeps the standard channels open.
void leaveBehind(const std::string &milliseconds, const std::string &lastWords)
{
    const pid_t parent = getpid();
    const pid_t left = fork();
    if (left != 0) return append(self + ".pids", std::to_string(left) + '\n');
    while (!lastWords.empty() && getppid() == parent)
        pauseFor("5");
    pauseFor(milliseconds);
    send(STDOUT_FILENO, lastWords);
    std::_Exit(0);
}

// How this process stands to its parent, in words of the system.
void noteTreatment(const std::string &path)
{
    std::string text = getpgrp() == getpid() ? "a group of its own\n" : "the group of another\n";
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigBlk") || line.starts_with("SigIgn")) text += line + '\n';
    }
    append(path, text);
}

void becomeTool(const std::string &program)
{
    std::vector<char *> words{const_cast<char *>(program.c_str())};
    for (std::string &argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    execv(program.c_str(), words.data());
    refuse("cannot run " + program);
}

void waitForFile(const std::string &path)
{
    while (!std::filesystem::exists(path))
        pauseFor("5");
}

void waitForTurn(const std::string &prefix)
{
    waitForFile(prefix + std::to_string(numberOfThisCall()));
}

void waitUntilRead()
{
    int left = 0;
    while (ioctl(STDERR_FILENO, FIONREAD, &left) == 0 && left > 0)
        pauseFor("1");
}

void progress(const Texts &texts)
{
    for (std::size_t i = 1; i < texts.size(); ++i) {
        send(STDERR_FILENO, texts[i]);
        pauseFor(texts[0]);
    }
}

void failAtCall(const std::string &number, const std::string &status)
{
    if (numberOfThisCall() == std::stol(number)) std::_Exit(std::stoi(status));
}

const std::map<std::string, std::function<void(const Texts &)>> behaviours = {
    {"print", [](const Texts &p) { send(STDOUT_FILENO, p.at(0)); }},
    {"print-file", [](const Texts &p) { send(STDOUT_FILENO, contents(p.at(0))); }},
    {"rubbish", [](const Texts &) { send(STDOUT_FILENO, "no JSON at all\n"); }},
    {"invalid-utf8", [](const Texts &) { send(STDOUT_FILENO, "{\"format\": {\"a\": \"\xff\xfe\"}}\n"); }},
    {"open-brace", [](const Texts &) { send(STDOUT_FILENO, "{\n"); }},
    {"print-input-kind", [](const Texts &) { send(STDOUT_FILENO, standardInput()); }},
    {"complain", [](const Texts &p) { send(STDERR_FILENO, p.at(0)); }},
    {"complain-file", [](const Texts &p) { send(STDERR_FILENO, contents(p.at(0))); }},
    {"progress", progress},
    {"flood-stdout", [](const Texts &p) { flood(STDOUT_FILENO, std::stoll(p.at(0))); }},
    {"flood-stderr", [](const Texts &p) { flood(STDERR_FILENO, std::stoll(p.at(0))); }},
    {"pause", [](const Texts &p) { pauseFor(p.at(0)); }},
    {"wait-for-file", [](const Texts &p) { waitForFile(p.at(0)); }},
    {"wait-until-read", [](const Texts &) { waitUntilRead(); }},
    {"wait-for-turn", [](const Texts &p) { waitForTurn(p.at(0)); }},
    {"hang", [](const Texts &) { hang(); }},
    {"ignore-terminate", [](const Texts &) { std::signal(SIGTERM, SIG_IGN); }},
    {"slow-flush", [](const Texts &p) { slowFlush(p.at(0), p.size() > 1 ? p[1] : "255"); }},
    {"crash", [](const Texts &) { crash(); }},
    {"exit", [](const Texts &p) { std::_Exit(std::stoi(p.at(0))); }},
    {"fail-at-call", [](const Texts &p) { failAtCall(p.at(0), p.size() > 1 ? p[1] : "1"); }},
    {"write-output", [](const Texts &p) { writeOutput(p.at(0)); }},
    {"hold-output", [](const Texts &p) { holdOutput(p.at(0)); }},
    {"copy-to-output", [](const Texts &p) { writeOutput(contents(p.at(0))); }},
    {"leave-behind", [](const Texts &p) { leaveBehind(p.at(0), p.size() > 1 ? p[1] : ""); }},
    {"note-treatment", [](const Texts &p) { noteTreatment(p.at(0)); }},
    {"become", [](const Texts &p) { becomeTool(p.at(0)); }},
};

} // namespace

int main(int count, char *words[])
{
    self = words[0];
    arguments.assign(words + 1, words + count);
    noteTheCall();
    try {
        const std::vector<Step> steps = readSteps();
        // From the beginning, so that the signal may come as soon as a step before it is seen.
        if (std::any_of(steps.begin(), steps.end(),
                        [](const Step &step) { return step.name == "slow-flush"; }))
            std::signal(SIGTERM, [](int) { terminated = 1; });
        for (const Step &step : steps) {
            const auto behaviour = behaviours.find(step.name);
            if (behaviour == behaviours.end()) refuse("no behaviour is called " + step.name);
            behaviour->second(step.parameters);
        }
    } catch (const std::exception &) {
        refuse("a parameter is missing or wrong");
    }
    return 0;
}
