// How a job came out, as it is told to a person.
#pragma once

#include "jobs/converter_run.h"
#include "jobs/failure_reason.h"
#include "probe/file_probe.h"

namespace tessaly {

// The message above every failure's sentence.
inline QString resizeFailedMessage()
{
    return QStringLiteral("Video could not be resized.");
}

struct Failure
{
    QString sentence; // why, in plain words
    QString details;  // the converter's last lines; empty when it said nothing
};

// What is known when a job has come to its end.
struct JobEnd
{
    RunOutcome outcome;
    bool targetTouched = false; // OutputGuard::wasTouched(), before anything was removed
    ResizeTarget target;
};

// Nothing when the job went well or was stopped. It went well when the converter ended with 0 and left a file
// with a video track; neither alone proves anything.
std::optional<Failure> failureOfJob(const JobEnd &end, const FileProbe &output);

// A sentence for when the new video is clearly shorter than the input said: by more than 2 percent and more
// than 1 second. Nothing when it is not, or when one of the durations (seconds) is not known.
std::optional<QString> shorterThanInput(double inputDuration, double outputDuration);

} // namespace tessaly
