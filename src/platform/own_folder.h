// Folders that belong to the user who runs the program, handled without ever following a link.
#pragma once

#include <QString>

namespace tessaly {

// Whether the path names a folder, not a link to one, that belongs to this user.
bool isOwnFolder(const QString &path);

// Makes the folder for this user alone (0700), or closes an own one that is already there to everybody else.
// False when there is something of another kind or owner, or when it cannot be made.
bool makeOwnFolder(const QString &path);

// Makes a folder for this user alone whose name begins as told and is new. Empty when it cannot be made.
QString makeFreshFolder(const QString &pathBeginning);

// Removes a file, a link (not what it leads to) or an own folder with everything in it. Errors are ignored; a
// relative path is left alone.
void removeWhole(const QString &path);

} // namespace tessaly
