#include "cli/streams.h"

#include "cli/terminal_text.h"

namespace tessaly {

using namespace Qt::StringLiterals;

bool write(std::FILE *stream, const QByteArray &text)
{
    const auto size = static_cast<std::size_t>(text.size());
    return std::fwrite(text.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

bool writeOutput(const QByteArray &text)
{
    if (write(stdout, text)) return true;
    complain(u"Standard output cannot be written."_s);
    return false;
}

void complain(const QString &sentence)
{
    write(stderr, "tessaly-cli: " + terminalText(sentence).toUtf8() + '\n');
}

} // namespace tessaly
