#include "cli/command_line.h"

#include "platform/paths.h"

#include <QCommandLineParser>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

const QString usage =
    u"Usage: tessaly-cli info [--json] [--verbose] FILE...\n"
    "\n"
    "Shows what is known about video files: size in pixels, duration, tracks, tags.\n"
    "\n"
    "  --json     one JSON object a file, each on one line\n"
    "  --verbose  diagnostics on standard error\n"
    "  --help     this text\n"
    "  --version  the version\n"
    "\n"
    "Ends with 0 when every file is a valid media file, with 1 when some file is not, and with\n"
    "2 for wrong usage.\n"_s;

const QString versionLine = u"tessaly-cli " TESSALY_VERSION "\n"_s;

// A word that is not UTF-8 cannot be told apart once it is a QString; a NUL, which no word can hold, marks
// it.
constexpr QChar notUtf8Mark = u'\0';

QString decoded(const QByteArray &word)
{
    const std::optional<QString> text = pathFromBytes(word);
    return text ? *text : notUtf8Mark + QString::fromUtf8(word);
}

NamedFile namedFile(const QString &word)
{
    if (word.startsWith(notUtf8Mark)) return {.shown = word.mid(1), .path = std::nullopt};
    return {.shown = word, .path = absolutePath(word)};
}

Command readInfo(const QStringList &words)
{
    QCommandLineParser parser;
    const QCommandLineOption json(u"json"_s);
    const QCommandLineOption verbose(u"verbose"_s);
    const QCommandLineOption help(QStringList{u"help"_s, u"h"_s});
    const QCommandLineOption version(u"version"_s);
    parser.addOptions({json, verbose, help, version});
    if (!parser.parse(words)) return WrongUsage{parser.errorText()};
    if (parser.isSet(help)) return ShowText{usage};
    if (parser.isSet(version)) return ShowText{versionLine};

    InfoCommand command{.files = {}, .json = parser.isSet(json), .verbose = parser.isSet(verbose)};
    for (const QString &word : parser.positionalArguments()) {
        if (word.isEmpty()) return WrongUsage{u"A file name is empty."_s};
        command.files.push_back(namedFile(word));
    }
    if (command.files.empty()) return WrongUsage{u"info needs at least one file."_s};
    return command;
}

} // namespace

Command readCommandLine(const QByteArrayList &words)
{
    QStringList decodedWords;
    for (const QByteArray &word : words)
        decodedWords.append(decoded(word));
    if (decodedWords.isEmpty()) return WrongUsage{u"A command is missing."_s};

    const QString &command = decodedWords.first();
    if (command == "info"_L1) return readInfo(decodedWords);
    if (command == "--help"_L1 || command == "-h"_L1) return ShowText{usage};
    if (command == "--version"_L1) return ShowText{versionLine};
    return WrongUsage{u"There is no command \"%1\"."_s.arg(command)};
}

} // namespace tessaly
