// What a person does with the program, in steps that several tests need. Each is false when a step of it did
// not come to pass.
#pragma once

#include "e2e/program.h"

namespace tessaly::e2e {

inline constexpr int workTime = 120'000; // milliseconds; for what runs the tools, on a busy machine

// Ctrl+O, the path, Return.
bool chooseVideo(Program &tessaly, const QString &path);
// The same, until the label shows the size: "640 x 360".
bool openVideo(Program &tessaly, const QString &path, const QString &size);

// Ctrl+S, the path in place of the suggested name, Return.
bool chooseOutput(Program &tessaly, const QString &path);
// The size slider by mouse and keyboard; whole tens of percent.
bool setPercent(Program &tessaly, int percent);
// A click into the field, the digits in place of its text; the edit stays open.
bool typeSize(Program &tessaly, const QString &field, const QString &digits);

// The success alert comes up; its labels.
QStringList waitForAlert(const Program &tessaly);

} // namespace tessaly::e2e
