// What tessaly-cli says of the ends of a resize's files: to people, and to programs when they ask for it.
#pragma once

#include "cli/exit_codes.h"
#include "cli/resize_file.h"

namespace tessaly {

// One call a file, in their order, then summary(). Complaints go to standard error, the report to standard
// output, and where the command wants JSON there, also the report to standard error.
class ResizeReport
{
public:
    // The command outlives this object.
    ResizeReport(const ResizeCommand &command, bool isOfMany);

    void tellMade(const NamedFile &folder);
    void tell(const ResizeFile &file, const FileEnd &end);
    void summary(); // only of many
    // Instead of both: why nothing is begun. Each file has failed of it.
    void refuse(const std::vector<ResizeFile> &files, const QStringList &sentences);

    ExitCode exitCode() const;

private:
    void tellOutcome(const ResizeFile &file, const JobDone &done, const FileEnd &end);
    void tellOutcome(const ResizeFile &file, const JobFailed &failed, const FileEnd &end);
    void tellOutcome(const ResizeFile &file, const JobCancelled &cancelled, const FileEnd &end);
    void tellOutcome(const ResizeFile &file, const Refused &refused, const FileEnd &end);
    void tellOutcome(const ResizeFile &file, const Skipped &skipped, const FileEnd &end);
    void tellOutcome(const ResizeFile &file, const NotBegun &notBegun, const FileEnd &end);

    void complainOf(const ResizeFile &file, const QString &sentence) const;
    void report(const QString &text);
    void writeToOutput(const QByteArray &text);

    const ResizeCommand &m_command;
    bool m_isOfMany;
    bool m_wasRefused = false;
    bool m_outputIsWhole = true; // standard output has taken everything
    int m_done = 0;
    int m_failed = 0;
    int m_cancelled = 0;
    int m_skipped = 0;
    int m_notBegun = 0;
};

} // namespace tessaly
