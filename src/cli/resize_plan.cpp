#include "cli/resize_plan.h"

#include "cli/output_path.h"
#include "platform/paths.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sys/stat.h>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

bool isFolder(const NamedFile &file)
{
    return file.path && QFileInfo(*file.path).isDir();
}

QString withSlash(const QString &folder)
{
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

NamedFile fileIn(const NamedFile &folder, const QByteArray &name)
{
    const std::optional<QString> decoded = pathFromBytes(name);
    if (!decoded) return {.shown = withSlash(folder.shown) + QString::fromUtf8(name), .path = std::nullopt};
    return {.shown = withSlash(folder.shown) + *decoded, .path = withSlash(*folder.path) + *decoded};
}

// A link that leads nowhere is let through: that it cannot be read is told.
bool isFile(const std::filesystem::directory_entry &entry)
{
    std::error_code ignored;
    const std::filesystem::file_type type = entry.status(ignored).type();
    return type == std::filesystem::file_type::regular || type == std::filesystem::file_type::not_found;
}

// Qt's own lists leave out names that are not UTF-8. Nothing when the folder cannot be read.
std::optional<std::vector<ResizeFile>> filesIn(const NamedFile &folder)
{
    std::error_code error;
    std::filesystem::directory_iterator entry(folder.path->toStdString(), error);
    std::vector<std::string> names;
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with('.') && isFile(*entry)) names.push_back(name);
    }
    if (error) return std::nullopt;
    std::sort(names.begin(), names.end());
    std::vector<ResizeFile> files;
    files.reserve(names.size());
    for (const std::string &name : names)
        files.push_back({.input = fileIn(folder, QByteArray::fromStdString(name)), .isFromFolder = true});
    return files;
}

// A folder that cannot be read stands for itself, which comes out as a failure.
std::vector<ResizeFile> filesOf(const NamedFile &input)
{
    if (isFolder(input)) {
        if (const auto files = filesIn(input)) return *files;
    }
    return {{.input = input}};
}

std::vector<ResizeFile> filesOf(const ResizeCommand &command)
{
    std::vector<ResizeFile> all;
    for (const NamedFile &input : command.inputs) {
        const std::vector<ResizeFile> files = filesOf(input);
        all.insert(all.end(), files.begin(), files.end());
    }
    int place = 0;
    for (ResizeFile &file : all) {
        if (file.input.path && command.output.path) file.output = outputIn(command.output, file.input);
        file.place = u"%1 of %2: "_s.arg(++place).arg(all.size());
    }
    return all;
}

QString joined(const std::vector<ResizeFile> &files)
{
    QStringList names;
    for (const ResizeFile &file : files)
        names += file.input.shown;
    return names.join(u" and "_s);
}

// What is no video takes no name. A file is only read for that when another wants its name.
void leaveOutNoVideos(std::vector<ResizeFile> &files)
{
    std::erase_if(files, [](const ResizeFile &file) {
        return file.isFromFolder && skipOf(file, FileProbe(*file.input.path));
    });
}

using FileNumber = std::pair<dev_t, ino_t>;

std::optional<FileNumber> numberOf(const QByteArray &path)
{
    struct stat there = {};
    if (::stat(path.constData(), &there) != 0) return std::nullopt;
    return FileNumber{there.st_dev, there.st_ino};
}

std::optional<FileNumber> numberOf(const QString &path)
{
    return numberOf(QFile::encodeName(path));
}

// Some disks take two names that differ in their letter case, or in how a letter is composed, for one.
QString nameOnAnyDisk(const QString &path)
{
    return path.normalized(QString::NormalizationForm_C).toCaseFolded();
}

// What would be written: a file that is there, without a name, or a name in a folder.
using Target = std::pair<FileNumber, QString>;

