// What happens before there is a window.
#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

class QApplication;
class QProcessEnvironment;

namespace tessaly {

// Answers --help and --version, and tells in one sentence when a file was named (files are opened in the
// window). The exit status when the program is to end with that.
std::optional<int> answerCommandLine(int argc, char *argv[]);

// The application object, named. Where no window can be opened this says why in one sentence and ends the
// program with status 1. The arguments must live as long as the object; to be called once.
std::unique_ptr<QApplication> startApplication(int argc, char *argv[]);

// That sentence: no screen is named, or the one that is cannot be opened, or QT_QPA_PLATFORM asks for another
// kind, or none of the folders holds Qt's plugin for Wayland.
QString whyNoWindow(const QProcessEnvironment &environment, const QStringList &pluginFolders);

} // namespace tessaly
