#include "cli/streams.h"

#include "cli/terminal_text.h"

#include <fcntl.h>
#include <unistd.h>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

std::FILE *ownOutput = nullptr; // nullptr: still the one that children get, too

} // namespace

void keepOutputFromChildren()
{
    const int own = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (own < 0) return; // it was closed before the start
    ownOutput = ::fdopen(own, "w");
    if (ownOutput && ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) ::close(STDOUT_FILENO);
}

std::FILE *output()
{
    return ownOutput ? ownOutput : stdout;
}

bool write(std::FILE *stream, const QByteArray &text)
{
    const auto size = static_cast<std::size_t>(text.size());
    return std::fwrite(text.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

bool writeOutput(const QByteArray &text)
{
    if (write(output(), text)) return true;
    complain(u"Standard output cannot be written."_s);
    return false;
}

void complain(const QString &sentence)
{
    write(stderr, "tessaly-cli: " + terminalText(sentence).toUtf8() + '\n');
}

} // namespace tessaly
