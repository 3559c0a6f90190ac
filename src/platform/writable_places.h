// Where a child may write.
#pragma once

#include <QByteArrayList>
#include <QString>

namespace tessaly {

// Folders, with all below them, and single files, as paths of the system. Links are followed when the child
// starts; what is not there by then is left out.
struct WritablePlaces
{
    QByteArrayList paths;
};

// What a child needs that is to write this file, whether it is there or not: the folder of the file that
// links lead to. A device or a pipe is a place by itself.
WritablePlaces placesForFile(const QString &path);

} // namespace tessaly
