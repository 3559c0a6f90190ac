// What the program finds beside itself: the prober "sniffer", the converter "creator".
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace tessaly {

// The absolute path of a resource, looked up afresh at each call; nothing when no folder holds that name or
// only a link that leads nowhere. Whether the entry can be run is not judged here: starting it tells. Any
// thread.
std::optional<QString> pathForResource(const QString &name);

// Where to look from now on, first folder first. An empty list brings back the default: the folder of the
// running program, Resources beside it (bundle), lib/tessaly beside it (installed). Any thread.
void setResourceFolders(const QStringList &folders);

} // namespace tessaly
