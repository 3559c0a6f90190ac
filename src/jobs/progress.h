// How far the converter has come, read from its standard error.
#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

namespace tessaly {

// Percent of the input's duration (seconds) that the first time stamp of this chunk stands for, neither
// rounded nor clamped; infinite or not a number for a duration of 0. Nothing for a chunk that is not valid
// UTF-8, does not contain "time=", or holds no time stamp. Each chunk is judged alone: a time stamp cut in
// two is lost, and a header's "Duration:" in front of "time=" is taken for progress.
std::optional<double> percentOfChunk(const QByteArray &chunk, double duration);

// The line below the bar: "42 % - about 1 minute left", in whole percent and a coarse time.
//
// Readings that cannot be progress are left out: not finite, above 110 (a time stamp that is none),
// below what was believed before. A rise of more than 10 points at once is believed when the next reading
// does not fall behind it; a header's time stamp, which stands for 100 percent, falls at that. In a fast job,
// whose readings lie further apart, twice the last rise is the measure. Readings from 100 to 110 (a sound
// track that outlasts the picture) count as 100.
//
// The text comes when it can be told, changes at most once a second, never loses percent, and its time grows
// only when the old one is clearly wrong. It is told after 2 seconds and 2 percent, or after 20 seconds at
// any percent.
class RemainingTime
{
public:
    // percent as from percentOfChunk; elapsed since the job began, on a clock that never goes back.
    void addReading(double percent, std::chrono::milliseconds elapsed);

    // Empty as long as nothing can be told.
    const QString &text() const { return m_text; }

private:
    bool believe(double percent);
    void riseTo(double percent);
    std::optional<double> remainingSeconds(std::chrono::milliseconds elapsed) const;
    void settleOn(double seconds);

    double m_percent = 0; // believed
    double m_lastRise = 0;
    std::optional<double> m_jump;         // percent, waiting to be confirmed
    std::optional<double> m_shownSeconds; // the coarse time in the text
    std::chrono::milliseconds m_changed{0};
    QString m_text;
};

} // namespace tessaly
