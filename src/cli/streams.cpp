#include "cli/streams.h"

#include "cli/terminal_text.h"

namespace tessaly {

bool write(std::FILE *stream, const QByteArray &text)
{
    const auto size = static_cast<std::size_t>(text.size());
    return std::fwrite(text.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

void complain(const QString &complaint)
{
    write(stderr, "tessaly-cli: " + terminalText(complaint).toUtf8() + '\n');
}

} // namespace tessaly
