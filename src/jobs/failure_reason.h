// Why a converter failed, in plain words.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tessaly {

// What was asked of the converter.
struct ResizeTarget
{
    QString path;
    qint64 width = 0;  // pixels
    qint64 height = 0; // pixels
};

// A sentence for the reason that the converter's lines name; nothing when they name none that is known.
std::optional<QString> knownFailureReason(const QStringList &lines, const ResizeTarget &target);

} // namespace tessaly
