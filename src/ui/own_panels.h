// The panels that Qt draws, for where the desktop has none of its own.
#pragma once

#include "ui/file_panels.h"

namespace tessaly {

// As beginSheet() of the panel.
void beginOwnPanel(const OpenPanel &panel, QWidget *window, PanelCompletion completion);
void beginOwnPanel(const SavePanel &panel, QWidget *window, PanelCompletion completion);

} // namespace tessaly
