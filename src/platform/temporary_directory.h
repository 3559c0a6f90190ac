// The temporary folder that only this running copy of the program uses. Any thread.
//
// It lies in a folder of this user, tessaly-<user id>, below $TMPDIR or /tmp. Beside it lies a lock of the
// same name with ".lock" at the end, held while this copy runs; where the lock of a folder can be taken, its
// copy is gone.
#pragma once

#include <QString>

namespace tessaly {

// The path of the folder, "/" at its end, never a "%" in it. The folder is there and closed to other users
// (0700); it is made at the first call, and again when it is gone or was replaced by something else. When it
// cannot be made (disk full, say) the path is one below which nothing can ever be written; a later call tries
// again.
QString NSTemporaryDirectory();

// Removes the folder with everything in it. Links in it are removed, what they lead to is not touched, and
// nothing is when the folder is no longer the one that was made here. Errors are ignored.
void removeTemporaryDirectory();

// Removes the folders of copies that are gone without having done so themselves.
void removeDeadSiblings();

// Removes the folder, its lock, and the user's folder when no other copy uses it. For the end of the program;
// an ordinary exit does it, too.
void removeOwnWorkspace();

// For tests: uses this folder instead of $TMPDIR from now on; empty means the default again. Removes the
// workspace used so far.
void setTemporaryRoot(const QString &folder);

} // namespace tessaly
