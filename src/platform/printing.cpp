#include "platform/printing.h"

#include <cstdio>
#include <mutex>

namespace tessaly {

namespace {

std::mutex printing;
PrintTarget currentTarget = PrintTarget::standardOutput;

} // namespace

void setPrintTarget(PrintTarget target)
{
    const std::lock_guard lock(printing);
    currentTarget = target;
}

void print(const QString &text)
{
    const QByteArray line = text.toUtf8() + '\n';
    const std::lock_guard lock(printing);
    if (currentTarget == PrintTarget::nowhere) return;
    std::FILE *stream = currentTarget == PrintTarget::standardOutput ? stdout : stderr;
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stream);
    std::fflush(stream);
}

} // namespace tessaly
