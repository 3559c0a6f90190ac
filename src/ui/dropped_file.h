// Which file a drag carries.
#pragma once

#include <QByteArray>

class QMimeData;

namespace tessaly {

// The decoded absolute path of the first file of this machine in the drag's "text/uri-list", in the bytes of
// the file system; empty when there is none. "localhost" and the machine's own name are this machine. Nothing
// is looked up on disk. A null drag carries nothing.
QByteArray firstLocalFileName(const QMimeData *drag);

// How many files of this machine the drag names, in the same way.
int localFileCount(const QMimeData *drag);

} // namespace tessaly
