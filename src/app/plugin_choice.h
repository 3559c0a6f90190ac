// Which of Qt's plugins the program takes.
#pragma once

#include <QByteArrayList>
#include <QString>

namespace tessaly {

// The one folder of plugins for a program that brings its own Qt, as its qt.conf says; empty where none lies
// in its folder.
QString ownPluginFolder(const QString &programFolder);

// Whether this folder holds the theme plugin for the panels of the desktop's portal, and no other theme.
bool isPortalsThemeAlone(const QString &pluginFolder);

// To be called before there is an application object. Where the program brings its own Qt, it takes only that
// one's plugins; elsewhere everything is left to Qt. What Qt is to be told, as arguments, which no child
// inherits.
QByteArrayList choosePlugins();

} // namespace tessaly
