// How a job came out, and how that is told to a person.
#pragma once

#include "jobs/known_failure.h"
#include "jobs/output_guard.h"
#include "platform/child_process.h"
#include "probe/file_probe.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace tessaly {

// Something that a person should know about a new video that was made all the same.
struct Remark
{
    QString sentence;
    bool isSerious = false; // the video is hardly what was wanted: to be told in an alert of its own
};

struct JobDone
{
    FileProbe output;
    std::vector<Remark> remarks;
    // The file was kept although nothing is known about it: why it could not be checked.
    std::optional<QString> uncheckedBecause;
};

// Nothing else is to be told, but what could not be cleared away.
struct JobCancelled
{
    std::optional<QString> leftover; // a sentence
};

struct JobFailed
{
    QString sentence; // why, in plain words, with what could not be cleared away
    QString details;  // the converter's words; empty when it said nothing
};

using JobEnd = std::variant<JobDone, JobCancelled, JobFailed>;

// The message above every failure's sentence.
inline QString resizeFailedMessage()
{
    return QStringLiteral("Video could not be resized.");
}

// What is known when the converter of a job that nobody cancelled has ended.
struct ConverterEnd
{
    ProcessOutcome outcome;
    QByteArray text;          // what it said
    qint64 readingErrors = 0; // ConverterText::readingErrors()
    OutputGuard::Target target = OutputGuard::Target::untouched;
    bool diskIsFull = false; // where the new video is written
};

// Nothing when the job went well: the converter ended with 0 and left a file with a video track of the size
// that was asked for. None of that alone proves anything. A file that could not be checked is no failure.
std::optional<JobFailed> failureOf(const ConverterEnd &end, const ResizeTarget &target,
                                   const FileProbe &output);

// What is to be said of a video that was made.
std::vector<Remark> remarksOn(const ConverterEnd &end, const FileProbe &input, const FileProbe &output);

} // namespace tessaly
