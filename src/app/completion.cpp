// The end of a job: the report, or why there is none.
#include "app/app_delegate.h"
#include "jobs/completion_text.h"
#include "platform/child_process.h"
#include "platform/paths.h"
#include "ui/alert.h"
#include "ui/desktop_notification.h"
#include "ui/desktop_services.h"

#include <QApplication>

namespace tessaly {

using namespace Qt::StringLiterals;

void AppDelegate::finishResize(const QString &outputPath)
{
    m_endIsUnseen = QApplication::activeWindow() == nullptr; // before our own sheets change that
    endResizingSheet();
    const FileProbe outputProbe(outputPath, probeLimit);
    if (runsAreEnding()) return; // the end of the program clears away what the job left
    showCompletionReport(outputProbe);
}

void AppDelegate::showCompletionReport(const FileProbe &outputProbe)
{
    if (!isProcessCancelledByUser) qFatal("A job has ended that was never started");
    showInputFacts();
    const JobEnd end = globalProcess->end(outputProbe);
    if (const auto *done = std::get_if<JobDone>(&end)) showDone(*done);
    if (const auto *failed = std::get_if<JobFailed>(&end)) showFailure(*failed);
    const auto *cancelled = std::get_if<JobCancelled>(&end);
    if (cancelled && cancelled->leftover) window->showStatus(*cancelled->leftover);
}

void AppDelegate::showDone(const JobDone &done)
{
    const FileProbe &outputProbe = done.output;
    const FileProbe finalProbe(*outputProbe.fileFullPath, probeLimit);
    QStringList sentences;
    for (const Remark &remark : done.remarks)
        sentences += remark.sentence;
    if (!sentences.isEmpty()) window->showStatus(sentences.join(u' '));

    Alert alert{.messageText = u"Video Resized Successfully!"_s,
                .informativeText = completionText(*globalFP, outputProbe, finalProbe),
                .style = Alert::Style::informational};
    if (done.uncheckedBecause) {
        alert.messageText = tr("The new video could not be checked.");
        alert.informativeText = *done.uncheckedBecause + u' ' + tr("The file was kept.");
        alert.style = Alert::Style::warning;
    }
    alert.addButtonWithTitle(u"OK"_s);
    alert.addButtonWithTitle(u"Show in Finder"_s);
    alert.addButtonWithTitle(u"Launch Video in QuickTime"_s);
    alert.beginSheet(window.get(), [this, done](int response) {
        handleCompletionButton(response, done.output);
        showRemarks(done.remarks);
    });
    notifyWhenUnseen(alert.messageText, lastPathComponent(*outputProbe.fileFullPath));
}

// What is serious is not left to the status line.
void AppDelegate::showRemarks(const std::vector<Remark> &remarks)
{
    QStringList serious;
    for (const Remark &remark : remarks) {
        if (remark.isSerious) serious += remark.sentence;
    }
    if (!serious.isEmpty()) showAlert(tr("The new video may not be what you expect."), serious.join(u'\n'));
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

void AppDelegate::showFailure(const JobFailed &failure)
{
    Alert alert{.messageText = resizeFailedMessage(),
                .informativeText = failure.sentence,
                .detailsText = failure.details};
    alert.addButtonWithTitle(u"OK"_s);
    alert.beginSheet(window.get());
    notifyWhenUnseen(alert.messageText, failure.sentence);
}

} // namespace tessaly
