// How far a resize has come, for people on standard error, for programs on standard output.
#pragma once

#include "jobs/progress.h"

#include <functional>

namespace tessaly {

enum class ProgressStyle {
    none,
    lines,  // one line for every tenth or every minute of the film, for logs
    bar,    // one line that is written over, for terminals
    objects // JSON on standard output, for every percent or second of the film, for programs
};

// Objects when they are wanted. Otherwise a bar where standard error is a terminal that can write over a
// line, lines elsewhere, nothing when quiet.
ProgressStyle progressStyle(bool wantsObjects, bool quiet);

// What the progress is one of.
struct ProgressSubject
{
    QString place = {}; // in front of the text for people: "2 of 12: "
    QString input = {}; // the path in the objects
};

// All of it on one thread.
class ProgressDisplay
{
public:
    using Clock = std::function<RemainingTime::Time()>; // time since the job began

    // The job begins now.
    explicit ProgressDisplay(ProgressStyle style, const ProgressSubject &subject = {});
    ProgressDisplay(ProgressStyle style, const ProgressSubject &subject, Clock clock);

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
    void writeObject();
    void writeLine(const QString &text);

    ProgressStyle m_style;
    ProgressSubject m_subject;
    Clock m_clock;
    RemainingTime m_remaining;
    QString m_text;         // the last that RemainingTime told
    double m_percent = 0;   // which it names
    int m_tenth = 0;        // the last one that was written
    int m_minute = 0;       // of the film, likewise
    bool m_stalled = false; // likewise
    int m_wholePercent = -1;
    int m_second = -1; // of the film
};

} // namespace tessaly
