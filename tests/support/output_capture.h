// What code under test writes to a channel of this process.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryFile>

#include <cstdio>
#include <functional>
#include <unistd.h>

namespace tessaly::test {

// What reaches a descriptor while something runs, from this process and from its children. Nothing is flushed
// afterwards: who prints has to do that.
inline QByteArray writtenTo(int descriptor, const std::function<void()> &run)
{
    QTemporaryFile file;
    if (!file.open()) return "no temporary file";
    std::fflush(nullptr); // what the test library itself had to say
    const int saved = ::dup(descriptor);
    ::dup2(file.handle(), descriptor);
    run();
    ::dup2(saved, descriptor);
    ::close(saved);
    QFile result(file.fileName());
    return result.open(QIODevice::ReadOnly) ? result.readAll() : QByteArray("unreadable");
}

} // namespace tessaly::test
