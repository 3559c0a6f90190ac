#include "jobs/resize_arguments.h"

#include "platform/debug_description.h"
#include "platform/printing.h"

namespace tessaly {

using namespace Qt::StringLiterals;

QStringList buildResizeArguments(const FileProbe &probe, const QString &inputPath, const QString &outputPath,
                                 qint64 width, qint64 height)
{
    QStringList arguments{u"-i"_s,
                          inputPath,
                          u"-sn"_s,
                          u"-dn"_s, // no subtitles, no data
                          u"-map_chapters"_s,
                          u"-1"_s,
                          u"-map_metadata"_s,
                          u"-1"_s,
                          u"-pix_fmt"_s,
                          u"yuv420p"_s,
                          u"-avoid_negative_ts"_s,
                          u"1"_s};
    if (probe.hasAudioTrack && probe.hasAudioTrackWhichHasMoreThanTwoChannels)
        arguments << u"-ac"_s << u"2"_s;
    const QString scale = u"scale="_s + QString::number(width) + u':' + QString::number(height);
    arguments << u"-vf"_s << scale + u",setsar=1:1"_s << u"-y"_s << outputPath;
    print(listDescription(arguments));
    return arguments;
}

} // namespace tessaly
