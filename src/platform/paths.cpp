#include "platform/paths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>
#include <filesystem>

#include <sys/stat.h>
#include <unistd.h>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QString withoutTrailingSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(u'/'))
        path.chop(1);
    return path;
}

bool isBidiControl(QChar c)
{
    const char16_t code = c.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

bool isExtension(const QString &text)
{
    const auto forbidden = [](QChar c) { return c == u' ' || isBidiControl(c); };
    return !text.isEmpty() && std::none_of(text.begin(), text.end(), forbidden);
}

bool isDots(const QString &component)
{
    return component == u"."_s || component == u".."_s;
}

QStringList resolvedComponents(const QString &path)
{
    QStringList components;
    for (const QString &component : path.split(u'/', Qt::SkipEmptyParts)) {
        if (component == u".."_s) {
            if (!components.isEmpty()) components.removeLast();
        } else if (component != u"."_s) {
            components += component;
        }
    }
    return components;
}

} // namespace

QString lastPathComponent(const QString &path)
{
    const QString trimmed = withoutTrailingSlashes(path);
    return trimmed == u"/"_s ? trimmed : trimmed.sliced(trimmed.lastIndexOf(u'/') + 1);
}

QString pathExtension(const QString &path)
{
    const QString name = lastPathComponent(path);
    const qsizetype point = name.lastIndexOf(u'.');
    if (point <= 0 || isDots(name.first(point))) return {};
    const QString extension = name.sliced(point + 1);
    return isExtension(extension) ? extension : QString();
}

bool currentFolderIsKnown()
{
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    return !error && pathFromBytes(QByteArray::fromStdString(folder.native()));
}

QString absolutePath(const QString &path)
{
    if (path.startsWith(u'/')) return path;
    QString folder = QDir::currentPath(); // not const, so that it is moved out
    if (path.isEmpty()) return folder;
    return folder.endsWith(u'/') ? folder + path : folder + u'/' + path;
}

QUrl fileURL(const QString &path)
{
    const QString absolute = absolutePath(path);
    QString resolved = u'/' + resolvedComponents(absolute).join(u'/');
    const bool namesFolder = absolute.endsWith(u'/') || isDots(lastPathComponent(absolute));
    if (resolved != u"/"_s && (namesFolder || QFileInfo(resolved).isDir())) resolved += u'/';

    QUrl url;
    url.setScheme(u"file"_s);
    url.setPath(resolved, QUrl::DecodedMode);
    return url;
}

QString filePath(const QUrl &fileURL)
{
    return withoutTrailingSlashes(fileURL.path(QUrl::FullyDecoded));
}

QString absoluteString(const QUrl &fileURL)
{
    // QUrl's own encoding leaves the semicolon and other characters that are encoded here.
    const QString path = fileURL.path(QUrl::FullyDecoded);
    return u"file://"_s + QString::fromLatin1(QUrl::toPercentEncoding(path, "!$&'()*+,=:@/"));
}

bool isSameFile(const QString &path, const QString &otherPath)
{
    struct stat file
    {};
    struct stat other
    {};
    if (::stat(QFile::encodeName(path).constData(), &file) != 0) return false;
    if (::stat(QFile::encodeName(otherPath).constData(), &other) != 0) return false;
    return file.st_dev == other.st_dev && file.st_ino == other.st_ino;
}

QByteArray withoutLinks(QByteArray path)
{
    constexpr int longestChain = 40; // as the system has it
    QByteArray next(4096, '\0');
    for (int i = 0; i < longestChain; ++i) {
        const ssize_t size = ::readlink(path.constData(), next.data(), static_cast<std::size_t>(next.size()));
        if (size < 0) break;
        const QByteArray target = next.first(size);
        path = target.startsWith('/') ? target : path.first(path.lastIndexOf('/') + 1) + target;
    }
    return path;
}

std::optional<QString> pathFromBytes(const QByteArray &bytes)
{
    if (bytes.contains('\0')) return std::nullopt;
    // A byte order mark is an ordinary character of a name; stateless, so that a name cut short is an error
    // too.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString path = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(path);
}

} // namespace tessaly
