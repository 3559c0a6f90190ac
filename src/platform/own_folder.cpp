#include "platform/own_folder.h"

#include <QByteArray>
#include <QFile>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessaly {

namespace {

constexpr mode_t ownerOnly = 0700;

// With a slash at its end a path would name what a link leads to.
QByteArray entryName(QString path)
{
    while (path.endsWith(u'/'))
        path.chop(1);
    return QFile::encodeName(path);
}

// A descriptor of the folder; -1 when it is a link, no folder, or not ours.
int openOwnFolder(int parent, const char *name)
{
    const int folder = openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) return -1;
    struct stat facts = {};
    if (fstat(folder, &facts) == 0 && facts.st_uid == geteuid()) return folder;
    close(folder);
    return -1;
}

void removeEntry(int parent, const char *name);

// Takes over the descriptor.
void emptyFolder(int folder)
{
    DIR *entries = fdopendir(folder);
    if (!entries) {
        close(folder);
        return;
    }
    while (const dirent *entry = readdir(entries))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            removeEntry(folder, entry->d_name);
    closedir(entries);
}

void removeEntry(int parent, const char *name)
{
    struct stat facts = {};
    if (fstatat(parent, name, &facts, AT_SYMLINK_NOFOLLOW) != 0) return;
    if (!S_ISDIR(facts.st_mode)) {
        unlinkat(parent, name, 0);
        return;
    }
    const int folder = openOwnFolder(parent, name);
    if (folder < 0) return;
    emptyFolder(folder);
    unlinkat(parent, name, AT_REMOVEDIR);
}

} // namespace

bool isOwnFolder(const QString &path)
{
    const int folder = openOwnFolder(AT_FDCWD, entryName(path).constData());
    if (folder >= 0) close(folder);
    return folder >= 0;
}

bool makeOwnFolder(const QString &path)
{
    const QByteArray name = entryName(path);
    mkdir(name.constData(), ownerOnly);
    const int folder = openOwnFolder(AT_FDCWD, name.constData());
    if (folder < 0) return false;
    const bool closed = fchmod(folder, ownerOnly) == 0;
    close(folder);
    return closed;
}

QString makeFreshFolder(const QString &pathBeginning)
{
    QByteArray name = QFile::encodeName(pathBeginning) + "XXXXXX";
    return mkdtemp(name.data()) ? QFile::decodeName(name) : QString();
}

void removeWhole(const QString &path)
{
    const QByteArray name = entryName(path);
    if (name.startsWith('/')) removeEntry(AT_FDCWD, name.constData());
}

} // namespace tessaly
