// How far the converter has come, read from its standard error.
#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

namespace tessaly {

// Seconds of the film that the first time stamp of this chunk stands for. Nothing for a chunk that is not
// valid UTF-8, does not contain "time=", or holds no time stamp. Each chunk is judged alone: a time stamp cut
// in two is lost, and a header's "Duration:" in front of "time=" is taken for progress.
std::optional<double> secondsOfChunk(const QByteArray &chunk);

// The same in percent of the input's duration (seconds), neither rounded nor clamped; infinite or not a
// number for a duration of 0.
std::optional<double> percentOfChunk(const QByteArray &chunk, double duration);

// One figure that only grows, from readings of which some cannot be progress. A rise of more than the largest
// step is believed when the next reading does not fall behind it; a header's time stamp falls at that. In a
// fast job, whose readings lie further apart, twice the last rise is the measure.
class BelievedReading
{
public:
    explicit BelievedReading(double largestStep) : m_largestStep(largestStep) {}

    void add(double reading); // finite

    double value() const { return m_value; } // 0 at first

private:
    void riseTo(double value);

    double m_largestStep;
    double m_value = 0;
    double m_lastRise = 0;
    std::optional<double> m_jump; // waits to be confirmed
};

// The line below the bar: "42 % - about 1 minute left", in whole percent and a coarse time; "99 % -
// finishing"; "42 % - no progress for 12 s" from 10 seconds on; without a duration "00:03:12 converted". All
// times are those of one clock that never goes back, since the job began. One thread at a time.
//
// Percent that cannot be progress are left out: not finite, above 110 (a time stamp that is none), and what
// BelievedReading does not believe. Those from 100 to 110 (a sound track that outlasts the picture) count as
// 100.
//
// The text comes when it can be told, changes at most once a second, never loses percent, and its time
// follows the speed of about the last third of the job, or the last 20 seconds if that is more; it grows only
// when the old one is clearly wrong. It is told after 2 seconds and 2 percent, or after 20 seconds at any
// percent.
class RemainingTime
{
public:
    using Time = std::chrono::milliseconds;

    // Percent as from percentOfChunk().
    void addReading(double percent, Time elapsed);

    // Seconds as from secondsOfChunk(), for an input whose duration is not known.
    void addConverted(double seconds, Time elapsed);

    // To be called about once a second, also when no reading comes: tells of a stall.
    void tick(Time elapsed);

    // Empty as long as nothing can be told.
    const QString &text() const { return m_text; }

    // What is believed, which may be ahead of the text by a second; done() says it: "42 %", or
    // "00:03:12 converted".
    QString done() const;
    double percent() const { return m_percent.value(); }
    double converted() const { return m_converted.value(); } // seconds

    bool isStalled() const { return m_stalled; }

private:
    void follow(double rise, Time elapsed);
    std::optional<double> expectedEnd(double elapsed) const;
    bool canBeTold(Time elapsed) const;
    void tell(Time elapsed);
    QString textAt(Time elapsed);
    void settleOn(double seconds);

    BelievedReading m_percent{10};
    BelievedReading m_converted{60};
    Time m_rose{0}; // when the figure last rose
    bool m_stalled = false;
    double m_recentRise = 0;              // percent; what is long ago counts little
    double m_recentTime = 0;              // seconds that it took
    std::optional<double> m_end;          // expected, in seconds since the job began
    std::optional<double> m_shownSeconds; // the coarse time in the text
    Time m_changed{0};
    QString m_text;
};

} // namespace tessaly
