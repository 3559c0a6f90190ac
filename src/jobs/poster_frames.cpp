#include "jobs/poster_frames.h"

#include "platform/number_text.h"
#include "platform/temporary_directory.h"

namespace tessaly {

using namespace Qt::StringLiterals;

QString posterFrameFolder()
{
    return NSTemporaryDirectory() + "/Images"_L1;
}

QString posterFramePath(int n)
{
    return posterFrameFolder() + "/out"_L1 + QString::number(n) + ".jpg"_L1;
}

QString posterPosition(int n, double duration)
{
    const double step = duration / 12.0;
    return plainDecimal(n * step);
}

QStringList posterFrameArguments(int n, double duration, const QString &inputPath)
{
    return {u"-v"_s,        u"quiet"_s, u"-ss"_s, posterPosition(n, duration), u"-i"_s, inputPath,
            u"-frames:v"_s, u"1"_s,     u"-y"_s,  posterFramePath(n)};
}

} // namespace tessaly
