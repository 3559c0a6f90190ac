#include "cli/command_line.h"

#include "platform/confinement.h"
#include "platform/paths.h"

#include <QCommandLineParser>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

const QString usage =
    u"Usage: tessaly-cli info [--json] [--verbose] FILE...\n"
    "       tessaly-cli resize INPUT -o OUTPUT [SIZE] [--force] [--json [--progress]]\n"
    "                          [--quiet] [--verbose]\n"
    "       tessaly-cli resize INPUT... -o FOLDER [the same options]\n"
    "SIZE:  --scale PERCENT | --fit WxH | --width W | --height H | --width W --height H\n"
    "\n"
    "info shows what is known about video files: size in pixels, duration, tracks, tags.\n"
    "resize writes a copy of a video in another frame size, as MP4. A side that is not given follows\n"
    "the other in the proportions of the input; sides are made even.\n"
    "Several inputs are resized one after another into a folder. An input that is a folder stands for the\n"
    "videos in it.\n"
    "\n"
    "  --json           one JSON object a file, each on one line; human words go to standard error\n"
    "  --progress       with resize --json: also objects that tell the progress\n"
    "  -o, --output F   the new file, .mp4 is added where it is missing; or the folder, which may be new\n"
    "  --scale PERCENT  of the input's size, as 50 or 50%; 100 when nothing else is said\n"
    "  --fit WxH        the largest size within that many pixels, such as 1280x720; never enlarges\n"
    "  --width W        in pixels\n"
    "  --height H       in pixels\n"
    "  --force          replace a file that exists (never the input)\n"
    "  --quiet          no progress and no report\n"
    "  --verbose        diagnostics on standard error\n"
    "  --help           this text\n"
    "  --version        the version; with --verbose also how the tools are confined\n"
    "\n"
    "Ends with 0 when all is well, with 1 when a file is no valid media file, or when a resize failed\n"
    "or was refused, with 2 for wrong usage, and with 130 when it was cancelled.\n"_s;

const QString versionLine = u"tessaly-cli " TESSALY_VERSION "\n"_s;

QString confinementLine()
{
    return u"Confinement of the tools: "_s + confinementInForce() + u'\n';
}

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

std::vector<NamedFile> namedFiles(const QStringList &words)
{
    std::vector<NamedFile> files;
    for (const QString &word : words)
        files.push_back(namedFile(word));
    return files;
}

// A relative name would mean another file than the person does.
std::optional<QString> refusalOfRelative(const QStringList &words)
{
    const auto isAbsolute = [](const QString &word) { return word.startsWith(u'/'); };
    if (std::all_of(words.begin(), words.end(), isAbsolute) || currentFolderIsKnown()) return std::nullopt;
    return u"The path of the current folder cannot be told: name files by their whole paths."_s;
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

    const QStringList files = parser.positionalArguments();
    if (files.isEmpty()) return WrongUsage{u"info needs at least one file."_s};
    if (files.contains(QString())) return WrongUsage{u"A file name is empty."_s};
    if (const std::optional<QString> refusal = refusalOfRelative(files)) return WrongUsage{*refusal};
    return InfoCommand{
        .files = namedFiles(files), .json = parser.isSet(json), .verbose = parser.isSet(verbose)};
}

// A side of a frame, from what was typed; nothing when that is no side.
std::optional<qint64> sideFrom(const QString &text)
{
    bool isNumber = false;
    const qint64 side = text.toLongLong(&isNumber);
    return isNumber && side >= 2 ? std::optional(side) : std::nullopt;
}

// "50" and "50%"; nothing when that is no percentage above 0.
std::optional<double> percentFrom(QString text)
{
    if (text.endsWith(u'%')) text.chop(1);
    bool isNumber = false;
    const double percent = text.toDouble(&isNumber);
    return isNumber && std::isfinite(percent) && percent > 0 ? std::optional(percent) : std::nullopt;
}

