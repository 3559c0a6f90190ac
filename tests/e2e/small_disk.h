// A disk with next to no room on it.
#pragma once

#include <QString>

#include <functional>

namespace tessaly::e2e {

// A memory file system of 256 KiB that one program mounts for itself; nobody else sees it, and it goes with
// the program. Where the system lets nobody mount (some containers), the device /dev/full stands for it,
// under the output's name; this is said on the test's output.
class SmallDisk
{
public:
    // The folder is made, to mount on.
    explicit SmallDisk(const QString &folder);

    bool isMounted() const { return m_isMounted; }
    // For the program's options.
    std::function<void()> mounting() const;
    // The same with a disk on which only so many bytes are free. Where nobody can mount, no file of the
    // program may grow beyond them.
    std::function<void()> mountingWith(qint64 freeBytes) const;
    // A file that does not fit.
    QString output() const;
    // Whether it holds nothing, as that program sees it.
    bool isEmptyFor(qint64 program) const;

private:
    QString m_folder;
    bool m_isMounted;
};

} // namespace tessaly::e2e
