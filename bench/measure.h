// What the benchmarks share: medians, rows of the table, and child processes. A measurement that cannot be
// made ends the program with a sentence.
#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tessaly::bench {

double median(std::vector<double> values);
// The smallest value that this share (percent) of all values does not exceed.
double percentile(std::vector<double> values, double percent);

double secondsOf(const std::function<void()> &work);

// Both in turn, so that what disturbs the machine meets both.
struct Medians
{
    double ours; // seconds
    double reference;
};
Medians measureInTurns(int rounds, const std::function<void()> &ours, const std::function<void()> &reference);

void require(bool condition, const std::string &what);

// A figure is at most its bound; without one it is only told.
constexpr double noBound = 0;
// Each prints one row: what was measured, ours, the measure it is held against, their ratio, bound, verdict.
// The answer is the number of broken bounds, 0 or 1.
int ratioRow(const std::string &what, const std::string &ours, const std::string &against, double ratio,
             double bound);
// The value itself has the bound, in the unit.
int valueRow(const std::string &what, double value, double bound, const std::string &unit);

std::string inUnit(double value, double unit, const char *name);
std::string inMilliseconds(double seconds);
std::string inMegabytes(double bytes);

// In bytes, from a file of /proc such as "/proc/self/status" and a key in it such as "VmHWM:".
double memoryFigure(const std::string &file, const std::string &key);
// The most that this process ever held in memory, in bytes.
double peakMemory();

// A program with the null device for standard input and standard error, whose standard output is read. Killed
// and waited for at the end of this object.
class Child
{
public:
    explicit Child(const std::vector<std::string> &words);
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    pid_t id() const { return m_id; }
    std::string readLine(); // waits for it; without its line break
    std::string readToEnd();
    void succeed(); // waits for its end, which has to be a success

private:
    std::string m_name;
    pid_t m_id = 0;
    int m_output = -1;
};

// From start to end; the program has to succeed.
struct ChildRun
{
    double seconds;
    std::string output;
};
ChildRun runChild(const std::vector<std::string> &words);

} // namespace tessaly::bench
