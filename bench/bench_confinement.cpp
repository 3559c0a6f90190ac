// What shutting a child in costs it: a program that does nothing, with and without, in turns.
#include "bench/measure.h"
#include "platform/child_process.h"
#include "platform/confinement.h"

#include <QCoreApplication>

using namespace tessaly;
using namespace tessaly::bench;
using namespace Qt::StringLiterals;

namespace {

constexpr int rounds = 400;

void runOnce(bool isConfined)
{
    qputenv("TESSALY_CONFINEMENT", isConfined ? "on" : "off");
    require(runToEnd(u"/bin/true"_s, {}, {}, placesForFile(u"/tmp/new.mp4"_s)).succeeded(),
            "/bin/true failed");
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    require(confinementInForce() != "none"_L1, "nothing confines here");
    const Medians seconds = measureInTurns(
        rounds, [] { runOnce(true); }, [] { runOnce(false); });
    return valueRow("confinement of one child", (seconds.ours - seconds.reference) * 1e3, 1, "ms");
}
