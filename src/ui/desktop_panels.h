// The file panels of the desktop: its toolkit's, or those of its portal.
#pragma once

#include "ui/file_panels.h"

namespace tessaly {

// Whether the desktop has panels that Qt can bring up.
bool hasDesktopPanels();

// As beginSheet() of the panel, only where the desktop has panels. Such a panel knows no name rule and asks
// about the path as it was typed; so where the rule gives another one, the question follows on the window.
void beginDesktopPanel(const OpenPanel &panel, QWidget *window, PanelCompletion completion);
void beginDesktopPanel(const SavePanel &panel, QWidget *window, PanelCompletion completion);

} // namespace tessaly
