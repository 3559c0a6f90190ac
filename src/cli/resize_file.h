// One video of a resize, from its names to its end.
#pragma once

#include "cli/command_line.h"
#include "jobs/job_end.h"

#include <memory>

namespace tessaly {

struct ResizeFile
{
    NamedFile input;
    NamedFile output;          // as named, perhaps without its extension
    bool isFromFolder = false; // nobody named the file itself: what is no video is skipped
    QString place;             // "2 of 12: " in front of the progress; empty where there is only one
};

// Not accepted, before anything has run.
struct Refused
{
    QString sentence;
};

// A file of a folder that is no video.
struct Skipped
{
    QString sentence;
    QString details; // why the prober found none; empty when it did not say
};

// The program was told to end first.
struct NotBegun
{};

// How one file came out.
struct FileEnd
{
    std::variant<JobDone, JobFailed, JobCancelled, Refused, Skipped, NotBegun> outcome;
    std::shared_ptr<const FileProbe> input = nullptr; // nothing when the end came before its probe
    double seconds = 0;                               // that it took
};

// Runs all of it on the calling thread, with the progress that the command wants. The input is never touched;
// what a cancelled or failed run left behind is removed.
FileEnd resizeFile(const ResizeFile &file, const ResizeCommand &command);

// What is to be said of a video that was made all the same, as sentences; nothing of one that was not made.
QStringList remarksOf(const FileEnd &end);

// The file that is written.
QString outputPath(const ResizeFile &file);

// Why a file is left out; nothing for a video, and for a file that was named itself. In a folder a single
// picture counts as no video. Not left out are a file that is called a video but cannot be read as one, which
// may be a damaged one, and a video that cannot be resized.
std::optional<Skipped> skipOf(const ResizeFile &file, const FileProbe &probe);

} // namespace tessaly