// "1280x720" and "1280×720"; nothing when that is no size.
std::optional<FrameSize> boxFrom(const QString &text)
{
    static const QRegularExpression sign(u"[xX×]"_s);
    const QStringList sides = text.split(sign);
    if (sides.size() != 2) return std::nullopt;
    const std::optional<qint64> width = sideFrom(sides[0]);
    const std::optional<qint64> height = sideFrom(sides[1]);
    return width && height ? std::optional(FrameSize{*width, *height}) : std::nullopt;
}

// Fills the wish; the answer is what is wrong with it, if anything.
std::optional<QString> readSize(const QCommandLineParser &parser, SizeWish &size)
{
    const bool hasSide = parser.isSet(u"width"_s) || parser.isSet(u"height"_s);
    if (parser.isSet(u"fit"_s)) {
        if (hasSide || parser.isSet(u"scale"_s)) return u"--fit does not go with another size."_s;
        size.box = boxFrom(parser.value(u"fit"_s));
        if (!size.box) return u"--fit takes two whole numbers of at least 2, such as 1280x720."_s;
    }
    if (parser.isSet(u"scale"_s)) {
        if (hasSide) return u"--scale does not go with --width or --height."_s;
        const std::optional<double> percent = percentFrom(parser.value(u"scale"_s));
        if (!percent) return u"--scale takes a number above 0."_s;
        size.percent = *percent;
    }
    for (const auto &[name, side] :
         {std::pair(u"width"_s, &size.width), std::pair(u"height"_s, &size.height)}) {
        if (!parser.isSet(name)) continue;
        *side = sideFrom(parser.value(name));
        if (!*side) return u"--%1 takes a whole number of at least 2."_s.arg(name);
    }
    return std::nullopt;
}

Command readResize(const QStringList &words)
{
    QCommandLineParser parser;
    const QCommandLineOption output(QStringList{u"o"_s, u"output"_s}, {}, u"F"_s);
    const QCommandLineOption force(u"force"_s);
    const QCommandLineOption quiet(u"quiet"_s);
    const QCommandLineOption verbose(u"verbose"_s);
    const QCommandLineOption json(u"json"_s);
    const QCommandLineOption progress(u"progress"_s);
    const QCommandLineOption help(QStringList{u"help"_s, u"h"_s});
    const QCommandLineOption version(u"version"_s);
    parser.addOptions({output, force, quiet, verbose, json, progress, help, version});
    for (const QString &name : {u"scale"_s, u"fit"_s, u"width"_s, u"height"_s})
        parser.addOption(QCommandLineOption(name, {}, u"N"_s));
    if (!parser.parse(words)) return WrongUsage{parser.errorText()};
    if (parser.isSet(help)) return ShowText{usage};
    if (parser.isSet(version)) return ShowText{versionLine};

    const QStringList inputs = parser.positionalArguments();
    if (inputs.isEmpty()) return WrongUsage{u"resize needs at least one input."_s};
    if (inputs.contains(QString())) return WrongUsage{u"A file name is empty."_s};
    if (parser.value(output).isEmpty()) return WrongUsage{u"resize needs an output: -o FILE."_s};
    if (const auto refusal = refusalOfRelative(inputs + parser.values(output))) return WrongUsage{*refusal};
    if (parser.isSet(progress) && !parser.isSet(json)) return WrongUsage{u"--progress needs --json."_s};
    ResizeCommand command{.inputs = namedFiles(inputs),
                          .output = namedFile(parser.value(output)),
                          .force = parser.isSet(force),
                          .quiet = parser.isSet(quiet),
                          .verbose = parser.isSet(verbose),
                          .json = parser.isSet(json),
                          .progress = parser.isSet(progress)};
    if (const std::optional<QString> refusal = readSize(parser, command.size)) return WrongUsage{*refusal};
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
    if (command == "resize"_L1) return readResize(decodedWords);
    if (command == "--help"_L1 || command == "-h"_L1) return ShowText{usage};
    if (command == "--version"_L1)
        return ShowText{versionLine +
                        (decodedWords.contains(u"--verbose"_s) ? confinementLine() : QString())};
    return WrongUsage{u"There is no command \"%1\"."_s.arg(command)};
}

} // namespace tessaly
