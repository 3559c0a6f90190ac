#include "app/app_delegate.h"

namespace tessaly {

using namespace Qt::StringLiterals;

void AppDelegate::connectTo(MainWindow *form, bool attentionCanBeTold)
{
    connectOutlets(form);
    connectActions(form);
    m_attention = std::make_unique<Attention>(form, attentionCanBeTold);
    posterView->setDropGuard([this] { return !isBusy(); });
}

void AppDelegate::connectOutlets(MainWindow *form)
{
    window.connectTo(form);
    saveBTN.connectFrom(form);
    inputLBL.connectFrom(form);
    proportionalCBX.connectFrom(form);
    sliderTitleLBL.connectFrom(form);
    sizeSLDR.connectFrom(form);
    widthTF.connectFrom(form);
    heightTF.connectFrom(form);
    posterView.connectFrom(form);
    posterPositionSlider.connectFrom(form);
    posterPositionSliderTBI.connectFrom(form);
    progressWindow.connectFrom(form);
    progressTitle.connectFrom(form);
    progressBar.connectFrom(form);
    progressCancel.connectFrom(form);
    progressDetail.connectFrom(form);
}

// The menu items and tool bar items of one command are one action, so they are enabled together.
void AppDelegate::connectActions(MainWindow *form)
{
    const auto action = [form](const char *name) {
        return form->findChild<QAction *>(QLatin1StringView(name));
    };
    QAction *open = action("openBTN");
    QAction *help = action("helpBTN");
    connect(open, &QAction::triggered, this, [this, open] { openToolBarBTNClicked(open); });
    connect(help, &QAction::triggered, this, [this, help] { helpBTNClickedWithSender(help); });
    connect(action("aboutBTN"), &QAction::triggered, this, &AppDelegate::showAbout);
    connect(action("pasteBTN"), &QAction::triggered, this, &AppDelegate::openCopiedFile);
    connectSizeMenu(form->findChild<QMenu *>("sizeMenu"_L1));
    connect(saveBTN.get(), &QAction::triggered, this, [this] { saveBTNClicked(saveBTN.get()); });

    connect(proportionalCBX.get(), &QCheckBox::clicked, this,
            [this] { proportionalCBXClicked(proportionalCBX.get()); });
    connect(sizeSLDR.get(), &Slider::changedByUser, this, [this] { sizeSLDRChanged(sizeSLDR.get()); });
    connect(widthTF.get(), &NumberField::committed, this, [this] { widthTFChanged(widthTF.get()); });
    connect(heightTF.get(), &NumberField::committed, this, [this] { heightTFChanged(heightTF.get()); });
    connect(posterView.get(), &ImageDropView::unreadableNameDropped, this, [this] {
        showAlert(tr("This file cannot be opened."),
                  tr("Its name is not valid UTF-8. Please rename it first."));
    });
    connect(posterPositionSlider.get(), &Slider::changedByUser, this,
            [this] { posterPositionSliderChanged(posterPositionSlider.get()); });
    connect(progressCancel.get(), &QPushButton::clicked, this,
            [this] { closeBTNInsideProgressWindowClicked(progressCancel.get()); });
}

} // namespace tessaly
