#include "ui/file_panels.h"

#include "ui/desktop_panels.h"
#include "ui/own_panels.h"

#include <QDir>
#include <QFileInfo>

namespace tessaly {

using namespace Qt::StringLiterals;

void OpenPanel::beginSheet(QWidget *window, PanelCompletion completion) const
{
    if (hasDesktopPanels())
        beginDesktopPanel(*this, window, std::move(completion));
    else
        beginOwnPanel(*this, window, std::move(completion));
}

void SavePanel::beginSheet(QWidget *window, PanelCompletion completion) const
{
    if (hasDesktopPanels())
        beginDesktopPanel(*this, window, std::move(completion));
    else
        beginOwnPanel(*this, window, std::move(completion));
}

QString SavePanel::nameFilter() const
{
    return u"%1 (*.%2)"_s.arg(requiredFileType.toUpper(), requiredFileType);
}

QString panelFolder(const QString &directory)
{
    return !directory.isEmpty() && QFileInfo(directory).isDir() ? directory : QDir::homePath();
}

} // namespace tessaly