// Where nothing is replaced, the second of two that meet fails by itself, so that only equal names count.
// Else links are followed, also to where nothing is yet.
Target targetOf(const QString &output, bool mayReplace)
{
    if (!mayReplace) return {{}, output};
    if (const auto number = numberOf(output)) return {*number, {}};
    const QByteArray end = withoutLinks(QFile::encodeName(output));
    const qsizetype nameStart = end.lastIndexOf('/') + 1;
    const auto folder = numberOf(end.first(nameStart));
    return {folder.value_or(FileNumber()),
            nameOnAnyDisk(QFile::decodeName(folder ? end.sliced(nameStart) : end))};
}

QString clash(const std::vector<ResizeFile> &files)
{
    QStringList outputs;
    for (const ResizeFile &file : files) {
        const auto isThis = [&file](const QString &output) {
            return nameOnAnyDisk(output) == nameOnAnyDisk(file.output.shown);
        };
        if (std::none_of(outputs.begin(), outputs.end(), isThis)) outputs += file.output.shown;
    }
    const QString oneFile = outputs.size() > 1 ? u", by links one file"_s : QString();
    return joined(files) + u" would both become "_s + outputs.join(u" and "_s) + oneFile +
           u": please resize them into different folders."_s;
}

QStringList clashes(const std::vector<ResizeFile> &files, bool mayReplace)
{
    std::map<Target, std::vector<ResizeFile>> byTarget;
    for (const ResizeFile &file : files) {
        if (file.input.path) byTarget[targetOf(outputPath(file), mayReplace)].push_back(file);
    }
    QStringList sentences;
    for (auto &[target, sameTarget] : byTarget) {
        if (sameTarget.size() > 1) leaveOutNoVideos(sameTarget);
        if (sameTarget.size() > 1) sentences += clash(sameTarget);
    }
    return sentences;
}

// By a link an output may lead to the input of another; its own is refused when its turn comes.
QStringList replacedInputs(const std::vector<ResizeFile> &files)
{
    std::map<FileNumber, QString> inputs;
    for (const ResizeFile &file : files) {
        const auto number = file.input.path ? numberOf(*file.input.path) : std::nullopt;
        if (number) inputs.emplace(*number, file.input.shown);
    }
    QStringList sentences;
    for (const ResizeFile &file : files) {
        if (!file.input.path || isSameFile(*file.input.path, outputPath(file))) continue;
        const auto number = numberOf(outputPath(file));
        const auto input = number ? inputs.find(*number) : inputs.end();
        if (input != inputs.end())
            sentences +=
                u"%1 would replace %2, which is an input, too."_s.arg(file.output.shown, input->second);
    }
    return sentences;
}

std::optional<QString> outputRefusal(const ResizeCommand &command)
{
    if (!command.output.path)
        return command.output.shown + u": the name is not valid UTF-8, so it cannot be used."_s;
    std::optional<QString> refusal = folderRefusal(command.output);
    if (!refusal) return std::nullopt;
    if (command.inputs.size() > 1)
        return u"There are several inputs, so -o must name a folder: "_s + *refusal;
    if (!isFolder(command.inputs.front())) return refusal;
    return command.inputs.front().shown + u": Is a directory, so -o must name a folder: "_s + *refusal;
}

} // namespace

// A slash at the end says folder, too: a shell's pattern may match a single file.
ResizePlan planOf(const ResizeCommand &command)
{
    const bool isOneFile = command.inputs.size() == 1 && !isFolder(command.inputs.front());
    if (isOneFile && !command.output.shown.endsWith(u'/'))
        return {.files = {{.input = command.inputs.front(), .output = command.output}}};
    ResizePlan plan{.isOfMany = true, .files = filesOf(command)};
    if (const auto refusal = outputRefusal(command)) {
        plan.refusals += *refusal;
        return plan;
    }
    plan.refusals = clashes(plan.files, command.force);
    if (command.force) plan.refusals += replacedInputs(plan.files);
    return plan;
}

} // namespace tessaly
