#include "support/seen.h"

#include <QFile>

namespace tessaly::test {

using namespace Qt::StringLiterals;

void seen(const QString &observation)
{
    const QString path = qEnvironmentVariable("TESSALY_SEEN_FILE");
    if (path.isEmpty()) return;
    QString line = observation.trimmed();
    line.replace(u'\n', " / "_L1).replace(u'\t', u' ').replace(u'\r', u' ');
    QFile file(path);
    if (!file.open(QIODevice::Append) || file.write(line.toUtf8() + '\n') < 0)
        qFatal("What was seen cannot be written to %s", qUtf8Printable(path));
}

} // namespace tessaly::test
