#include "cli/resize_file.h"

#include "cli/output_path.h"
#include "cli/progress_display.h"
#include "jobs/output_name.h"
#include "jobs/resize_job.h"
#include "platform/termination_watch.h"
#include "probe/refusal.h"
#include "probe/stream_facts.h"

#include <QElapsedTimer>
#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

bool cannotBeOpened(const QString &path)
{
    const QFileInfo there(path);
    return !there.exists() || there.isDir() || !there.isReadable();
}

bool hasOnlyVideoWithoutRate(const FileProbe &probe)
{
    return probe.isValidMediaFile && isVideoWithoutRate(probe.jsonDictionary["streams"].arrayValue());
}

QString whyUnsupported(const FileProbe &probe)
{
    const QString details = refusalDetails(probe);
    return details.isEmpty() && hasOnlyVideoWithoutRate(probe) ? u"its video has no frame rate"_s : details;
}

std::optional<QString> inputRefusal(const FileProbe &probe, const QString &path)
{
    const std::optional<Refusal> refusal = refusalOf(probe, path);
    if (!refusal) return std::nullopt;
    if (*refusal == Refusal::dvdFile) return path + u": .VOB files cannot be opened."_s;
    const QString details = whyUnsupported(probe);
    if (!details.isEmpty() && (probe.proberFailure || cannotBeOpened(path))) return path + u": "_s + details;
    return path + u": this seems to be an unsupported file"_s +
           (details.isEmpty() ? u"."_s : u" ("_s + details + u")."_s);
}

// FFmpeg reads pictures by demuxers of their own: "image2", "png_pipe".
bool isPicture(const FileProbe &probe)
{
    const std::string format = probe.jsonDictionary["format"]["format_name"].stringValue();
    return format == "image2" || format.ends_with("_pipe");
}

// What can be known before anything has run.
std::optional<QString> namesRefusal(const ResizeFile &file, bool mayReplace)
{
    for (const NamedFile &name : {file.input, file.output}) {
        if (!name.path) return name.shown + u": the name is not valid UTF-8, so it cannot be used."_s;
    }
    if (auto refusal = nameRefusal(file.output)) return refusal;
    if (file.isFromFolder) return std::nullopt; // what is no video has no target
    return targetRefusal(*file.input.path, outputPath(file), mayReplace);
}

JobEnd run(ResizeJob &job, const ResizeFile &file, const ResizeCommand &command)
{
    ProgressDisplay progress(progressStyle(command.progress, command.quiet),
                             {.place = file.place, .input = *file.input.path});
    JobEnd end = job.run({.percent = [&progress](double percent) { progress.show(percent); },
                          .converted = [&progress](double seconds) { progress.showConverted(seconds); },
                          .tick = [&progress] { progress.tick(); }});
    progress.finish();
    return end;
}

FileEnd ended(const JobEnd &end, const std::shared_ptr<const FileProbe> &input)
{
    return std::visit([&input](const auto &outcome) { return FileEnd{outcome, input}; }, end);
}

FileEnd resize(const ResizeFile &file, const ResizeCommand &command)
{
    if (const auto refusal = namesRefusal(file, command.force)) return {Refused{*refusal}};
    const QString &input = *file.input.path;
    const QString output = outputPath(file);
    const auto probe = std::make_shared<const FileProbe>(input);
    if (TerminationWatch::wasAsked()) return {JobCancelled{}};
    if (const auto skip = skipOf(file, *probe)) return {*skip, probe};
    if (const auto refusal = inputRefusal(*probe, input)) return {Refused{*refusal}, probe};
    const auto size = sizeForWish(command.size, {*probe->videoWidth, *probe->videoHeight});
    if (!size) return {Refused{u"No size can be computed for this video."_s}, probe};
    if (const auto refusal = sizeRefusal(*size)) return {Refused{*refusal}, probe};
    // Somebody may have put a file there while the input was probed.
    if (const auto refusal = targetRefusal(input, output, command.force)) return {Refused{*refusal}, probe};

    ResizeJob job(probe, {.path = output, .width = size->width, .height = size->height});
    return ended(run(job, file, command), probe);
}

} // namespace

FileEnd resizeFile(const ResizeFile &file, const ResizeCommand &command)
{
    QElapsedTimer time;
    time.start();
    FileEnd end = resize(file, command);
    end.seconds = static_cast<double>(time.elapsed()) / 1000;
    return end;
}

QStringList remarksOf(const FileEnd &end)
{
    const auto *done = std::get_if<JobDone>(&end.outcome);
    if (!done) return {};
    QStringList sentences;
    for (const Remark &remark : done->remarks)
        sentences += remark.sentence;
    if (done->uncheckedBecause)
        sentences += u"The new video could not be checked. "_s + *done->uncheckedBecause;
    return sentences;
}

QString outputPath(const ResizeFile &file)
{
    return withMp4Extension(file.output.path.value_or(file.output.shown));
}

std::optional<Skipped> skipOf(const ResizeFile &file, const FileProbe &probe)
{
    if (!file.isFromFolder || probe.proberFailure || cannotBeOpened(*file.input.path)) return std::nullopt;
    if (isPicture(probe)) return Skipped{u"it is a picture."_s, {}};
    const bool mayBeDamaged = !probe.isValidMediaFile && isCalledVideo(*file.input.path);
    if (probe.hasVideoTrack || hasOnlyVideoWithoutRate(probe) || mayBeDamaged) return std::nullopt;
    return Skipped{u"no video was found in it."_s, refusalDetails(probe)};
}

} // namespace tessaly
