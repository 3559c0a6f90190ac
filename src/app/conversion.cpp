// The converter's run: the sheet that follows it, and how it is stopped.
#include "app/app_delegate.h"
#include "platform/child_process.h"
#include "platform/main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThreadPool>

namespace tessaly {

using namespace Qt::StringLiterals;

// On a pool thread, which it blocks until the child has exited.
void AppDelegate::runConverter(ConverterRun &converter, const QStringList &arguments,
                               const QString &outputPath, double duration)
{
    asyncOnMainQueue(this, [this] { showResizingSheet(); });
    const RunOutcome outcome = converter.run(arguments, [this, duration](const QByteArray &chunk) {
        const std::optional<double> percent = percentOfChunk(chunk, duration);
        if (percent) asyncOnMainQueue(this, [this, percent] { showProgress(*percent); });
    });
    asyncOnMainQueue(this, [this, outputPath, outcome] { finishResize(outputPath, outcome); });
}

void AppDelegate::showResizingSheet()
{
    progressBar->setDoubleValue(0);
    progressTitle->setText(u"Resizing Video..."_s);
    progressCancel->setEnabled(true);
    progressCancel->show();
    progressWindow->beginSheet(window.get());
    m_sleepInhibitor.emplace(u"A video is being resized"_s);
    m_launcherProgress.emplace().show(0);
}

void AppDelegate::showProgress(double percent)
{
    progressBar->setDoubleValue(percent);
    m_launcherProgress->show(percent);
    m_remainingTime.addReading(percent, std::chrono::milliseconds(m_jobTime.elapsed()));
    progressDetail->setText(m_remainingTime.text());
}

void AppDelegate::closeBTNInsideProgressWindowClicked(QObject *)
{
    globalProcess->requestStop(cancelPatience);
    isProcessCancelledByUser = true;
}

void AppDelegate::endResizingSheet()
{
    progressBar->setDoubleValue(0);
    progressDetail->clear();
    progressCancel->hide();
    progressWindow->endSheet();
    m_sleepInhibitor.reset();
    m_launcherProgress.reset();
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
    globalProcess->requestStop(ConverterRun::endPatience);
    QThreadPool::globalInstance()->waitForDone();
    if (m_outputGuard) m_outputGuard->removeIfTouched();
}

} // namespace tessaly
