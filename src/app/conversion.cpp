// The converter's run: the sheet that follows it, and how it is stopped.
#include "app/app_delegate.h"
#include "app/job_follower.h"
#include "platform/child_process.h"
#include "platform/main_queue.h"
#include "platform/printing.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThreadPool>

namespace tessaly {

using namespace Qt::StringLiterals;

// On a pool thread, which it blocks until the child has exited.
void AppDelegate::runConverter(ResizeJob &job, const QString &outputPath)
{
    asyncOnMainQueue(this, [this] { showResizingSheet(); });
    const auto follow = [this](void (JobFollower::*what)(double)) {
        return [this, what](double value) {
            asyncOnMainQueue(this, [this, what, value] { (*m_jobFollower.*what)(value); });
        };
    };
    job.convert(
        {.percent = follow(&JobFollower::showProgress), .converted = follow(&JobFollower::showConverted)});
    asyncOnMainQueue(this, [this, outputPath] { finishResize(outputPath); });
}

void AppDelegate::showResizingSheet()
{
    progressBar->setDoubleValue(0);
    progressTitle->setText(u"Resizing Video..."_s);
    progressCancel->setEnabled(true);
    progressCancel->show();
    progressWindow->beginSheet(window.get());
    m_jobFollower = std::make_unique<JobFollower>(*progressBar, *progressDetail);
}

void AppDelegate::closeBTNInsideProgressWindowClicked(QObject *)
{
    globalProcess->cancel(cancelLimit);
    isProcessCancelledByUser = true;
    progressCancel->setEnabled(false);
    if (m_jobFollower) m_jobFollower->tellCancelling(); // else the sheet is not up yet
}

void AppDelegate::endResizingSheet()
{
    m_jobFollower.reset();
    progressBar->setDoubleValue(0);
    progressCancel->hide();
    progressWindow->endSheet();
}

void AppDelegate::endSoon()
{
    endAllRuns();
    // Not quit(), which asks the windows: a sheet that follows work refuses to be closed.
    asyncOnMainQueue(this, [] { QCoreApplication::exit(); });
}

// Qt would ask the windows, too, and a session does not wait for a sheet.
bool AppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Quit) return QObject::eventFilter(watched, event);
    endSoon();
    return true;
}

// Blocks for as long as the converter takes to end, at most three seconds and a little.
void AppDelegate::stopJobForGood()
{
    if (!globalProcess) return;
    globalProcess->cancel(ResizeJob::programEndLimit);
    QThreadPool::globalInstance()->waitForDone();
    if (!globalProcess->isUnderWay()) return;
    const JobEnd end = globalProcess->end({});
    if (const auto *cancelled = std::get_if<JobCancelled>(&end); cancelled && cancelled->leftover)
        print(*cancelled->leftover);
}

} // namespace tessaly
