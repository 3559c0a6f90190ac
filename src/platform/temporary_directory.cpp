#include "platform/temporary_directory.h"

#include "platform/own_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <memory>
#include <mutex>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace tessaly {

namespace {

constexpr auto copyPrefix = "copy-"_L1;
constexpr auto lockSuffix = ".lock"_L1;
// Below a device nothing can be made, by us or by somebody who would like us to write there.
constexpr auto nowhere = "/dev/null/tessaly/"_L1;

// The folder of this copy and the lock beside it; both go with the object.
class Workspace
{
public:
    explicit Workspace(const QString &userFolder)
        : m_root(userFolder),
          m_folder(makeFreshFolder(m_root + u'/' + copyPrefix)),
          m_lock(m_folder + lockSuffix)
    {
        m_lock.setStaleLockTime(0);
        if (!m_folder.isEmpty()) m_lock.tryLock(0);
    }

    ~Workspace()
    {
        removeFolder();
        m_lock.unlock();
        QDir().rmdir(m_root); // stays while other copies use it
    }

    Workspace(const Workspace &) = delete;
    Workspace &operator=(const Workspace &) = delete;

    QString path() const { return m_folder + u'/'; }

    // True when the folder is there, made again if need be.
    bool isUsable()
    {
        if (!m_lock.isLocked() || !isOwnFolder(m_root)) return false;
        if (!isOwnFolder(m_folder)) removeWhole(m_folder);
        return makeOwnFolder(m_folder);
    }

    void removeFolder()
    {
        if (!m_folder.isEmpty() && isOwnFolder(m_root)) removeWhole(m_folder);
    }

private:
    QString m_root;
    QString m_folder;
    QLockFile m_lock;
};

std::mutex access;
QString chosenRoot;
std::unique_ptr<Workspace> workspace;

// The converter takes a "%" in any part of its output path for a pattern.
bool canHoldWorkspaces(const QString &folder)
{
    const QFileInfo facts(folder);
    return folder.startsWith(u'/') && !folder.contains(u'%') && facts.isDir() && facts.isWritable();
}

QString baseFolder()
{
    const QString wished = chosenRoot.isEmpty() ? qEnvironmentVariable("TMPDIR") : chosenRoot;
    return canHoldWorkspaces(wished) ? QDir::cleanPath(wished) : u"/tmp"_s;
}

QString userFolder()
{
    return baseFolder() + "/tessaly-"_L1 + QString::number(geteuid());
}

// Where the usual name is taken by somebody else or by a link, a new name is as good.
QString makeUserFolder()
{
    return makeOwnFolder(userFolder()) ? userFolder() : makeFreshFolder(userFolder() + u'-');
}

std::unique_ptr<Workspace> makeWorkspace()
{
    const QString root = makeUserFolder();
    return root.isEmpty() ? nullptr : std::make_unique<Workspace>(root);
}

bool isReady()
{
    return workspace && workspace->isUsable();
}

} // namespace

QString NSTemporaryDirectory()
{
    const std::lock_guard guard(access);
    // The last copy to end may remove the user's folder just when this one begins: the second attempt works
    // then.
    for (int attempt = 0; attempt < 2 && !isReady(); ++attempt) {
        workspace.reset();
        workspace = makeWorkspace();
    }
    if (isReady()) return workspace->path();
    workspace.reset();
    return nowhere;
}

void removeTemporaryDirectory()
{
    const std::lock_guard guard(access);
    if (workspace) workspace->removeFolder();
}

void removeDeadSiblings()
{
    const std::lock_guard guard(access);
    const QString root = userFolder();
    if (!isOwnFolder(root)) return;
    const auto locks =
        QDir(root).entryInfoList({copyPrefix + u'*' + lockSuffix}, QDir::Files | QDir::NoSymLinks);
    for (const QFileInfo &file : locks) {
        QLockFile lock(file.filePath());
        lock.setStaleLockTime(0);
        if (lock.tryLock(0)) removeWhole(file.filePath().chopped(lockSuffix.size()));
    }
}

void removeOwnWorkspace()
{
    const std::lock_guard guard(access);
    workspace.reset();
}

void setTemporaryRoot(const QString &folder)
{
    const std::lock_guard guard(access);
    workspace.reset();
    chosenRoot = folder;
}

} // namespace tessaly
