// Which of Qt's plugins the program takes.
#pragma once

#include <QByteArrayList>
#include <QString>
#include <QStringList>

namespace tessaly {

// The one folder of plugins for a program that brings its own Qt, as its qt.conf says; empty where none lies
// in its folder.
QString ownPluginFolder(const QString &programFolder);

// Whether these folders hold a theme plugin for the panels of the desktop's portal, and no other theme
// plugin.
bool isPortalsThemeAlone(const QStringList &pluginFolders);

// To be called before there is an application object: it takes only plugins of its own Qt where it brings
// one. What Qt is to be told on top of that, as arguments, which no child inherits.
QByteArrayList choosePlugins();

} // namespace tessaly
