// File paths as text, and file URLs. A path is a decoded QString; nothing here normalises Unicode or expands
// "~".
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

namespace tessaly {

// Purely textual; slashes at the end do not count. The root is its own last component.
QString lastPathComponent(const QString &path);

// Behind the last point of the last component, letter case kept. Empty when the name begins with its only
// point or ends with one, and when what follows the point is no extension: one with a space or a
// bidirectional control.
QString pathExtension(const QString &path);

// Whether relative paths mean anything: not when the current folder is gone, or its path is too long to be
// told, or not UTF-8.
bool currentFolderIsKnown();

// The path itself when it is absolute, else the current folder before it; every other character stays as
// given. A relative one needs currentFolderIsKnown().
QString absolutePath(const QString &path);

// An absolute file URL with "." and ".." resolved in the text. It ends with a slash when the path does, or
// when a folder exists there (looked up on disk). An empty path is the current folder.
QUrl fileURL(const QString &path);

// The path of a file URL, decoded and without a slash at the end.
QString filePath(const QUrl &fileURL);

// The text of a file URL, percent-encoded.
QString absoluteString(const QUrl &fileURL);

// Whether both paths lead to one file, through links of any kind: the same device and inode number. False
// when either is missing.
bool isSameFile(const QString &path, const QString &otherPath);

// What a chain of symbolic links leads to, also when nothing is there; only the last component is followed.
// Both are paths as the system has them.
QByteArray withoutLinks(QByteArray path);

// A file name as the system gives it. nullopt when it is not UTF-8 or holds a NUL: such a file cannot be
// opened.
std::optional<QString> pathFromBytes(const QByteArray &bytes);

} // namespace tessaly
