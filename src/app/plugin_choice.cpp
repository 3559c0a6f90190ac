#include "app/plugin_choice.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// Qt tells it only when there is an application object.
QString programFolder()
{
    return QFileInfo(u"/proc/self/exe"_s).canonicalPath();
}

} // namespace

QString ownPluginFolder(const QString &programFolder)
{
    const QDir folder(programFolder);
    if (programFolder.isEmpty() || !folder.exists(u"qt.conf"_s)) return {};
    const QSettings paths(folder.filePath(u"qt.conf"_s), QSettings::IniFormat);
    const QDir prefix(folder.filePath(paths.value(u"Paths/Prefix"_s).toString()));
    return QDir::cleanPath(prefix.filePath(paths.value(u"Paths/Plugins"_s, u"plugins"_s).toString()));
}

bool isPortalsThemeAlone(const QString &pluginFolder)
{
    const QDir themes(pluginFolder + u"/platformthemes"_s);
    return themes.entryList({u"*.so"_s}, QDir::Files) == QStringList{u"libqxdgdesktopportal.so"_s};
}

// Qt would ask the environment otherwise: an empty path stands for none, and the last of several themes
// counts, so that a person can still name another one.
QByteArrayList choosePlugins()
{
    const QString own = ownPluginFolder(programFolder());
    if (own.isEmpty()) return {};
    QCoreApplication::setLibraryPaths({own});
    QByteArrayList arguments{"-platformpluginpath", QByteArray()};
    if (isPortalsThemeAlone(own)) arguments += {"-platformtheme", "xdgdesktopportal"};
    return arguments;
}

} // namespace tessaly
