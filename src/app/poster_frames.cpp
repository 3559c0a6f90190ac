// Eleven stills spread over the video, made when it is opened; afterwards the poster slider flips between
// them.
#include "jobs/poster_frames.h"
#include "app/app_delegate.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/own_folder.h"
#include "ui/still_image.h"

#include <QDir>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

bool thereAreStills()
{
    for (int number = 1; number <= posterFrameCount; ++number) {
        if (isStill(posterFramePath(number))) return true;
    }
    return false;
}

// A link in its place is removed, not followed.
void remakeFolder(const QString &path)
{
    removeWhole(path);
    QDir().mkdir(path);
}

} // namespace

void AppDelegate::extractPosterFrames(double duration, const QString &inputPath)
{
    showAnalyzingSheet();
    remakeFolder(posterFrameFolder());
    if (const std::optional<QString> creator = pathForResource(u"creator"_s)) {
        for (int number = 1; number <= posterFrameCount; ++number) {
            progressDetail->setText(tr("Still %1 of %2").arg(number).arg(posterFrameCount));
            const ProcessOutcome outcome =
                runToEnd(*creator, posterFrameArguments(number, duration, inputPath), {.time = stillLimit},
                         placesForFile(posterFramePath(number)));
            if (outcome.end == ProcessOutcome::End::stopped) break; // the program is ending
            showPosterFrame(number);
            progressBar->setDoubleValue(10.0 * (number - 1));
        }
    }
    endAnalyzingSheet();
}

void AppDelegate::showAnalyzingSheet()
{
    progressCancel->hide();
    progressBar->setDoubleValue(0);
    progressTitle->setText(u"Analyzing Video..."_s);
    if (!progressWindow->isVisible()) progressWindow->beginSheet(window.get());
}

void AppDelegate::endAnalyzingSheet()
{
    progressBar->setDoubleValue(0);
    progressDetail->clear();
    progressWindow->endSheet();
    progressCancel->show();
}

void AppDelegate::posterPositionSliderChanged(QObject *)
{
    showPosterFrame(posterPositionSlider->intValue());
}

void AppDelegate::showPosterFrame(int number)
{
    using enum MainWindow::PosterText;
    posterView->setImage(stillFromFile(posterFramePath(number)));
    const bool isMissing = posterView->image().isNull();
    window->showPosterText(!isMissing ? none : thereAreStills() ? otherStills : noPreview);
}

} // namespace tessaly
