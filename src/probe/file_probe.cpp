#include "probe/file_probe.h"

#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/paths.h"
#include "platform/printing.h"
#include "probe/file_facts.h"
#include "probe/metadata.h"
#include "probe/rotation_tags.h"
#include "probe/stream_facts.h"
#include "probe/track_records.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// A report is some kilobytes a stream; a prober that floods is stopped before the memory is gone.
constexpr qint64 reportSizeLimit = 256 * 1024 * 1024;

QByteArray runProber(const QString &path, std::chrono::milliseconds timeLimit)
{
    const std::optional<QString> prober = pathForResource(u"sniffer"_s);
    if (!prober) return {};
    const QStringList arguments{u"-v"_s,
                                u"quiet"_s,
                                u"-print_format"_s,
                                u"json"_s,
                                u"-show_format"_s,
                                u"-show_streams"_s,
                                u"-show_chapters"_s,
                                u"-show_error"_s,
                                path};
    const CapturedRun run =
        runCapturingOutput(*prober, arguments, {.time = timeLimit, .outputBytes = reportSizeLimit});
    // The exit status is not looked at; but what a prober said that had to be stopped is not a report.
    const auto end = run.outcome.end;
    const bool endedByItself = end == ProcessOutcome::End::exited || end == ProcessOutcome::End::signalled;
    return endedByItself ? run.output : QByteArray();
}

} // namespace

FileProbe::FileProbe(const QString &path, std::chrono::milliseconds timeLimit)
{
    recordFile(path);
    if (!readReport(runProber(path, timeLimit))) return;
    hasErrors = !jsonDictionary["error"].error();
    if (!judgeValidity(path)) return;
    readStreams();
    readContainer();
    metadata = metadataOf(jsonDictionary["format"]["tags"]);
    recordTracks(*this, path);
}

void FileProbe::recordFile(const QString &path)
{
    fileSize = tessaly::fileSize(path);
    fileSizeHuman = tessaly::fileSizeHuman(path);
    fileFullPath = path;
    fileFullURL = fileURL(path);
}

bool FileProbe::readReport(const QByteArray &output)
{
    try {
        jsonDictionary = JSON::fromBytes({output.constData(), static_cast<std::size_t>(output.size())});
    } catch (const ParseError &error) {
        print(QString::fromStdString(error.description()));
        return false;
    }
    restoreRotateTags(jsonDictionary);
    return true;
}

bool FileProbe::judgeValidity(const QString &path)
{
    const auto streamCount = static_cast<qint64>(jsonDictionary["streams"].arrayValue().size());
    if (streamCount == 0) return false;
    numberOfStreams = streamCount;
    // A text file is reported as a picture of its characters.
    isValidMediaFile = pathExtension(path).toLower() != "txt"_L1;
    return isValidMediaFile;
}

void FileProbe::readStreams()
{
    const std::vector<JSON> streams = jsonDictionary["streams"].arrayValue();
    isEncrypted = hasUnnamedVideoCodec(streams);
    if (const std::optional<MainVideo> video = mainVideo(streams)) {
        hasVideoTrack = true;
        videoWidth = video->width;
        videoHeight = video->height;
        tagRotateValue = video->rotate;
        videoRatio = static_cast<double>(video->width) / static_cast<double>(video->height);
    }
    hasAudioTrack = hasAudio(streams);
    hasAudioTrackWhichHasMoreThanTwoChannels = hasMoreThanTwoChannels(streams);
    hasSubtitleTrack = hasSubtitles(streams);
}

void FileProbe::readContainer()
{
    duration = jsonDictionary["format"]["duration"].doubleValue();
    bitRate = jsonDictionary["format"]["bit_rate"].intValue();
}

} // namespace tessaly
