#include "jobs/output_guard.h"

#include "platform/paths.h"

#include <QFile>

#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

#ifdef O_PATH
constexpr int holdingOnly = O_PATH;
#else
constexpr int holdingOnly = O_RDONLY;
#endif

bool isOpenForWriting(const QString &process, const std::string &descriptor)
{
    QFile facts(u"/proc/"_s + process + u"/fdinfo/"_s + QString::fromStdString(descriptor));
    if (!facts.open(QIODevice::ReadOnly)) return false;
    for (const QByteArray &line : facts.readAll().split('\n')) {
        if (line.startsWith("flags:"))
            return (line.mid(6).trimmed().toInt(nullptr, 8) & O_ACCMODE) != O_RDONLY;
    }
    return false;
}

QList<QByteArray> childrenOf(const QString &process)
{
    QFile list(u"/proc/"_s + process + u"/task/"_s + process + u"/children"_s);
    return list.open(QIODevice::ReadOnly) ? list.readAll().simplified().split(' ') : QList<QByteArray>();
}

} // namespace

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

OutputGuard::State OutputGuard::stateOf(const struct stat &found)
{
    return {true, found.st_dev, found.st_ino, found.st_mode, found.st_size, found.st_mtim};
}

OutputGuard::State OutputGuard::stateOf(const QByteArray &path)
{
    struct stat found = {};
    return ::stat(path.constData(), &found) == 0 ? stateOf(found) : State();
}

OutputGuard::State OutputGuard::targetNow() const
{
    struct stat found = {};
    const int error = ::fstatat(m_folder, m_name.constData(), &found, AT_SYMLINK_NOFOLLOW);
    return error ? State() : stateOf(found);
}

OutputGuard::OutputGuard(const QString &outputPath, const QString &inputPath)
    : m_inputPath(QFile::encodeName(inputPath)), m_input(stateOf(m_inputPath))
{
    const QByteArray path = withoutLinks(QFile::encodeName(outputPath));
    const qsizetype slash = path.lastIndexOf('/');
    m_folder = ::open(path.first(slash + 1).constData(), holdingOnly | O_DIRECTORY | O_CLOEXEC);
    m_name = path.sliced(slash + 1);
    m_before = targetNow();
}

OutputGuard::~OutputGuard()
{
    if (m_folder >= 0) ::close(m_folder);
}

void OutputGuard::look(qint64 process)
{
    if (!m_written) m_written = fileHeldBy(process);
}

std::optional<OutputGuard::File> OutputGuard::fileHeldBy(qint64 process) const
{
    const State target = targetNow();
    if (!target.exists) return std::nullopt;
    const QString number = QString::number(process);
    std::error_code error; // it may end at any moment
    std::filesystem::directory_iterator entry("/proc/" + std::to_string(process) + "/fd", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const State held = stateOf(QByteArray::fromStdString(entry->path().string()));
        if (held.isSameFile(target) && isOpenForWriting(number, entry->path().filename().string()))
            return File(held.device, held.inode);
    }
    for (const QByteArray &child : childrenOf(number)) {
        if (child.isEmpty()) continue;
        if (const std::optional<File> held = fileHeldBy(child.toLongLong())) return held;
    }
    return std::nullopt;
}

OutputGuard::Target OutputGuard::target(bool jobEndedWell) const
{
    const State now = targetNow();
    if (m_written)
        return now.exists && File(now.device, now.inode) == *m_written ? Target::written : Target::replaced;
    if (now != m_before) return now.exists ? Target::written : Target::untouched;
    const bool timesProveNothing = now.exists && now.modified.tv_nsec == 0;
    return jobEndedWell && timesProveNothing ? Target::written : Target::untouched;
}

bool OutputGuard::removeWhatWasWritten() const
{
    const State now = targetNow();
    if (target(false) != Target::written || !S_ISREG(now.mode)) return true;
    if (now.isSameFile(m_input) || now.isSameFile(stateOf(m_inputPath))) return true;
    return ::unlinkat(m_folder, m_name.constData(), 0) == 0;
}

} // namespace tessaly
