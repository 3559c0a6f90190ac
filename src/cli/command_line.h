// Reads the words of a tessaly-cli call.
#pragma once

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

// The size that was asked for. Neither side given: the scale counts.
struct SizeWish
{
    double percent = 100;         // above 0
    std::optional<qint64> width;  // pixels, at least 2
    std::optional<qint64> height; // pixels, at least 2
};

struct ResizeCommand
{
    NamedFile input;
    NamedFile output; // as named, perhaps without its extension
    SizeWish size;
    bool force = false; // an existing file may be replaced
    bool quiet = false; // no progress, no report
    bool verbose = false;
};

struct ShowText // --help, --version
{
    QString text;
};

struct WrongUsage
{
    QString reason; // one line
};

using Command = std::variant<InfoCommand, ResizeCommand, ShowText, WrongUsage>;

// The words as the system gave them, without the program's own name.
Command readCommandLine(const QByteArrayList &words);

} // namespace tessaly
