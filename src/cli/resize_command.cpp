#include "cli/resize_command.h"

#include "cli/resize_plan.h"
#include "cli/resize_report.h"
#include "platform/printing.h"
#include "platform/termination_watch.h"

#include <QDir>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// Only the last folder of the path is made: a mistyped name must not grow a tree. The answer is why it is not
// there.
std::optional<QString> makeOutputFolder(const NamedFile &folder, ResizeReport &report)
{
    if (QDir(*folder.path).exists()) return std::nullopt;
    if (!QDir().mkdir(*folder.path)) return folder.shown + u": this folder could not be made."_s;
    report.tellMade(folder);
    return std::nullopt;
}

QStringList refusalsOf(const ResizePlan &plan, const ResizeCommand &command, ResizeReport &report)
{
    if (!plan.refusals.isEmpty() || !plan.isOfMany) return plan.refusals;
    const auto refusal = makeOutputFolder(command.output, report);
    return refusal ? QStringList{*refusal} : QStringList();
}

} // namespace

ExitCode runResize(const ResizeCommand &command)
{
    setPrintTarget(command.verbose ? PrintTarget::standardError : PrintTarget::nowhere);
    const TerminationWatch watch(endAllRuns);
    const ResizePlan plan = planOf(command);
    ResizeReport report(command, plan.isOfMany);
    if (!TerminationWatch::wasAsked()) {
        const QStringList refusals = refusalsOf(plan, command, report);
        if (!refusals.isEmpty()) {
            report.refuse(plan.files, refusals);
            return report.exitCode();
        }
    }
    for (const ResizeFile &file : plan.files) {
        const bool isTooLate = plan.isOfMany && TerminationWatch::wasAsked();
        report.tell(file, isTooLate ? FileEnd{NotBegun{}} : resizeFile(file, command));
    }
    report.summary();
    return report.exitCode();
}

} // namespace tessaly
