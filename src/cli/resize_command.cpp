#include "cli/resize_command.h"

#include "cli/output_size.h"
#include "cli/progress_display.h"
#include "cli/streams.h"
#include "jobs/completion_text.h"
#include "jobs/converter_run.h"
#include "jobs/failure_report.h"
#include "jobs/output_guard.h"
#include "jobs/output_name.h"
#include "jobs/resize_arguments.h"
#include "platform/child_process.h"
#include "platform/paths.h"
#include "platform/printing.h"
#include "platform/termination_watch.h"
#include "probe/refusal.h"

#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

ExitCode refuse(const QString &reason)
{
    complain(reason);
    return exitFailed;
}

ExitCode cancelled()
{
    complain(u"Cancelled."_s);
    return exitCancelled;
}

// Why the output cannot be written there, before anything has run.
std::optional<QString> faultOfTarget(const QString &input, const QString &output, bool force)
{
    if (input == output || isSameFile(input, output))
        return u"The output is the input itself: please name a different file."_s;
    const QFileInfo target(output);
    if (target.isDir()) return output + u" is a folder."_s;
    if ((target.exists() || target.isSymLink()) && !force)
        return output + u" exists already; --force replaces it."_s;
    return std::nullopt;
}

std::optional<QString> faultOfInput(const FileProbe &probe, const QString &path)
{
    if (probe.proberFailure) return path + u": "_s + *probe.proberFailure;
    const std::optional<Refusal> refusal = refusalOf(probe, path);
    if (refusal == Refusal::dvdFile) return path + u": .VOB files cannot be opened."_s;
    if (refusal) return path + u": this seems to be an unsupported file."_s;
    return std::nullopt;
}

// From a probed input to the end of the converter.
ExitCode convert(const ResizeCommand &command, const FileProbe &probe, const ResizeTarget &target,
                 ConverterRun &converter)
{
    const QString &input = *probe.fileFullPath;
    const QStringList arguments =
        buildResizeArguments(probe, input, target.path, target.width, target.height);
    const OutputGuard guard(target.path, input);
    ProgressDisplay progress(progressStyle(command.quiet));
    const RunOutcome outcome = converter.run(arguments, [&](const QByteArray &chunk) {
        if (const std::optional<double> percent = percentOfChunk(chunk, probe.duration))
            progress.show(*percent);
    });
    progress.finish();

    const FileProbe output(target.path);
    if (TerminationWatch::wasAsked()) { // before its end, or while the output was probed
        guard.removeIfTouched();
        return cancelled();
    }
    const JobEnd end{.outcome = outcome, .targetTouched = guard.wasTouched(), .target = target};
    if (const std::optional<Failure> failure = failureOfJob(end, output)) {
        guard.removeIfTouched();
        return refuse(resizeFailedMessage() + u' ' + failure->sentence);
    }
    if (const std::optional<QString> remark = shorterThanInput(probe.duration, output.duration))
        complain(*remark);
    if (!command.quiet) writeOutput(completionText(probe, output, output).toUtf8() + '\n');
    return exitDone;
}

} // namespace

ExitCode runResize(const ResizeCommand &command)
{
    setPrintTarget(command.verbose ? PrintTarget::standardError : PrintTarget::nowhere);
    for (const NamedFile &file : {command.input, command.output}) {
        if (!file.path) return refuse(file.shown + u": the name is not valid UTF-8, so it cannot be used."_s);
    }
    const QString &input = *command.input.path;
    const QString output = withMp4Extension(*command.output.path);
    if (const std::optional<QString> fault = faultOfTarget(input, output, command.force))
        return refuse(*fault);

    ConverterRun converter;
    const TerminationWatch watch([&converter] {
        converter.requestStop(ConverterRun::endPatience);
        endAllRuns();
    });
    const FileProbe probe(input);
    if (TerminationWatch::wasAsked()) return cancelled();
    if (const std::optional<QString> fault = faultOfInput(probe, input)) return refuse(*fault);
    const std::optional<FrameSize> size = outputSize(command.size, *probe.videoWidth, *probe.videoHeight);
    if (!size) return refuse(u"No usable size comes of that: each side needs at least 2 pixels."_s);
    return convert(command, probe, {.path = output, .width = size->width, .height = size->height}, converter);
}

} // namespace tessaly
