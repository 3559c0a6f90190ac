#include "app/app_delegate.h"

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
    // Disabling an edited field that has the focus would commit its edit and so move the slider.
    widthTF->discardEdit();
    heightTF->discardEdit();

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
    posterPositionSliderTBI->setEnabled(false);
    posterPositionSlider->setEnabled(false);
    posterPositionSlider->setIntegerValue(6);
    saveBTN->setEnabled(false);

    window->showFileName({});
    window->showStatus({});
}

void AppDelegate::removeTemporaryWorkspace()
{
    removeTemporaryDirectory();
}

void AppDelegate::showHelp()
{
    showAlert(u"Questions?"_s, supportAddress);
}

void AppDelegate::showAlert(const QString &message, const QString &information)
{
    Alert alert{.messageText = message, .informativeText = information};
    alert.addButtonWithTitle(u"OK"_s);
    alert.beginSheet(window.get());
}

bool AppDelegate::isBusy() const
{
    return m_isOpening || m_panelIsUp || m_outputGuard || BusyInput::isBusy() || progressWindow->isVisible();
}

} // namespace tessaly
