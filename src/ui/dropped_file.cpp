#include "ui/dropped_file.h"

#include <QMimeData>
#include <QString>
#include <QSysInfo>

#include <charconv>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

bool isThisMachine(const QByteArray &host)
{
    return host.isEmpty() || host.compare("localhost", Qt::CaseInsensitive) == 0 ||
           QString::fromUtf8(host).compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

// A malformed escape stands for itself.
QByteArray percentDecoded(const QByteArray &text)
{
    QByteArray decoded;
    for (const char *c = text.begin(); c != text.end(); ++c) {
        unsigned byte = 0;
        const bool isEscape =
            *c == '%' && text.end() - c > 2 && std::from_chars(c + 1, c + 3, byte, 16).ptr == c + 3;
        decoded += isEscape ? static_cast<char>(byte) : *c;
        if (isEscape) c += 2;
    }
    return decoded;
}

QByteArray localPath(const QByteArray &uri)
{
    constexpr QByteArrayView scheme = "file:";
    if (uri.first(qMin(scheme.size(), uri.size())).compare(scheme, Qt::CaseInsensitive) != 0) return {};
    QByteArray path = uri.sliced(scheme.size());
    if (path.startsWith("//")) {
        const qsizetype hostEnd = path.indexOf('/', 2);
        if (hostEnd < 0 || !isThisMachine(path.sliced(2, hostEnd - 2))) return {};
        path = path.sliced(hostEnd);
    }
    path = percentDecoded(path);
    return path.startsWith('/') && !path.contains('\0') ? path : QByteArray();
}

QList<QByteArray> localFileNames(const QMimeData *drag)
{
    QList<QByteArray> names;
    if (!drag) return names;
    // Lines end in CRLF by the rules and often in LF alone; comments begin with a number sign, so with no
    // scheme.
    for (const QByteArray &line : drag->data(u"text/uri-list"_s).split('\n')) {
        const QByteArray path = localPath(line.trimmed());
        if (!path.isEmpty()) names << path;
    }
    return names;
}

} // namespace

QByteArray firstLocalFileName(const QMimeData *drag)
{
    return localFileNames(drag).value(0);
}

int localFileCount(const QMimeData *drag)
{
    return static_cast<int>(localFileNames(drag).size());
}

} // namespace tessaly
