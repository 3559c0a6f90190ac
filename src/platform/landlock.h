// The kernel's Landlock, by which a process gives up rights to files for good. Its levels are the versions of
// the interface, each with the rights that it has learned to refuse.
#pragma once

#include <QByteArrayList>

namespace tessaly {

// Of this kernel; 0 without Landlock. Any thread.
int landlockLevel();

// The rules of a process that may write to these folders and files alone, made with all that this level can
// refuse, as a descriptor that the caller closes. -1 when they cannot be made. Any thread.
int landlockRuleset(int level, const QByteArrayList &writablePaths);

} // namespace tessaly
