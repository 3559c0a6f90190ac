// Opening a video, from its drop to enabled controls, and a shell loop of the same child runs, in turns.
// Usage: bench_open FOLDER, which holds the clips of make_clips.sh.
#include "bench/live_window.h"
#include "bench/shell_loop.h"
#include "jobs/poster_frames.h"
#include "platform/temporary_directory.h"

#include <QDir>

using namespace tessaly;
using namespace tessaly::bench;
using namespace Qt::StringLiterals;

namespace {

struct Clip
{
    std::string name;
    QString file;
    int rounds;
};

ShellLoop runsOfOpening(const QString &path)
{
    const double duration = FileProbe(path).duration;
    ShellLoop runs;
    runs.addProbe(path);
    for (int n = 1; n <= posterFrameCount; ++n)
        runs.addConverter(posterFrameArguments(n, duration, path));
    return runs;
}

int benchOpening(LiveWindow &window, const Clip &clip, const QDir &folder)
{
    const QString path = folder.absoluteFilePath(clip.file);
    window.drop(path); // once unmeasured: now the clip is in memory, and the stills' folder is there
    const ShellLoop shell = runsOfOpening(path);
    std::vector<double> ours;
    std::vector<double> bare;
    std::vector<double> gaps;
    for (int i = 0; i < clip.rounds; ++i) {
        const Pulse pulse;
        ours.push_back(secondsOf([&] { window.drop(path); }));
        gaps.insert(gaps.end(), pulse.gaps().begin(), pulse.gaps().end());
        bare.push_back(shell.run());
    }
    return ratioRow("open " + clip.name, inMilliseconds(median(ours)),
                    inMilliseconds(median(bare)) + " (shell loop)", median(ours) / median(bare), 1.10) +
           gapRows("open " + clip.name, gaps);
}

} // namespace

int main(int argc, char *argv[])
{
    require(argc == 2, "usage: bench_open FOLDER");
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    return runWithApplication(argc, argv, [&folder] {
        LiveWindow window;
        int broken = 0;
        for (const Clip &clip : {Clip{"360p, 10 s", u"360p.mp4"_s, 9}, Clip{"1080p, 20 s", u"1080p.mp4"_s, 7},
                                 Clip{"4K, 10 s", u"4k.mp4"_s, 3}})
            broken += benchOpening(window, clip, folder);
        return broken;
    });
}
