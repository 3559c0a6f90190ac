#include "cli/command_line.h"
#include "cli/info_command.h"
#include "cli/resize_command.h"
#include "cli/streams.h"
#include "platform/termination_watch.h"
#include "platform/utf8_locale.h"

#include <QCoreApplication>

#include <variant>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

int run(const ShowText &show)
{
    return writeOutput(show.text.toUtf8()) ? exitDone : exitFailed;
}

int run(const WrongUsage &wrong)
{
    complain(wrong.refusal + u" See tessaly-cli --help."_s);
    return exitWrongUsage;
}

int run(const InfoCommand &info)
{
    return runInfo(info);
}

int run(const ResizeCommand &resize)
{
    return runResize(resize);
}

} // namespace

// A command is never without a value, which is what std::visit would throw for.
int main(int argc, char *argv[]) // NOLINT(bugprone-exception-escape)
{
    useUtf8Locale();
    outliveReaders();
    keepOutputFromChildren();
    const QCoreApplication application(argc, argv);
    QByteArrayList words;
    for (int i = 1; i < argc; ++i)
        words.append(argv[i]);
    return std::visit([](const auto &command) { return run(command); }, readCommandLine(words));
}
