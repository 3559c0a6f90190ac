// From the save command to the converter's argument list.
#include "app/app_delegate.h"
#include "jobs/output_name.h"
#include "jobs/resize_arguments.h"
#include "jobs/resize_job.h"
#include "platform/main_queue.h"
#include "platform/paths.h"
#include "ui/alert.h"
#include "ui/file_panels.h"

#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

void AppDelegate::saveMenuBTNClicked(QObject *)
{
    showSavePanel();
}

void AppDelegate::saveBTNClicked(QObject *)
{
    showSavePanel();
}

void AppDelegate::showSavePanel()
{
    if (isBusy()) return;
    widthTF->commitEdit();
    heightTF->commitEdit();

    m_panelIsUp = true;
    const SavePanel panel{.title = tr("Save Resized Video"),
                          .directory = QFileInfo(globalFP->fileFullPath.value_or(QString())).path(),
                          .nameFieldStringValue = u"Resized"_s,
                          .requiredFileType = u"mp4"_s,
                          .nameRule = withMp4Extension};
    panel.beginSheet(window.get(), [this](int response, const QString &path) {
        m_panelIsUp = false;
        saveResponse(response, path);
    });
}

void AppDelegate::saveResponse(int response, const QString &outputPath)
{
    if (response != panelResponseOK || outputPath.isEmpty()) return;
    if (!globalFP) qFatal("A save was answered while no file is open");
    if (!globalFP->fileFullPath) return;
    if (isTheInput(outputPath)) {
        const Alert alert{.messageText = u"Input file name is same as the output file name!"_s,
                          .informativeText = u"Please specify a different file to save."_s,
                          .style = Alert::Style::informational};
        alert.beginSheet(window.get());
        return;
    }
    const QStringList arguments = buildResizeArguments(*globalFP, *globalFP->fileFullPath, outputPath,
                                                       widthTF->integerValue(), heightTF->integerValue());
    startResize(outputPath, arguments);
}

// The converter would destroy its input without a word when it is named by another path.
bool AppDelegate::isTheInput(const QString &outputPath) const
{
    return *globalFP->fileFullPath == outputPath || isSameFile(*globalFP->fileFullPath, outputPath);
}

void AppDelegate::startResize(const QString &outputPath, const QStringList &arguments)
{
    isProcessCancelledByUser = false;
    const ResizeTarget target{
        .path = outputPath, .width = widthTF->integerValue(), .height = heightTF->integerValue()};
    // Known before the child runs, so that a cancel reaches it at any time.
    globalProcess = std::make_shared<ResizeJob>(globalFP, target, arguments);
    asyncOnGlobalQueue([this, job = globalProcess, outputPath] { runConverter(*job, outputPath); });
}

} // namespace tessaly
