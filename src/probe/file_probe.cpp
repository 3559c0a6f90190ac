#include "probe/file_probe.h"

#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/number_text.h"
#include "platform/paths.h"
#include "platform/printing.h"
#include "probe/file_facts.h"
#include "probe/metadata.h"
#include "probe/rotation_tags.h"
#include "probe/stream_facts.h"
#include "probe/track_records.h"

#include <QLocale>

#include <utility>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QStringList proberArguments(const QString &path)
{
    return {u"-v"_s,
            u"quiet"_s,
            u"-print_format"_s,
            u"json"_s,
            u"-show_format"_s,
            u"-show_streams"_s,
            u"-show_chapters"_s,
            u"-show_error"_s,
            path};
}

QString tooLongReport()
{
    return u"ffprobe reported more than %1 MiB about the file."_s.arg(reportSizeLimit / (1024LL * 1024));
}

QString tooManyStreams()
{
    return u"ffprobe reported more than %1 streams."_s.arg(
        QLocale(QLocale::English).toString(qulonglong{streamCountLimit}));
}

// The exit status of a prober that ended by itself is not looked at.
std::optional<QString> failureOf(const ProcessOutcome &outcome, std::chrono::milliseconds timeLimit)
{
    switch (outcome.end) {
    case ProcessOutcome::End::failedToStart:
        return outcome.failure;
    case ProcessOutcome::End::timedOut:
        return u"ffprobe did not end within %1 seconds."_s.arg(
            generalText(std::chrono::duration<double>(timeLimit).count()));
    case ProcessOutcome::End::tooMuchOutput:
        return tooLongReport();
    case ProcessOutcome::End::stopped:
        return u"ffprobe was stopped because the program is ending."_s;
    case ProcessOutcome::End::exited:
    case ProcessOutcome::End::signalled:
        break;
    }
    return std::nullopt;
}

} // namespace

FileProbe::FileProbe(const QString &path, std::chrono::milliseconds timeLimit)
{
    recordFile(path);
    if (const std::optional<QByteArray> report = runProber(path, timeLimit)) readReport(*report);
}

FileProbe FileProbe::fromReport(const QString &path, const QByteArray &report)
{
    FileProbe probe;
    probe.recordFile(path);
    probe.readReport(report);
    return probe;
}

void FileProbe::recordFile(const QString &path)
{
    fileSize = tessaly::fileSize(path);
    fileSizeHuman = tessaly::fileSizeHuman(path);
    fileFullPath = path;
    fileFullURL = fileURL(path);
}

void FileProbe::recordFailure(const QString &sentence)
{
    proberFailure = sentence;
    print(sentence);
}

std::optional<QByteArray> FileProbe::runProber(const QString &path, std::chrono::milliseconds timeLimit)
{
    const std::optional<QString> prober = pathForResource(u"sniffer"_s);
    if (!prober) {
        recordFailure(u"ffprobe is missing among the resources of this program."_s);
        return std::nullopt;
    }
    const ProcessLimits limits{.time = timeLimit, .outputBytes = reportSizeLimit};
    const CapturedRun run = runCapturingOutput(*prober, proberArguments(path), limits);
    if (const std::optional<QString> failure = failureOf(run.outcome, timeLimit)) {
        recordFailure(*failure);
        return std::nullopt;
    }
    return run.output;
}

void FileProbe::readReport(const QByteArray &report)
{
    if (!parseReport(report)) return;
    hasErrors = !jsonDictionary["error"].error();
    if (!judgeValidity()) return;
    readStreams();
    readContainer();
    metadata = metadataOf(jsonDictionary["format"]["tags"]);
    recordTracks(*this, *fileFullPath);
}

bool FileProbe::parseReport(const QByteArray &report)
{
    if (report.size() > reportSizeLimit) {
        recordFailure(tooLongReport());
        return false;
    }
    JSON parsed;
    try {
        parsed = JSON::fromBytes({report.constData(), static_cast<std::size_t>(report.size())});
    } catch (const ParseError &error) {
        print(QString::fromStdString(error.description()));
        return false;
    }
    if (parsed["streams"].rawArray().size() > streamCountLimit) {
        recordFailure(tooManyStreams());
        return false;
    }
    restoreRotateTags(parsed);
    jsonDictionary = std::move(parsed);
    return true;
}

bool FileProbe::judgeValidity()
{
    const std::size_t streamCount = jsonDictionary["streams"].rawArray().size();
    if (streamCount == 0) return false;
    numberOfStreams = static_cast<qint64>(streamCount);
    // A text file is reported as a picture of its characters.
    isValidMediaFile = pathExtension(filePath(*fileFullURL)).toLower() != "txt"_L1;
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
