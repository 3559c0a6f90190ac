// How a video comes in, by the open panel or by a drop, and how the window shows it.
#include "app/app_delegate.h"
#include "platform/busy_input.h"
#include "platform/child_process.h"
#include "platform/paths.h"
#include "probe/facts_text.h"
#include "ui/alert.h"
#include "ui/file_panels.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QTimer>

#include <limits>

namespace tessaly {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

void AppDelegate::openMenuBTNClicked(QObject *)
{
    showOpenPanel();
}
void AppDelegate::openToolBarBTNClicked(QObject *)
{
    showOpenPanel();
}

void AppDelegate::showOpenPanel()
{
    if (isBusy()) return;
    m_panelIsUp = true;
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    const OpenPanel panel{.title = tr("Open Video"),
                          .directory = m_lastVideoFolder.isEmpty() ? videos : m_lastVideoFolder};
    panel.beginSheet(window.get(), [this](int response, const QString &path) {
        m_panelIsUp = false;
        if (response == panelResponseOK && !path.isEmpty()) openVideo(fileURL(path));
    });
}

void AppDelegate::fileAddedByDragAndDropWithNotification(const NotificationCenter::Notification &notification)
{
    const QUrl url = notification.userInfo.value(u"key"_s).toUrl();
    if (!url.isLocalFile()) qFatal("FileAddedByDragAnadDrop came without the URL of a file");
    answerAlerts(window.get());
    openVideo(url);
    tellCountOfDrop();
}

void AppDelegate::tellCountOfDrop()
{
    if (saveBTN->isEnabled() && posterView->fileCount() > 1)
        window->showStatus(
            tr("%1 - opened the first of %2").arg(factsText(*globalFP)).arg(posterView->fileCount()));
}

// What a file manager has copied goes the way of a drop.
void AppDelegate::openCopiedFile()
{
    posterView->takeFile(QGuiApplication::clipboard()->mimeData());
}

void AppDelegate::openVideo(const QUrl &url)
{
    resetInterface();
    const QString path = filePath(url);
    m_lastVideoFolder = QFileInfo(path).path();
    const std::optional<Refusal> refusal = analyze(path);
    if (runsAreEnding()) return;
    if (refusal) {
        refuse(*refusal);
        return;
    }
    enableInterface();
    showInputResolution();
    // What had the keyboard was the empty window's button, or has been disabled meanwhile.
    sizeSLDR->setFocus();
}

// What a person types or clicks meanwhile is thrown away before anything is there that could be meant: the
// controls and the alert that come afterwards answer as soon as they are seen.
std::optional<Refusal> AppDelegate::analyze(const QString &path)
{
    const BusyInput busy;
    probeInput(path);
    if (runsAreEnding()) return std::nullopt;
    const std::optional<Refusal> refusal = refusalOf(*globalFP, path);
    if (!refusal)
        extractPosterFrames(globalFP->duration, path);
    else if (progressWindow->isVisible())
        endAnalyzingSheet();
    return refusal;
}

// A slow disk, or a pipe that nobody writes, is not waited for in silence.
void AppDelegate::probeInput(const QString &path)
{
    QTimer slow;
    slow.setSingleShot(true);
    connect(&slow, &QTimer::timeout, this, [this, path] {
        showAnalyzingSheet();
        progressBar->setDoubleValue(std::numeric_limits<double>::infinity()); // nobody knows how far it is
        progressDetail->setText(lastPathComponent(path));
    });
    slow.start(300ms);
    globalFP = std::make_shared<const FileProbe>(path, probeLimit);
}

void AppDelegate::refuse(Refusal refusal)
{
    const QString details = refusalDetails(*globalFP);
    window->showStatus(details);
    posterView->setDimmed(true); // the picture that stays is not that of this file
    if (refusal == Refusal::dvdFile) {
        showAlert(u"Tessaly cannot open .VOB files."_s, u"Questions? : "_s + supportAddress, details);
        return;
    }
    showAlert(u"Seems to be an unsupported file.\nDoes the video play in a video player?"_s,
              u"Please try opening some other file or contact : "_s + supportAddress, details);
}

void AppDelegate::enableInterface()
{
    inputLBL->setText(u"Input: 0 x 0"_s);
    proportionalCBX->setEnabled(true);
    proportionalCBX->setChecked(true);
    sizeSLDR->setEnabled(true);
    widthTF->setEnabled(true);
    heightTF->setEnabled(true);
    sliderTitleLBL->setText(u"Scale:"_s);
    currentFocussedTF = u"None"_s;
    posterPositionSliderTBI->setEnabled(true);
    posterPositionSlider->setEnabled(true);
    posterPositionSlider->setIntegerValue(6);
    posterPositionSliderChanged(posterPositionSlider.get());
    saveBTN->setEnabled(false);
}

void AppDelegate::showInputResolution()
{
    originalWidth = *globalFP->videoWidth;
    originalHeight = *globalFP->videoHeight;
    originalRatio = static_cast<double>(originalWidth) / static_cast<double>(originalHeight);
    inputLBL->setText(u"Input: %1 x %2"_s.arg(originalWidth).arg(originalHeight));
    sizeSLDR->setIntegerValue(100);
    widthTF->setIntegerValue(originalWidth);
    heightTF->setIntegerValue(originalHeight);
    window->tellSize();
    saveBTN->setEnabled(true);

    updateSizeMenu(true);
    window->showFileName(*globalFP->fileFullPath);
    showInputFacts();
}

void AppDelegate::showInputFacts()
{
    window->showStatus(factsText(*globalFP));
}

} // namespace tessaly
