// The stills of the open video: where in the video they lie, and where on disk.
#pragma once

#include <QString>
#include <QStringList>

#include <chrono>

namespace tessaly {

// Frames are numbered from 1.
constexpr int posterFrameCount = 11;

// A converter that hangs on one frame must not hold up the window for ever.
constexpr std::chrono::seconds posterFrameTimeLimit{30};

// In the temporary folder of this running copy; nothing is made there.
QString posterFrameFolder();

// Any number gives a path, also one that no frame has.
QString posterFramePath(int n);

// Where frame n lies in a video of this duration (seconds): n twelfths of it, as an argument for the
// converter.
QString posterPosition(int n, double duration);

// The converter's ten arguments that write frame n to its path.
QStringList posterFrameArguments(int n, double duration, const QString &inputPath);

} // namespace tessaly
