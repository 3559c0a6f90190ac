// Knows afterwards whether a job touched its target, and clears away what a job that came to nothing left
// there.
#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

namespace tessaly {

class OutputGuard
{
public:
    // Looks at both places now; to be made before the job starts.
    OutputGuard(const QString &outputPath, const QString &inputPath);

    // Whether a file stands at the target that was not there before, or not with this size, time and inode.
    bool wasTouched() const;

    // Removes the file that the job created or emptied. What it never touched stays, and so does everything
    // that is no ordinary file. A symbolic link at the target stays, the file that it leads to is the one
    // that goes. The input is never removed, wherever it was moved to meanwhile. False when something that
    // the job left could not be removed.
    bool removeIfTouched() const;

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
    enum class Links { follow, stay };
    static State stateOf(const QByteArray &path, Links links);

    QByteArray m_outputPath;
    QByteArray m_inputPath;
    State m_place;  // what stands at the path, perhaps a link
    State m_target; // what it leads to
    State m_input;
};

} // namespace tessaly
