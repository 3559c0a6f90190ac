// A check on forms: a property that no view knows passes silently when the form says that it has no setter.
#pragma once

#include <QObject>
#include <QStringList>

namespace tessaly::test {

// Reads a .ui file and returns, as "object.property", each property that neither the object of that name in
// the form made from it (`root` and what is below it) declares nor `namesOfAnyView` lists, and "object" for
// each object that the made form lacks. "unreadable" when the file is no form.
QStringList unknownFormProperties(const QString &uiFile, QObject *root, const QStringList &namesOfAnyView);

} // namespace tessaly::test
