#include "jobs/job_end.h"

#include "jobs/converter_text.h"
#include "jobs/frame_size.h"
#include "probe/file_facts.h"
#include "probe/track_lengths.h"

namespace tessaly {

using namespace Qt::StringLiterals;
using End = ProcessOutcome::End;
using Target = OutputGuard::Target;

namespace {

// The converter takes 0, and numbers too large for it, for "as in the input".
QString sentenceForSize(const FrameSize &made, const FrameSize &wanted)
{
    const QString sentence =
        u"The new video came out as %1, not %2"_s.arg(frameSizeText(made), frameSizeText(wanted));
    if (wanted.width < 2 || wanted.height < 2) return sentence + u": choose a size of at least 2 x 2."_s;
    return sentence + (sizeRefusal(wanted) ? u": choose a smaller size."_s : u"."_s);
}

// The converter ended with 0, which says little.
std::optional<QString> failureOfFile(const ConverterEnd &end, const ResizeTarget &target,
                                     const FileProbe &output)
{
    if (end.target == Target::untouched) return u"ffmpeg ended without writing the new video."_s;
    if (end.target == Target::replaced)
        return u"The new video was moved, removed or replaced while it was written."_s;
    const bool isEmpty = output.fileSize.value_or(0) == 0;
    if (output.proberFailure && !isEmpty) return std::nullopt;
    if (!output.hasVideoTrack)
        return end.diskIsFull ? u"The disk is full: there is no space left for the new video."_s
                              : u"The new file holds no video."_s;
    const FrameSize made{output.videoWidth.value_or(0), output.videoHeight.value_or(0)};
    const FrameSize wanted{target.width, target.height};
    if (made != wanted) return sentenceForSize(made, wanted);
    return std::nullopt;
}

QString failureOfExit(int code, const QStringList &lines, const ResizeTarget &target)
{
    if (const auto known = knownFailure(lines, target)) return *known;
    const QString line = lastMeaningfulLine(lines);
    if (!line.isEmpty()) return u"ffmpeg said: "_s + line;
    return u"ffmpeg ended with error "_s + QString::number(code) + u" and said nothing."_s;
}

std::optional<QString> sentenceFor(const ConverterEnd &end, const QStringList &lines,
                                   const ResizeTarget &target, const FileProbe &output)
{
    const int code = end.outcome.code;
    switch (end.outcome.end) {
    case End::failedToStart:
        return end.outcome.failure;
    case End::signalled:
        return signalSentence(code);
    case End::exited:
        return code == 0 ? failureOfFile(end, target, output) : failureOfExit(code, lines, target);
    case End::timedOut: // no job has these limits
    case End::tooMuchOutput:
    case End::stopped:
        break;
    }
    return std::nullopt;
}

struct Length
{
    double expected = 0; // seconds
    double made = 0;     // seconds

    double missing() const { return expected - made; }
    bool isClearlyShort() const { return made > 0 && missing() > 1 && missing() > expected * 0.02; }
};

// Of the picture, of the sound, or of the whole where the tracks tell nothing: the one of which most is
// missing.
Length shortestLength(const FileProbe &input, const FileProbe &output)
{
    const TrackLengths expected = keptTrackLengths(input);
    const TrackLengths made = keptTrackLengths(output);
    Length shortest;
    const auto consider = [&shortest](std::optional<double> wanted, std::optional<double> got) {
        const Length length{wanted.value_or(0), got.value_or(0)};
        if (length.isClearlyShort() && length.missing() > shortest.missing()) shortest = length;
    };
    consider(expected.picture, made.picture);
    consider(expected.sound, made.sound);
    if (!expected.picture && !expected.sound) consider(expected.whole, made.whole);
    return shortest;
}

std::optional<Remark> remarkOnLength(const FileProbe &input, const FileProbe &output)
{
    const Length length = shortestLength(input, output);
    if (!length.isClearlyShort()) return std::nullopt;
    return Remark{u"The new video is shorter than the original says: %1 instead of %2."_s.arg(
                      durationHuman(length.made), durationHuman(length.expected)),
                  length.missing() >= length.expected / 4};
}

std::optional<Remark> remarkOnDamage(qint64 errors, const FileProbe &output)
{
    if (errors == 0) return std::nullopt;
    const QString count = errors == 1 ? u"1 error"_s : u"%1 errors"_s.arg(errors);
    const std::optional<qint64> pictures = keptTrackLengths(output).pictures;
    const bool isHardlyReadable = pictures && 2 * errors >= *pictures;
    if (isHardlyReadable)
        return Remark{u"%1 while reading the input: it is damaged or encrypted."_s.arg(count), true};
    return Remark{u"%1 while reading the input: the picture may be damaged."_s.arg(count), false};
}

std::optional<Remark> remarkOnSound(const FileProbe &input, const FileProbe &output)
{
    if (!input.hasAudioTrack || output.hasAudioTrack || !output.isValidMediaFile) return std::nullopt;
    return Remark{u"The new video has no sound, although the original has."_s, true};
}

} // namespace

std::optional<JobFailed> failureOf(const ConverterEnd &end, const ResizeTarget &target,
                                   const FileProbe &output)
{
    const QStringList lines = converterLines(end.text);
    const std::optional<QString> sentence = sentenceFor(end, lines, target, output);
    if (!sentence) return std::nullopt;
    return JobFailed{*sentence, lastConverterLines(lines)};
}

std::vector<Remark> remarksOn(const ConverterEnd &end, const FileProbe &input, const FileProbe &output)
{
    std::vector<Remark> remarks;
    if (auto length = remarkOnLength(input, output)) remarks.push_back(*length);
    if (auto sound = remarkOnSound(input, output)) remarks.push_back(*sound);
    if (auto damage = remarkOnDamage(end.readingErrors, output)) remarks.push_back(*damage);
    return remarks;
}

} // namespace tessaly
