#include "cli/resize_command.h"

#include "cli/output_path.h"
#include "cli/progress_display.h"
#include "cli/streams.h"
#include "cli/terminal_text.h"
#include "jobs/completion_text.h"
#include "jobs/output_name.h"
#include "jobs/resize_job.h"
#include "platform/printing.h"
#include "platform/termination_watch.h"
#include "probe/refusal.h"

#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

ExitCode refuse(const QString &sentence)
{
    complain(sentence);
    return exitFailed;
}

ExitCode cancelled(const JobCancelled &how)
{
    if (how.leftover) complain(*how.leftover);
    complain(u"Cancelled."_s);
    return exitCancelled;
}

bool cannotBeOpened(const QString &path)
{
    const QFileInfo there(path);
    return !there.exists() || there.isDir() || !there.isReadable();
}

std::optional<QString> inputRefusal(const FileProbe &probe, const QString &path)
{
    const std::optional<Refusal> refusal = refusalOf(probe, path);
    if (!refusal) return std::nullopt;
    if (*refusal == Refusal::dvdFile) return path + u": .VOB files cannot be opened."_s;
    const QString details = refusalDetails(probe);
    if (!details.isEmpty() && (probe.proberFailure || cannotBeOpened(path))) return path + u": "_s + details;
    return path + u": this seems to be an unsupported file"_s +
           (details.isEmpty() ? u"."_s : u" ("_s + details + u")."_s);
}

ExitCode failed(const JobFailed &failure, bool verbose)
{
    if (verbose && !failure.details.isEmpty()) print(failure.details);
    return refuse(resizeFailedMessage() + u' ' + failure.sentence);
}

ExitCode done(const JobDone &result, const ResizeCommand &command, const FileProbe &input)
{
    for (const Remark &remark : result.remarks)
        complain(remark.sentence);
    if (result.uncheckedBecause)
        complain(u"The new video could not be checked. "_s + *result.uncheckedBecause);
    if (command.quiet) return exitDone;
    const QString report =
        result.uncheckedBecause ? QString() : completionText(input, result.output, result.output) + u'\n';
    const QString written = terminalText(withMp4Extension(command.output.shown));
    return writeOutput((report + u"Wrote "_s + written + u'\n').toUtf8()) ? exitDone : exitFailed;
}

} // namespace

ExitCode runResize(const ResizeCommand &command)
{
    setPrintTarget(command.verbose ? PrintTarget::standardError : PrintTarget::nowhere);
    for (const NamedFile &file : {command.input, command.output}) {
        if (!file.path) return refuse(file.shown + u": the name is not valid UTF-8, so it cannot be used."_s);
    }
    if (const auto refusal = nameRefusal(command.output)) return refuse(*refusal);
    const QString &input = *command.input.path;
    const QString output = withMp4Extension(*command.output.path);
    if (const auto refusal = targetRefusal(input, output, command.force)) return refuse(*refusal);

    const TerminationWatch watch(endAllRuns);
    const auto probe = std::make_shared<const FileProbe>(input);
    if (TerminationWatch::wasAsked()) return cancelled({});
    if (const auto refusal = inputRefusal(*probe, input)) return refuse(*refusal);
    const auto size = sizeForWish(command.size, {*probe->videoWidth, *probe->videoHeight});
    if (!size) return refuse(u"No size can be computed for this video."_s);
    if (const auto refusal = sizeRefusal(*size)) return refuse(*refusal);
    // Somebody may have put a file there while the input was probed.
    if (const auto refusal = targetRefusal(input, output, command.force)) return refuse(*refusal);

    ResizeJob job(probe, {.path = output, .width = size->width, .height = size->height});
    ProgressDisplay progress(progressStyle(command.quiet));
    const JobEnd end = job.run({.percent = [&progress](double percent) { progress.show(percent); },
                                .converted = [&progress](double seconds) { progress.showConverted(seconds); },
                                .tick = [&progress] { progress.tick(); }});
    progress.finish();
    if (const auto *how = std::get_if<JobCancelled>(&end)) return cancelled(*how);
    if (const auto *failure = std::get_if<JobFailed>(&end)) return failed(*failure, command.verbose);
    return done(std::get<JobDone>(end), command, *probe);
}

} // namespace tessaly
