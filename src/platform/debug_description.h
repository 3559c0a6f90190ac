// Text as a programmer would write it: the form of lists in diagnostic lines.
#pragma once

#include <QString>
#include <QStringList>

namespace tessaly {

// In double quotes; quotes of both kinds, backslashes and ASCII controls are escaped. A combining mark that
// would melt into the quote or escape before it is written as its number.
QString debugDescription(const QString &text);

// ["-i", "/a b.mp4"]
QString listDescription(const QStringList &list);

} // namespace tessaly
