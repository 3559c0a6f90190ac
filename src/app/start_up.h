// What happens before there is a window.
#pragma once

#include <memory>
#include <optional>

class QApplication;

namespace tessaly {

// Answers --help and --version, and tells in one sentence when a file was named (files are opened in the
// window). The exit status when the program is to end with that.
std::optional<int> answerCommandLine(int argc, char *argv[]);

// The application object, named. Without a screen this says so in one sentence and ends the program with
// status 1. argc must live as long as the object.
std::unique_ptr<QApplication> startApplication(int &argc, char *argv[]);

} // namespace tessaly
