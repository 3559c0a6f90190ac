#include "jobs/failure_report.h"

#include "jobs/converter_text.h"
#include "probe/file_facts.h"

#include <csignal>

namespace tessaly {

using namespace Qt::StringLiterals;
using End = RunOutcome::End;

namespace {

// The converter ended with 0, which says little.
std::optional<QString> faultOfFile(const JobEnd &end, const FileProbe &output)
{
    if (!end.targetTouched) return u"The converter ended without writing the new video."_s;
    if (output.proberFailure) return u"The new video could not be checked. "_s + *output.proberFailure;
    if (!output.hasVideoTrack) return u"The new file holds no video."_s;
    return std::nullopt;
}

QString reasonOfExit(const JobEnd &end, const QStringList &lines)
{
    if (const auto failure = knownFailure(lines, end.target)) return *failure;
    const QString line = lastMeaningfulLine(lines);
    if (!line.isEmpty()) return u"The converter said: "_s + line;
    return u"The converter ended with error "_s + QString::number(end.outcome.code) + u" and said nothing."_s;
}

std::optional<QString> sentenceFor(const JobEnd &end, const QStringList &lines, const FileProbe &output)
{
    const int code = end.outcome.code;
    switch (end.outcome.end) {
    case End::stopped:
        return std::nullopt;
    case End::failedToStart:
        return end.outcome.reason;
    case End::crashed:
        if (code == SIGKILL) return u"The converter was killed by the system or by another program."_s;
        return u"The converter crashed (signal "_s + QString::number(code) + u")."_s;
    case End::ended:
        break;
    }
    return code == 0 ? faultOfFile(end, output) : reasonOfExit(end, lines);
}

} // namespace

std::optional<Failure> failureOfJob(const JobEnd &end, const FileProbe &output)
{
    const QStringList lines = converterLines(end.outcome.lastText);
    const std::optional<QString> sentence = sentenceFor(end, lines, output);
    if (!sentence) return std::nullopt;
    return Failure{*sentence, lastConverterLines(lines)};
}

std::optional<QString> shorterThanInput(double inputDuration, double outputDuration)
{
    if (!(outputDuration > 0)) return std::nullopt;
    const double missing = inputDuration - outputDuration;
    if (!(missing > 1 && missing > inputDuration * 0.02)) return std::nullopt;
    return u"The new video is shorter than the original says: "_s + durationHuman(outputDuration) +
           u" instead of "_s + durationHuman(inputDuration) + u'.';
}

} // namespace tessaly
