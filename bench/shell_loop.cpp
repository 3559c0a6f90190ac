#include "bench/shell_loop.h"

#include "platform/bundle.h"

namespace tessaly::bench {

using namespace Qt::StringLiterals;

namespace {

std::string line(const QString &tool, const QStringList &arguments)
{
    const std::optional<QString> program = pathForResource(tool);
    require(program.has_value(), tool.toStdString() + " is missing");
    QString text;
    for (QString word : QStringList{*program} + arguments)
        text += u'\'' + word.replace(u'\'', "'\\''"_L1) + "' "_L1;
    return text.toStdString() + ">/dev/null || exit\n";
}

} // namespace

QStringList probeArguments(const QString &file)
{
    return {u"-v"_s,
            u"quiet"_s,
            u"-print_format"_s,
            u"json"_s,
            u"-show_format"_s,
            u"-show_streams"_s,
            u"-show_chapters"_s,
            u"-show_error"_s,
            file};
}

void ShellLoop::addProbe(const QString &file)
{
    m_script += line(u"sniffer"_s, probeArguments(file));
}

void ShellLoop::addConverter(const QStringList &arguments)
{
    m_script += line(u"creator"_s, arguments);
}

double ShellLoop::run() const
{
    return runChild({"sh", "-c", m_script}).seconds;
}

} // namespace tessaly::bench
