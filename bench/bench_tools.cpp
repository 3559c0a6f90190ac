// Own tools held against the system's, in turns. Usage: bench_tools CLIPS OWN SYSTEM, where OWN and SYSTEM
// are folders with the tools and a copy of tessaly-cli beside them.
#include "bench/live_window.h"
#include "bench/measure.h"
#include "platform/bundle.h"
#include "probe/file_probe.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/resource.h>

using namespace tessaly;
using namespace tessaly::bench;
using namespace Qt::StringLiterals;

namespace {

struct Folders
{
    QString own;
    QString system;
};

// The work with either tools.
std::function<void()> with(const QString &folder, const std::function<void()> &work)
{
    return [&work, folder] {
        setResourceFolders({folder});
        work();
    };
}

int row(const std::string &what, const Folders &folders, int rounds, double bound,
        const std::function<void()> &work)
{
    const Medians seconds = measureInTurns(rounds, with(folders.own, work), with(folders.system, work));
    return ratioRow(what, inMilliseconds(seconds.ours),
                    inMilliseconds(seconds.reference) + " (system's tools)", seconds.ours / seconds.reference,
                    bound);
}

// Of all child processes that have ended.
double processorSeconds()
{
    rusage usage{};
    require(::getrusage(RUSAGE_CHILDREN, &usage) == 0, "no processor time is told");
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

int processorRow(const std::string &what, const Folders &folders, int rounds, double bound,
                 const std::function<void()> &work)
{
    std::vector<double> own;
    std::vector<double> system;
    for (int i = 0; i < rounds; ++i) {
        const double start = processorSeconds();
        with(folders.own, work)();
        const double half = processorSeconds();
        with(folders.system, work)();
        own.push_back(half - start);
        system.push_back(processorSeconds() - half);
    }
    return ratioRow(what, inMilliseconds(median(own)), inMilliseconds(median(system)) + " (system's tools)",
                    median(own) / median(system), bound);
}

std::function<void()> commandLine(const QString &clip, const QString &output)
{
    return [clip, output] {
        const QString program = QFileInfo(*pathForResource(u"creator"_s)).path() + "/tessaly-cli"_L1;
        runChild({program.toStdString(), "resize", clip.toStdString(), "-o", output.toStdString(), "--scale",
                  "50", "--force"});
    };
}

int benchTools(const QDir &clips, const Folders &folders)
{
    const auto clip = [&clips](const QString &name) { return clips.absoluteFilePath(name); };
    const QTemporaryDir outputs;
    const QString output = outputs.filePath(u"small.mp4"_s);
    LiveWindow window;
    return row("own tools: open 360p, 10 s", folders, 9, 0.5, [&] { window.drop(clip(u"360p.mp4"_s)); }) +
           row("own tools: open 1080p, a keyframe a second", folders, 7, 0.6,
               [&] { window.drop(clip(u"1080p.mp4"_s)); }) +
           row("own tools: probe of one file", folders, 41, 0.2,
               [&] { require(FileProbe(clip(u"plain.mp4"_s)).isValidMediaFile, "the clip is not valid"); }) +
           row("own tools: whole of tessaly-cli resize, 360p, 2 s", folders, 9, 0.6,
               commandLine(clip(u"plain.mp4"_s), output)) +
           processorRow("own tools: processor time of tessaly-cli resize, 1080p, 20 s", folders, 5, 1 / 0.98,
                        commandLine(clip(u"1080p.mp4"_s), output));
}

} // namespace

int main(int argc, char *argv[])
{
    require(argc == 4, "usage: bench_tools CLIPS OWN SYSTEM");
    const QDir clips(QString::fromLocal8Bit(argv[1]));
    const Folders folders{QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3])};
    return runWithApplication(argc, argv, [&] { return benchTools(clips, folders); });
}
