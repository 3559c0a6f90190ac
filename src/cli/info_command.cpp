#include "cli/info_command.h"

#include "cli/info_json.h"
#include "cli/info_text.h"
#include "cli/streams.h"
#include "platform/printing.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

FileProbe probe(const NamedFile &file)
{
    if (file.path) return FileProbe(*file.path);
    FileProbe refused;
    refused.proberFailure = u"The name is not valid UTF-8, so the file cannot be opened."_s;
    return refused;
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
        if (facts.proberFailure) complain(file.shown + u": "_s + *facts.proberFailure);
        const QByteArray text = command.json ? infoJson(facts) + '\n'
                                             : (first ? "" : "\n") + infoText(file.shown, facts).toUtf8();
        if (!writeOutput(text)) return exitFailed;
        first = false;
    }
    return allValid ? exitDone : exitFailed;
}

} // namespace tessaly
