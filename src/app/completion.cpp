// The end of a job: the report, or the reason why there is none.
#include "app/app_delegate.h"
#include "jobs/completion_text.h"
#include "jobs/failure_report.h"
#include "platform/child_process.h"
#include "platform/paths.h"
#include "ui/alert.h"
#include "ui/desktop_notification.h"
#include "ui/desktop_services.h"

#include <QApplication>

namespace tessaly {

using namespace Qt::StringLiterals;

void AppDelegate::finishResize(const QString &outputPath, const RunOutcome &outcome)
{
    m_endIsUnseen = QApplication::activeWindow() == nullptr; // before our own sheets change that
    endResizingSheet();
    const FileProbe outputProbe(outputPath);
    if (runsAreEnding()) return; // the end of the program clears away what the job left
    showCompletionReport(outputProbe, outcome);
}

void AppDelegate::showCompletionReport(const FileProbe &outputProbe, const RunOutcome &outcome)
{
    if (!isProcessCancelledByUser) qFatal("A job has ended that was never started");
    const OutputGuard guard = *m_outputGuard;
    m_outputGuard.reset();
    if (*isProcessCancelledByUser) {
        guard.removeIfTouched();
        return;
    }
    const JobEnd end{.outcome = outcome, .targetTouched = guard.wasTouched(), .target = m_target};
    if (const std::optional<Failure> failure = failureOfJob(end, outputProbe)) {
        guard.removeIfTouched();
        showFailure(*failure);
        return;
    }
    const FileProbe finalProbe(*outputProbe.fileFullPath);
    showInputFacts();
    if (const auto shorter = shorterThanInput(globalFP->duration, finalProbe.duration))
        window->showStatus(*shorter);
    Alert alert{.messageText = u"Video Resized Successfully!"_s,
                .informativeText = completionText(*globalFP, outputProbe, finalProbe),
                .style = Alert::Style::informational};
    alert.addButtonWithTitle(u"OK"_s);
    alert.addButtonWithTitle(u"Show in Finder"_s);
    alert.addButtonWithTitle(u"Launch Video in QuickTime"_s);
    alert.beginSheet(window.get(),
                     [this, outputProbe](int response) { handleCompletionButton(response, outputProbe); });
    notifyWhenUnseen(alert.messageText, lastPathComponent(*outputProbe.fileFullPath));
}

void AppDelegate::notifyWhenUnseen(const QString &title, const QString &text) const
{
    if (m_endIsUnseen) notifyOnDesktop(title, text);
}

void AppDelegate::handleCompletionButton(int response, const FileProbe &outputProbe)
{
    const auto onFailure = [this](const QString &sentence) { showAlert(sentence, {}); };
    if (response == firstAlertResponse + 1) revealInFileManager(*outputProbe.fileFullPath, onFailure);
    if (response == firstAlertResponse + 2) playInVideoPlayer(*outputProbe.fileFullPath, onFailure);
}

void AppDelegate::showFailure(const Failure &failure)
{
    Alert alert{.messageText = resizeFailedMessage(),
                .informativeText = failure.sentence,
                .detailsText = failure.details};
    alert.addButtonWithTitle(u"OK"_s);
    alert.beginSheet(window.get());
    notifyWhenUnseen(alert.messageText, failure.sentence);
}

} // namespace tessaly
