#include "probe/refusal.h"

#include "platform/paths.h"

namespace tessaly {

using namespace Qt::StringLiterals;

std::optional<Refusal> refusalOf(const FileProbe &probe, const QString &path)
{
    if (pathExtension(path).toLower() == "vob"_L1) return Refusal::dvdFile;
    const bool isPlayable =
        probe.isValidMediaFile && !probe.hasErrors && !probe.isEncrypted && probe.hasVideoTrack;
    // A video of which the prober knows no size cannot be resized.
    const bool hasSize = probe.videoWidth && probe.videoHeight && *probe.videoWidth != 0;
    if (!isPlayable || !hasSize) return Refusal::unsupported;
    return std::nullopt;
}

QString refusalDetails(const FileProbe &probe)
{
    if (probe.proberFailure) return *probe.proberFailure;
    return QString::fromStdString(probe.jsonDictionary["error"]["string"].stringValue());
}

} // namespace tessaly
