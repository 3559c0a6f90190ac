#include "platform/writable_places.h"

#include "platform/paths.h"

#include <QFile>

#include <sys/stat.h>

namespace tessaly {

WritablePlaces placesForFile(const QString &path)
{
    const QByteArray file = withoutLinks(QFile::encodeName(absolutePath(path)));
    struct stat found = {};
    const bool isThere = ::stat(file.constData(), &found) == 0;
    if (isThere && !S_ISREG(found.st_mode) && !S_ISDIR(found.st_mode)) return {{file}};
    return {{file.first(file.lastIndexOf('/') + 1)}};
}

} // namespace tessaly
