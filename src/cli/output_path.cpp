#include "cli/output_path.h"

#include "jobs/output_name.h"
#include "platform/paths.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// Extensions by which people name videos of other containers, and sound and pictures.
constexpr std::array otherVideos{"264"_L1,  "265"_L1,  "3g2"_L1,   "3gp"_L1,  "3gpp"_L1, "amv"_L1,  "asf"_L1,
                                 "avi"_L1,  "divx"_L1, "dv"_L1,    "f4v"_L1,  "flv"_L1,  "h264"_L1, "h265"_L1,
                                 "hevc"_L1, "insv"_L1, "ivf"_L1,   "lrv"_L1,  "m1v"_L1,  "m2t"_L1,  "m2ts"_L1,
                                 "m2v"_L1,  "m4v"_L1,  "mjpeg"_L1, "mjpg"_L1, "mkv"_L1,  "mod"_L1,  "mov"_L1,
                                 "mp4v"_L1, "mpe"_L1,  "mpeg"_L1,  "mpg"_L1,  "mts"_L1,  "mxf"_L1,  "nut"_L1,
                                 "ogm"_L1,  "ogv"_L1,  "qt"_L1,    "rm"_L1,   "rmvb"_L1, "tod"_L1,  "ts"_L1,
                                 "vob"_L1,  "webm"_L1, "wmv"_L1,   "wtv"_L1,  "y4m"_L1};
constexpr std::array soundsAndPictures{"aac"_L1,  "flac"_L1, "gif"_L1, "jpeg"_L1, "jpg"_L1,
                                       "m4a"_L1,  "mka"_L1,  "mp3"_L1, "oga"_L1,  "ogg"_L1,
                                       "opus"_L1, "png"_L1,  "wav"_L1, "webp"_L1};

bool isOneOf(const auto &extensions, const QString &path)
{
    const QString extension = pathExtension(path).toLower();
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

bool namesAnotherContainer(const QString &path)
{
    return isOneOf(otherVideos, path) || isOneOf(soundsAndPictures, path);
}

// With the extension mp4 in the place of another.
QString renamed(const QString &path)
{
    return path.chopped(pathExtension(path).size()) + u"mp4"_s;
}

// "/dev/stdout" may lead to an ordinary file; nobody means a new file beside it.
bool isAmongDevices(const QString &path)
{
    return path.startsWith("/dev/"_L1) && !path.startsWith("/dev/shm/"_L1);
}

} // namespace

std::optional<QString> nameRefusal(const NamedFile &output)
{
    if (output.shown == "-"_L1)
        return u"The new video cannot be written to standard output: name a file, such as small.mp4."_s;
    const QFileInfo there(*output.path);
    if (output.path->endsWith(u'/') || there.isDir())
        return output.shown + u" is a folder: name a file in it, such as "_s +
               (output.shown.endsWith(u'/') ? output.shown : output.shown + u'/') + u"small.mp4."_s;
    if ((there.exists() && !there.isFile()) || isAmongDevices(*output.path))
        return output.shown + u" is a device or a pipe: name a file, such as small.mp4."_s;
    if (namesAnotherContainer(*output.path))
        return u"The new video is an MP4 file: name it "_s + renamed(output.shown) + u'.';
    return std::nullopt;
}

std::optional<QString> folderRefusal(const NamedFile &output)
{
    const QFileInfo there(*output.path);
    if (there.isDir()) return std::nullopt;
    if (there.exists() || there.isSymLink()) return output.shown + u" is no folder."_s;
    if (output.shown == "-"_L1 || isAmongDevices(*output.path))
        return output.shown + u" cannot be a folder."_s;
    const bool readsAsFile = isCalledVideo(*output.path) || namesAnotherContainer(*output.path);
    if (readsAsFile && !output.path->endsWith(u'/')) return output.shown + u" is the name of a file."_s;
    return std::nullopt;
}

bool isCalledVideo(const QString &path)
{
    return pathExtension(path).compare("mp4"_L1, Qt::CaseInsensitive) == 0 || isOneOf(otherVideos, path);
}

NamedFile outputIn(const NamedFile &folder, const NamedFile &input)
{
    const QString name = lastPathComponent(*input.path);
    const QString newName = namesAnotherContainer(name) ? renamed(name) : withMp4Extension(name);
    const auto within = [&newName](const QString &path) {
        return path.endsWith(u'/') ? path + newName : path + u'/' + newName;
    };
    return {.shown = within(folder.shown), .path = within(*folder.path)};
}

std::optional<QString> targetRefusal(const QString &input, const QString &output, bool mayReplace)
{
    if (input == output || isSameFile(input, output))
        return u"The output is the input itself: please name a different file."_s;
    const QFileInfo there(output);
    if (there.isDir()) return output + u" is a folder."_s;
    if ((there.exists() || there.isSymLink()) && !mayReplace)
        return output + u" exists already; --force replaces it."_s;
    return std::nullopt;
}

} // namespace tessaly
