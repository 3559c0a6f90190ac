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

// A sentence for the failure that the converter's lines name; nothing when they name none that is known.
std::optional<QString> knownFailure(const QStringList &lines, const ResizeTarget &target);

// A sentence for a converter that this signal ended, which was not ours.
QString signalSentence(int signal);

} // namespace tessaly
