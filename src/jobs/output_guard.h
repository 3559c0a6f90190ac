// Knows what a job wrote at its target, and clears that away, and nothing else, when the job came to nothing.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <utility>

#include <sys/stat.h>

namespace tessaly {

// On one thread at a time.
class OutputGuard
{
public:
    // Looks at both places now; to be made right before the job starts. A symbolic link at the target is
    // followed: the file it leads to is what the job writes. The folder of that file is held, so that it is
    // found again when somebody renames it meanwhile.
    OutputGuard(const QString &outputPath, const QString &inputPath);
    ~OutputGuard();
    OutputGuard(const OutputGuard &) = delete;
    OutputGuard &operator=(const OutputGuard &) = delete;

    // Notes which file the process, or one that it started, holds open for writing at the target; to be
    // called while it runs until one has been seen. Linux only, nothing is seen elsewhere.
    void look(qint64 process);

    enum class Target {
        untouched, // as it was before, or still not there
        written,   // by the job
        replaced,  // what the job wrote is gone from there, or something else stands in its place
    };
    // A job that was seen writing is known by its file (device and inode). Otherwise the target counts as
    // written when it is not the file that was there before, or not of its size and time of change. Times
    // without a fraction may be those of a disk that keeps whole seconds and prove nothing: then a job that
    // ended well is believed.
    Target target(bool jobEndedWell) const;

    // Removes the file that the job created or emptied. What it never touched stays, and so does what
    // somebody else put there, and everything that is no ordinary file. A symbolic link at the target stays,
    // the file that it leads to is the one that goes. The input is never removed, wherever it was moved to
    // meanwhile. False when something that the job left could not be removed.
    [[nodiscard]] bool removeWhatWasWritten() const;

private:
    struct State
    {
        bool exists = false;
        dev_t device = 0;
        ino_t inode = 0;
        mode_t mode = 0;
        off_t size = 0; // bytes
        timespec modified = {};

        bool isSameFile(const State &other) const;
        bool operator==(const State &other) const;
    };
    using File = std::pair<dev_t, ino_t>;

    static State stateOf(const struct stat &found);
    static State stateOf(const QByteArray &path);
    State targetNow() const;
    std::optional<File> fileHeldBy(qint64 process) const;

    QByteArray m_inputPath;
    int m_folder = -1; // of the file that is written
    QByteArray m_name; // in that folder
    State m_before;
    State m_input;
    std::optional<File> m_written;
};

} // namespace tessaly
