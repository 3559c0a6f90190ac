#include "platform/bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <mutex>

using namespace Qt::StringLiterals;

namespace tessaly {

namespace {

std::mutex choosing;
QStringList chosenFolders;

QStringList defaultFolders()
{
    if (!QCoreApplication::instance()) return {};
    const QString program = QCoreApplication::applicationDirPath();
    return {program, program + "/../Resources"_L1, program + "/../lib/tessaly"_L1};
}

QStringList resourceFolders()
{
    const std::lock_guard lock(choosing);
    return chosenFolders.isEmpty() ? defaultFolders() : chosenFolders;
}

} // namespace

void setResourceFolders(const QStringList &folders)
{
    const std::lock_guard lock(choosing);
    chosenFolders = folders;
}

std::optional<QString> pathForResource(const QString &name)
{
    if (name.isEmpty()) return std::nullopt;
    for (const QString &folder : resourceFolders()) {
        const QString path = QDir::cleanPath(QDir(folder).absoluteFilePath(name));
        if (QFileInfo::exists(path)) return path;
    }
    return std::nullopt;
}

} // namespace tessaly
