#include "cli/command_line.h"
#include "cli/info_command.h"
#include "cli/resize_command.h"
#include "cli/terminal_text.h"
#include "platform/utf8_locale.h"

#include <QCoreApplication>

#include <cstdio>

using namespace tessaly;

namespace {

int run(const ShowText &show)
{
    std::fputs(show.text.toUtf8().constData(), stdout);
    return exitDone;
}

int run(const WrongUsage &wrong)
{
    std::fprintf(stderr, "tessaly-cli: %s See tessaly-cli --help.\n",
                 terminalText(wrong.reason).toUtf8().constData());
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

int main(int argc, char *argv[])
{
    useUtf8Locale();
    const QCoreApplication application(argc, argv);
    QByteArrayList words;
    for (int i = 1; i < argc; ++i)
        words.append(argv[i]);
    return std::visit([](const auto &command) { return run(command); }, readCommandLine(words));
}
