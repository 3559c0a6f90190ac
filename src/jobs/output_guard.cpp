#include "jobs/output_guard.h"

#include <QFile>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace tessaly {

bool OutputGuard::State::isSameFile(const State &other) const
{
    return exists && other.exists && device == other.device && inode == other.inode;
}

bool OutputGuard::State::operator==(const State &other) const
{
    if (!exists || !other.exists) return exists == other.exists;
    return isSameFile(other) && size == other.size && modified.tv_sec == other.modified.tv_sec &&
           modified.tv_nsec == other.modified.tv_nsec;
}

OutputGuard::State OutputGuard::stateOf(const QByteArray &path, Links links)
{
    struct stat found = {};
    const int error =
        links == Links::follow ? ::stat(path.constData(), &found) : ::lstat(path.constData(), &found);
    if (error) return {};
    return {true, found.st_dev, found.st_ino, found.st_mode, found.st_size, found.st_mtim};
}

OutputGuard::OutputGuard(const QString &outputPath, const QString &inputPath)
    : m_outputPath(QFile::encodeName(outputPath)),
      m_inputPath(QFile::encodeName(inputPath)),
      m_place(stateOf(m_outputPath, Links::stay)),
      m_target(stateOf(m_outputPath, Links::follow)),
      m_input(stateOf(m_inputPath, Links::follow))
{}

bool OutputGuard::wasTouched() const
{
    const State now = stateOf(m_outputPath, Links::follow);
    return now.exists && now != m_target;
}

bool OutputGuard::removeIfTouched() const
{
    const State target = stateOf(m_outputPath, Links::follow);
    if (!wasTouched() || !S_ISREG(target.mode)) return true;
    if (target.isSameFile(m_input) || target.isSameFile(stateOf(m_inputPath, Links::follow))) return true;

    const State place = stateOf(m_outputPath, Links::stay);
    const bool isLink = S_ISLNK(place.mode);
    if (isLink && !place.isSameFile(m_place)) return true; // somebody else's doing
    const std::unique_ptr<char, decltype(&std::free)> path(
        isLink ? ::realpath(m_outputPath.constData(), nullptr) : ::strdup(m_outputPath.constData()),
        &std::free);
    return path && ::unlink(path.get()) == 0;
}

} // namespace tessaly
