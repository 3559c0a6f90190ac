// How far a resize has come, on standard error.
#pragma once

#include "jobs/progress.h"

#include <QElapsedTimer>

namespace tessaly {

enum class ProgressStyle {
    none,
    lines, // one line for every tenth, for logs
    bar    // one line that is written over, for terminals
};

// A bar where standard error is a terminal, lines elsewhere, nothing when quiet.
ProgressStyle progressStyle(bool quiet);

class ProgressDisplay
{
public:
    explicit ProgressDisplay(ProgressStyle style);

    // Percent as from percentOfChunk(); readings that cannot be progress show nothing new.
    void show(double percent);

    // Takes the bar away, so that what follows stands at the start of a line.
    void finish();

private:
    void drawBar(double percent);
    void writeLine(double percent);

    ProgressStyle m_style;
    RemainingTime m_remaining;
    QElapsedTimer m_time;
    int m_tenth = 0; // the last one that was written
};

} // namespace tessaly
