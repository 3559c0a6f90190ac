// The one controller: it owns no control, but every command and every control of the window lands here.
#pragma once

#include "jobs/poster_frames.h"
#include "jobs/resize_job.h"
#include "platform/notification_center.h"
#include "probe/file_probe.h"
#include "probe/refusal.h"
#include "ui/attention.h"
#include "ui/image_drop_view.h"
#include "ui/main_window.h"
#include "ui/number_field.h"
#include "ui/outlet.h"
#include "ui/progress_bar.h"
#include "ui/progress_sheet.h"
#include "ui/slider.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>

#include <memory>
#include <optional>

namespace tessaly {

struct Alert;
struct DesktopNote;
class JobFollower;

// Shown by the help alert and by refusals.
inline constexpr QLatin1StringView supportAddress("support@tessaly.example");

// At any time at most one video is open, described by globalFP; opening another one replaces it. Everything
// runs on the main thread, but for the converter's run and what is said so here. Setting a control from here
// never fires its action.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    explicit AppDelegate(QObject *parent = nullptr);
    ~AppDelegate() override;

    // Connects the outlets and the actions to the form's controls. An outlet whose control the form lacks
    // stays unconnected; using it is a fatal error that names it. Alerts at the end of a job wait for a
    // person who looks elsewhere, if that can be told.
    void connectTo(MainWindow *form, bool attentionCanBeTold = desktopTellsWhoIsInFront());

    Outlet<MainWindow> window{"window"};
    Outlet<QAction> saveBTN{"saveBTN"};
    Outlet<QLabel> inputLBL{"inputLBL"};
    Outlet<QCheckBox> proportionalCBX{"proportionalCBX"};
    // Its text is the size mode: "Scale:", "Width:" or "Height:".
    Outlet<QLabel> sliderTitleLBL{"sliderTitleLBL"};
    Outlet<Slider> sizeSLDR{"sizeSLDR"};      // percent of the input
    Outlet<NumberField> widthTF{"widthTF"};   // pixels
    Outlet<NumberField> heightTF{"heightTF"}; // pixels
    // Placeholders until the first file is accepted; not 0, so that percentages stay finite.
    qint64 originalWidth = 854;  // pixels
    qint64 originalHeight = 480; // pixels
    double originalRatio = 1.0;  // width over height
    QString currentFocussedTF;   // the field that the slider drives: "None", "WidthTF", "HeightTF"
    std::shared_ptr<const FileProbe> globalFP;    // the file that was opened last, also a refused one
    std::shared_ptr<ResizeJob> globalProcess;     // the current or the last job with its converter
    std::optional<bool> isProcessCancelledByUser; // absent before the first job
    // How long the prober may take for a file, the converter for a still, and a cancelled converter to end,
    // until they are killed.
    std::chrono::milliseconds probeLimit = proberTimeLimit;
    std::chrono::milliseconds stillLimit = posterFrameTimeLimit;
    std::chrono::milliseconds cancelLimit = ResizeJob::cancelLimit;
    Outlet<ImageDropView> posterView{"posterView"};
    Outlet<Slider> posterPositionSlider{"posterPositionSlider"};
    Outlet<QAction> posterPositionSliderTBI{"posterPositionSliderTBI"};
    Outlet<ProgressSheet> progressWindow{"progressWindow"};
    Outlet<QLabel> progressTitle{"progressTitle"};
    Outlet<ProgressBar> progressBar{"progressBar"};
    Outlet<QPushButton> progressCancel{"progressCancel"};
    Outlet<QLabel> progressDetail{"progressDetail"}; // percent and remaining time in small type

public Q_SLOTS:
    void applicationDidFinishLaunching(QObject *sender);
    void applicationWillTerminate(QObject *sender);
    void widthTFClickedWithSender(QObject *sender);
    void heightTFClickedWithSender(QObject *sender);
    void proportionalCBXClicked(QObject *sender);
    void sizeSLDRChanged(QObject *sender);
    void widthTFChanged(QObject *sender);
    void heightTFChanged(QObject *sender);
    void openMenuBTNClicked(QObject *sender);
    void openToolBarBTNClicked(QObject *sender);
    void posterPositionSliderChanged(QObject *sender);
    void saveMenuBTNClicked(QObject *sender);
    void saveBTNClicked(QObject *sender);
    void closeBTNInsideProgressWindowClicked(QObject *sender);
    void helpBTNClickedWithSender(QObject *sender);

public:
    void fileAddedByDragAndDropWithNotification(const NotificationCenter::Notification &notification);

