// Resizing a 20-second 1080p clip to half its size, in the window and on the command line, and a shell loop
// of the same child runs, in turns. Usage: bench_resize FOLDER, which holds the clips of make_clips.sh.
#include "bench/live_window.h"
#include "bench/run_log.h"
#include "bench/shell_loop.h"
#include "jobs/resize_arguments.h"
#include "platform/bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

#include <sys/resource.h>

using namespace tessaly;
using namespace tessaly::bench;
using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 6;

// The last 64 KiB of the converter's text are kept, held up to four times and copied now and then; beyond
// that and the allocator's grain nothing may stay.
constexpr double memoryBound = 1.0; // MB

// What one way of resizing took, in all rounds.
struct Figures
{
    std::vector<double> whole;              // seconds
    std::vector<double> converter;          // seconds
    std::vector<double> converterProcessor; // seconds
    std::vector<double> ownProcessor;       // seconds
    std::vector<double> peak;               // bytes

    // Of the run that has just ended.
    void add(double seconds)
    {
        whole.push_back(seconds);
        for (const RunRecord &record : takeRecords()) {
            if (record.who == "converter") {
                converter.push_back(record.seconds);
                converterProcessor.push_back(record.processorSeconds);
            } else {
                ownProcessor.push_back(record.processorSeconds);
                peak.push_back(record.peakMemory);
            }
        }
    }
};

std::vector<double> quotients(const std::vector<double> &dividends, const std::vector<double> &divisors)
{
    std::vector<double> result;
    std::transform(dividends.begin(), dividends.end(), divisors.begin(), std::back_inserter(result),
                   std::divides());
    return result;
}

class Bench
{
public:
    explicit Bench(const QDir &folder)
        : m_short(folder.absoluteFilePath(u"1080p.mp4"_s)),
          m_long(folder.absoluteFilePath(u"1080p_long.mp4"_s)),
          m_output(folder.absoluteFilePath(u"resized.mp4"_s)),
          m_commandLine(folder.absoluteFilePath(u"timed/tessaly-cli"_s))
    {
        m_shell.addProbe(m_short);
        m_shell.addConverter(buildResizeArguments(FileProbe(m_short), m_short, m_output, 960, 540));
        m_shell.addProbe(m_output);
        m_shell.addProbe(m_output);
    }

    int run()
    {
        QFile::remove(m_output);
        takeRecords();
        m_window.drop(m_short);
        takeRecords();
        const std::vector<double> gaps = pulseOfOneJob();
        for (int turn = 0; turn < 3 * rounds; ++turn)
            addTurn((turn + turn / 3) % 3); // each way once a round, and each as often first
        const Figures longInWindow = longJobInWindow();
        Figures longOnCommandLine;
        addCommandLine(longOnCommandLine, m_long);

        return timeRows("converter from start to end, in the window", m_inWindow.converter, m_inWindow,
                        "bare converter", m_bare.converter) +
               timeRows("converter from start to end, in the command line", m_onCommandLine.converter,
                        m_onCommandLine, "bare converter", m_bare.converter) +
               timeRows("whole of tessaly-cli resize", m_onCommandLine.whole, m_onCommandLine, "shell loop",
                        m_bare.whole) +
               processorRow("the window", m_inWindow) + processorRow("the command line", m_onCommandLine) +
               memoryRow("the window", m_inWindow, longInWindow) +
               memoryRow("the command line", m_onCommandLine, longOnCommandLine) + gapRows("resize", gaps);
    }

private:
    void addTurn(int way)
    {
        if (way == 0) m_bare.add(m_shell.run());
        if (way == 1) addWindow(m_inWindow);
        if (way == 2) addCommandLine(m_onCommandLine, m_short);
    }

    void addWindow(Figures &figures)
    {
        // The peak is counted from now on, and without what the window holds anyway.
        std::ofstream("/proc/self/clear_refs") << 5;
        const double heldBefore = peakMemory();
        const double before = processorSeconds(RUSAGE_SELF);
        const double seconds = secondsOf([this] { m_window.saveHalf(m_output); });
        addRecord({.who = "program",
                   .processorSeconds = processorSeconds(RUSAGE_SELF) - before,
                   .peakMemory = peakMemory() - heldBefore});
        figures.add(seconds);
        m_window.answerReport();
    }

    void addCommandLine(Figures &figures, const QString &input) const
    {
        figures.add(runChild({m_commandLine.toStdString(), "resize", input.toStdString(), "-o",
                              m_output.toStdString(), "--scale", "50", "--force"})
                        .seconds);
    }

    std::vector<double> pulseOfOneJob()
    {
        const Pulse pulse;
        m_window.saveHalf(m_output);
        std::vector<double> gaps = pulse.gaps();
        m_window.answerReport();
        takeRecords();
        return gaps;
    }

    Figures longJobInWindow()
    {
        m_window.drop(m_long);
        takeRecords();
        Figures figures;
        addWindow(figures);
        return figures;
    }

    // As it is, and by the second of processor time that the converter used, which is what has the bound.
    int timeRows(const std::string &what, const std::vector<double> &seconds, const Figures &figures,
                 const std::string &against, const std::vector<double> &bareSeconds) const
    {
        const auto held = [&](const std::string &bare) { return bare + " (" + against + ")"; };
        const double share = median(quotients(seconds, figures.converterProcessor));
        const double bareShare = median(quotients(bareSeconds, m_bare.converterProcessor));
        return ratioRow(what, inUnit(median(seconds), 1, "s"), held(inUnit(median(bareSeconds), 1, "s")),
                        median(seconds) / median(bareSeconds), noBound) +
               ratioRow("the same, per second of the converter's processor time", inMilliseconds(share),
                        held(inMilliseconds(bareShare)), share / bareShare, 1.02);
    }

    static int processorRow(const std::string &of, const Figures &figures)
    {
        const double own = median(figures.ownProcessor);
        const double converter = median(figures.converterProcessor);
        return ratioRow("own processor time of " + of, inMilliseconds(own),
                        inMilliseconds(converter) + " (converter)", own / converter, 0.01);
    }

    static int memoryRow(const std::string &of, const Figures &figures, const Figures &longer)
    {
        return valueRow("peak memory of " + of + ", growth from 20 s to 80 s",
                        (median(longer.peak) - median(figures.peak)) / 1e6, memoryBound, "MB");
    }

    QString m_short;
    QString m_long;
    QString m_output;
    QString m_commandLine;
    LiveWindow m_window;
    ShellLoop m_shell;
    Figures m_bare;
    Figures m_inWindow;
    Figures m_onCommandLine;
};

} // namespace

int main(int argc, char *argv[])
{
    require(argc == 2, "usage: bench_resize FOLDER");
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    setResourceFolders({folder.absoluteFilePath(u"timed"_s)});
    return runWithApplication(argc, argv, [&folder] { return Bench(folder).run(); });
}
