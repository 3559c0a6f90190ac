// Reads the words of a tessaly-cli call.
#pragma once

#include "jobs/frame_size.h"

#include <QByteArrayList>
#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace tessaly {

// A file as it was named on the command line.
struct NamedFile
{
    QString shown;               // for messages; what is not UTF-8 is replaced
    std::optional<QString> path; // absolute; nothing when the name is not UTF-8 and so cannot be opened
};

struct InfoCommand
{
    std::vector<NamedFile> files; // at least one
    bool json = false;
    bool verbose = false; // diagnostics go to standard error instead of nowhere
};

struct ResizeCommand
{
    std::vector<NamedFile> inputs; // at least one; files and folders
    NamedFile output;              // as named, perhaps without its extension; a folder for many videos
    SizeWish size;                 // above 0 percent, sides of at least 2 pixels
    bool force = false;            // an existing file may be replaced
    bool quiet = false;            // no progress, no report
    bool verbose = false;
    bool json = false;     // standard output is for objects, all else goes to standard error
    bool progress = false; // objects also of the progress; only with json
};

struct ShowText // --help, --version
{
    QString text;
};

struct WrongUsage
{
    QString refusal; // one line
};

using Command = std::variant<InfoCommand, ResizeCommand, ShowText, WrongUsage>;

// The words as the system gave them, without the program's own name.
Command readCommandLine(const QByteArrayList &words);

} // namespace tessaly
