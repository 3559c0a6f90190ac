#include "e2e/small_disk.h"

#include "platform/small_stack.h"

#include <QDir>

#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessaly::e2e {

using namespace Qt::StringLiterals;

namespace {

TESSALY_ON_A_SMALL_STACK bool writeFile(const char *path, const QByteArray &text)
{
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool isWritten = file >= 0 && ::write(file, text.constData(), text.size()) == text.size();
    if (file >= 0) ::close(file);
    return isWritten;
}

// Root may have mounts of its own at once; others get there by a user namespace in which they stay who they
// are.
TESSALY_ON_A_SMALL_STACK bool takeOwnMounts()
{
    if (::unshare(CLONE_NEWNS) == 0) return true;
    const QByteArray user = QByteArray::number(::getuid());
    const QByteArray group = QByteArray::number(::getgid());
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && writeFile("/proc/self/setgroups", "deny") &&
           writeFile("/proc/self/uid_map", user + ' ' + user + " 1") &&
           writeFile("/proc/self/gid_map", group + ' ' + group + " 1");
}

TESSALY_ON_A_SMALL_STACK bool mountOn(const QByteArray &folder)
{
    return takeOwnMounts() && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", folder.constData(), "tmpfs", 0, "size=256k") == 0;
}

// Writes until nothing more fits, then gives some bytes back.
TESSALY_ON_A_SMALL_STACK bool fill(const QByteArray &path, qint64 freeBytes)
{
    static const char block[4096] = {};
    const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0) return false;
    off_t size = 0;
    for (ssize_t written = 0; (written = ::write(file, block, sizeof block)) > 0;)
        size += written;
    const bool isFilled = size > freeBytes && ::ftruncate(file, size - freeBytes) == 0;
    ::close(file);
    return isFilled;
}

bool canMountOn(const QByteArray &folder)
{
    const pid_t trial = ::fork();
    if (trial == 0) ::_exit(mountOn(folder) ? 0 : 1);
    int status = -1;
    return trial > 0 && ::waitpid(trial, &status, 0) == trial && status == 0;
}

} // namespace

SmallDisk::SmallDisk(const QString &folder) : m_folder(folder)
{
    QDir().mkpath(folder);
    m_isMounted = canMountOn(QFile::encodeName(folder));
    if (m_isMounted) return;
    qInfo("Nothing can be mounted here: /dev/full stands for the full disk.");
    QFile::link(u"/dev/full"_s, output());
}

std::function<void()> SmallDisk::mounting() const
{
    if (!m_isMounted) return {};
    return [folder = QFile::encodeName(m_folder)]() TESSALY_ON_A_SMALL_STACK {
        if (!mountOn(folder)) ::_exit(1);
    };
}

std::function<void()> SmallDisk::mountingWith(qint64 freeBytes) const
{
    const QByteArray folder = QFile::encodeName(m_folder);
    if (!m_isMounted) {
        return [freeBytes]() TESSALY_ON_A_SMALL_STACK {
            const rlimit limit{rlim_t(freeBytes), rlim_t(freeBytes)};
            ::signal(SIGXFSZ, SIG_IGN);
            if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(1);
        };
    }
    return [folder, filler = folder + "/filler", freeBytes]() TESSALY_ON_A_SMALL_STACK {
        if (!mountOn(folder) || !fill(filler, freeBytes)) ::_exit(1);
    };
}

QString SmallDisk::output() const
{
    return m_folder + u"/out.mp4"_s;
}

bool SmallDisk::isEmptyFor(qint64 program) const
{
    const QDir folder(u"/proc/%1/root"_s.arg(program) + m_folder);
    return folder.exists() && folder.isEmpty();
}

} // namespace tessaly::e2e
