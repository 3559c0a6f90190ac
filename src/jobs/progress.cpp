#include "jobs/progress.h"

#include "jobs/utils.h"

namespace tessaly {

using namespace Qt::StringLiterals;

std::optional<double> secondsOfChunk(const QByteArray &chunk)
{
    // Decoding would silently replace what is not valid.
    if (!chunk.contains("time=") || !chunk.isValidUtf8()) return std::nullopt;
    const QStringList matches = Utils::matchesForRegex(
        u"([0-9][0-9]):([0-9][0-9]):([0-9][0-9]).([0-9][0-9])"_s, QString::fromUtf8(chunk));
    if (matches.isEmpty()) return std::nullopt;
    return Utils::secondsFromTimestamp(matches.first());
}

std::optional<double> percentOfChunk(const QByteArray &chunk, double duration)
{
    const std::optional<double> seconds = secondsOfChunk(chunk);
    if (!seconds) return std::nullopt;
    return *seconds / duration * 100.0;
}

} // namespace tessaly
