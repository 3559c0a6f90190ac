// How much memory the test itself holds.
#pragma once

#include <QFile>

#include <unistd.h>

namespace tessaly::test {

// Megabytes (10^6 bytes) that are in memory now; -1 when the system does not tell.
inline qint64 residentMegabytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly)) return -1;
    return file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE) / 1'000'000;
}

} // namespace tessaly::test
