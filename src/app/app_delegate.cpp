#include "app/app_delegate.h"

#include "app/job_follower.h"
#include "platform/busy_input.h"
#include "platform/temporary_directory.h"
#include "ui/alert.h"

namespace tessaly {

using namespace Qt::StringLiterals;

AppDelegate::AppDelegate(QObject *parent) : QObject(parent), currentFocussedTF(u"None"_s) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching(QObject *)
{
    setUpInterface();
}

void AppDelegate::applicationWillTerminate(QObject *)
{
    stopJobForGood();
    removeTemporaryWorkspace();
}

void AppDelegate::helpBTNClickedWithSender(QObject *)
{
    showHelp();
}

void AppDelegate::setUpInterface()
{
    connect(widthTF.get(), &NumberField::clickedPlainly, this,
            [this] { widthTFClickedWithSender(widthTF.get()); });
    connect(heightTF.get(), &NumberField::clickedPlainly, this,
            [this] { heightTFClickedWithSender(heightTF.get()); });
    NotificationCenter::defaultCenter().addObserver(
        this, u"FileAddedByDragAnadDrop"_s, [this](const NotificationCenter::Notification &notification) {
            fileAddedByDragAndDropWithNotification(notification);
        });
    removeTemporaryWorkspace();
    resetInterface();
}

void AppDelegate::resetInterface()
{
    inputLBL->setText(u"Input: 0 x 0"_s);
    proportionalCBX->setEnabled(false);
    proportionalCBX->setChecked(true);
    sizeSLDR->setEnabled(false);
    widthTF->setEnabled(false);
    heightTF->setEnabled(false);
    widthTF->setIntegerValue(0);
    heightTF->setIntegerValue(0);
    sliderTitleLBL->setText(u"Scale:"_s);
    currentFocussedTF = u"None"_s;
    window->tellSize();
    posterPositionSliderTBI->setEnabled(false);
    posterPositionSlider->setEnabled(false);
    posterPositionSlider->setIntegerValue(6);
    saveBTN->setEnabled(false);

    updateSizeMenu(false);
    window->showFileName({});
    window->showStatus({});
    if (posterView->image().isNull()) window->showPosterText(MainWindow::PosterText::howToOpen);
}

void AppDelegate::removeTemporaryWorkspace()
{
    removeTemporaryDirectory();
}

void AppDelegate::showHelp()
{
    showAlert(u"Questions?"_s, supportAddress);
}

void AppDelegate::showAlert(const QString &message, const QString &information, const QString &details)
{
    Alert alert{.messageText = message, .informativeText = information, .detailsText = details};
    alert.addButtonWithTitle(u"OK"_s);
    alert.beginSheet(window.get());
}

bool AppDelegate::isBusy() const
{
    const bool jobIsUnderWay = globalProcess && globalProcess->isUnderWay();
    return m_panelIsUp || jobIsUnderWay || m_attention->isAwaited() || BusyInput::isBusy() ||
           progressWindow->isVisible();
}

} // namespace tessaly
