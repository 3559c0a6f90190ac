// The end of a job: the report, or why there is none.
#include "app/app_delegate.h"
#include "jobs/completion_text.h"
#include "platform/child_process.h"
#include "platform/paths.h"
#include "ui/alert.h"
#include "ui/desktop_notification.h"
#include "ui/desktop_services.h"

namespace tessaly {

using namespace Qt::StringLiterals;

void AppDelegate::finishResize(const QString &outputPath)
{
    m_endIsSeen = m_attention->isThere(); // before our own sheets change that
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
    if (const auto *cancelled = std::get_if<JobCancelled>(&end))
        window->announce(cancelled->leftover.value_or(tr("Cancelled")));
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
    const QString path = *outputProbe.fileFullPath;
    const DesktopNote note{
        .title = alert.messageText,
        .text = lastPathComponent(path),
        .actions = {{tr("Show in Folder"), [this, path](const QString &) { reveal(path); }}}};
    tellTheEnd(alert, note, [this, done](int response) {
        handleCompletionButton(response, done.output);
        showRemarks(done.remarks);
    });
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

void AppDelegate::showFailure(const JobFailed &failure)
{
    Alert alert{.messageText = resizeFailedMessage(),
                .informativeText = failure.sentence,
                .detailsText = failure.details};
    alert.addButtonWithTitle(u"OK"_s);
    tellTheEnd(alert, {.title = alert.messageText, .text = failure.sentence}, {});
}

// Someone who is busy elsewhere is told by the desktop, and the alert waits: it would take the keyboard.
void AppDelegate::tellTheEnd(const Alert &alert, const DesktopNote &note,
                             std::function<void(int response)> answer)
{
    if (!m_endIsSeen) {
        DesktopNote clickable = note;
        clickable.whenClicked = [this](const QString &token) { m_attention->bringToFront(token); };
        notifyOnDesktop(this, clickable);
    }
    m_attention->whenThere(
        m_endIsSeen, [this, alert, answer = std::move(answer)] { alert.beginSheet(window.get(), answer); });
}

void AppDelegate::handleCompletionButton(int response, const FileProbe &outputProbe)
{
    if (response == firstAlertResponse + 1) reveal(*outputProbe.fileFullPath);
    if (response == firstAlertResponse + 2)
        playInVideoPlayer(*outputProbe.fileFullPath,
                          [this](const QString &sentence) { showAlert(sentence, {}); });
}

void AppDelegate::reveal(const QString &path)
{
    revealInFileManager(path, [this](const QString &sentence) { showAlert(sentence, {}); });
}

} // namespace tessaly
