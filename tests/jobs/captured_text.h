// Standard error that real converters wrote.
#pragma once

#include <QFile>

namespace tessaly::test {

// The text of one file in the folder "captured", named generation-case; empty when there is none.
inline QByteArray capturedText(const char *name)
{
    QFile file(QStringLiteral(TESSALY_CAPTURED_FOLDER "/%1.txt").arg(QLatin1StringView(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace tessaly::test
