#include "cli/info_command.h"

#include "cli/info_json.h"
#include "cli/info_text.h"
#include "platform/printing.h"

#include <cstdio>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

void write(std::FILE *stream, const QByteArray &text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stream);
    std::fflush(stream);
}

FileProbe probe(const NamedFile &file)
{
    if (file.path) return FileProbe(*file.path);
    write(stderr, u"tessaly-cli: the name \"%1\" is not valid UTF-8, so the file cannot be opened.\n"_s
                      .arg(file.shown)
                      .toUtf8());
    return {};
}

} // namespace

ExitCode runInfo(const InfoCommand &command)
{
    setPrintTarget(command.verbose ? PrintTarget::standardError : PrintTarget::nowhere);
    bool allValid = true;
    bool first = true;
    for (const NamedFile &file : command.files) {
        const FileProbe facts = probe(file);
        allValid = allValid && facts.isValidMediaFile;
        if (command.json) {
            write(stdout, infoJson(facts) + '\n');
        } else {
            write(stdout, (first ? QString() : u"\n"_s).toUtf8() + infoText(file.shown, facts).toUtf8());
        }
        first = false;
    }
    return allValid ? exitDone : exitFailed;
}

} // namespace tessaly
