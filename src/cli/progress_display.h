// How far a resize has come, on standard error.
#pragma once

#include "jobs/progress.h"

#include <functional>

namespace tessaly {

enum class ProgressStyle {
    none,
    lines, // one line for every tenth or every minute of the film, for logs
    bar    // one line that is written over, for terminals
};

// A bar where standard error is a terminal that can write over a line, lines elsewhere, nothing when quiet.
ProgressStyle progressStyle(bool quiet);

// All of it on one thread.
class ProgressDisplay
{
public:
    using Clock = std::function<RemainingTime::Time()>; // time since the job began

    explicit ProgressDisplay(ProgressStyle style); // the job begins now
    ProgressDisplay(ProgressStyle style, Clock clock);

    // Percent as from percentOfChunk(); shown is what RemainingTime believes.
    void show(double percent);

    // Seconds as from secondsOfChunk(), for an input whose duration is not known.
    void showConverted(double seconds);

    // To be called about once a second, also when no reading comes: tells of a stall.
    void tick();

    // Takes the bar away, so that what follows stands at the start of a line.
    void finish();

private:
    void draw();
    void drawBar();
    void writeLines();
    void writeLine(const QString &text);

    ProgressStyle m_style;
    Clock m_clock;
    RemainingTime m_remaining;
    QString m_text;         // the last that RemainingTime told
    double m_percent = 0;   // which it names
    int m_tenth = 0;        // the last one that was written
    int m_minute = 0;       // of the film, likewise
    bool m_stalled = false; // likewise
};

} // namespace tessaly
