#include "ui/window_memory.h"

#include <QScreen>
#include <QSettings>
#include <QStandardPaths>
#include <QWidget>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

const auto sizeKey = u"window/size"_s; // device-independent pixels
const auto maximizedKey = u"window/maximized"_s;

} // namespace

QString windowMemoryFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + u"/window.ini"_s;
}

void restoreWindowSize(QWidget *window, const QString &file)
{
    const QSettings settings(file, QSettings::IniFormat);
    const QSize size = settings.value(sizeKey).toSize();
    if (size.isValid()) window->resize(size.boundedTo(window->screen()->availableSize()));
    if (settings.value(maximizedKey).toBool()) window->setWindowState(Qt::WindowMaximized);
}

void rememberWindowSize(const QWidget *window, const QString &file)
{
    QSettings settings(file, QSettings::IniFormat);
    settings.setValue(sizeKey, window->isMaximized() ? window->normalGeometry().size() : window->size());
    settings.setValue(maximizedKey, window->isMaximized());
}

} // namespace tessaly