    // Launch and reset (app_delegate.cpp).
    void setUpInterface();
    void resetInterface();
    void removeTemporaryWorkspace();
    void showHelp();
    void showAbout(); // about.cpp
    // The details are shown when a person asks for them; empty: there are none.
    void showAlert(const QString &message, const QString &information, const QString &details = {});
    // Whether a job, a panel or a probe has not ended yet, so that nothing may be opened or saved.
    bool isBusy() const;

    // Opening (open_video.cpp).
    void showOpenPanel();
    void openVideo(const QUrl &url);
    void enableInterface();
    void showInputResolution();
    void showInputFacts(); // in the status line

    // Output size (output_size.cpp).
    void applyProportionalState();
    void applySliderValue();
    void updateFromWidth();
    void updateFromHeight();
    void selectWidthField();
    void selectHeightField();

    // Poster frames (poster_frames.cpp).
    void extractPosterFrames(double duration, const QString &inputPath);
    void showAnalyzingSheet();
    void endAnalyzingSheet();
    void showPosterFrame(int number);

    // Saving (save.cpp).
    void showSavePanel();
    void saveResponse(int response, const QString &outputPath);
    void startResize(const QString &outputPath, const QStringList &arguments);

    // The converter's run (conversion.cpp).
    void showResizingSheet();
    void endResizingSheet();

    // Its end (completion.cpp).
    void finishResize(const QString &outputPath);
    void showCompletionReport(const FileProbe &outputProbe);
    void handleCompletionButton(int response, const FileProbe &outputProbe);

    // Ends the program as soon as what runs has been stopped and cleaned up. Any thread.
    void endSoon();
    // Installed on the application, does so when that is told to quit, as at the end of a session.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectOutlets(MainWindow *form);
    void connectActions(MainWindow *form);
    void openCopiedFile();
    void tellCountOfDrop();
    std::optional<Refusal> analyze(const QString &path);
    void probeInput(const QString &path);
    void refuse(Refusal refusal);
    void connectSizeMenu(QMenu *menu); // size_menu.cpp
    void updateSizeMenu(bool enabled);
    void chooseHeight(int height);
    void choosePercent(int percent);
    void chooseSide(NumberField &field);
    void tellReading(const NumberField &field);
    void showPercent(double percent);
    bool isTheInput(const QString &outputPath) const;
    void runConverter(ResizeJob &job, const QString &outputPath);
    void stopJobForGood();
    void showDone(const JobDone &done);
    void showRemarks(const std::vector<Remark> &remarks);
    void showFailure(const JobFailed &failure);
    void reveal(const QString &path);
    void tellTheEnd(const Alert &alert, const DesktopNote &note, std::function<void(int response)> answer);

    bool m_panelIsUp = false;
    bool m_readingIsTold = false; // in the status line, instead of the facts
    QMenu *m_sizeMenu = nullptr;
    QList<QAction *> m_heightActions;
    QString m_lastVideoFolder;                  // where the open panel starts
    std::unique_ptr<JobFollower> m_jobFollower; // while the sheet of a job is up
    std::unique_ptr<Attention> m_attention;     // a person's, to the window
    bool m_endIsSeen = true;                    // it was there when the job ended
};

} // namespace tessaly
