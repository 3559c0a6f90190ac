// What a probe costs over the bare prober: both run in turns on the same file. Usage: bench_probe FILE
#include "bench/measure.h"
#include "bench/shell_loop.h"
#include "platform/bundle.h"
#include "probe/file_probe.h"

#include <QCoreApplication>

using namespace tessaly;
using namespace tessaly::bench;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    require(argc == 2, "usage: bench_probe FILE");
    const QString file = QString::fromLocal8Bit(argv[1]);
    const std::optional<QString> prober = pathForResource(QStringLiteral("sniffer"));
    require(prober.has_value(), "the prober is missing");
    // Its output read to the end: as little as any caller can do.
    std::vector<std::string> bare{prober->toStdString()};
    for (const QString &word : probeArguments(file))
        bare.push_back(word.toStdString());
    const Medians seconds = measureInTurns(
        41, [&file] { require(FileProbe(file).isValidMediaFile, "the file is no valid media file"); },
        [&bare] { require(!runChild(bare).output.empty(), "the prober gave nothing"); });
    return ratioRow("probe of one file", inMilliseconds(seconds.ours),
                    inMilliseconds(seconds.reference) + " (bare prober)", seconds.ours / seconds.reference,
                    1.05);
}
