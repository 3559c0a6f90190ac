#include "jobs/known_failure.h"

#include "jobs/converter_text.h"
#include "jobs/frame_size.h"

#include <QRegularExpression>

#include <algorithm>
#include <csignal>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

using Sentence = std::optional<QString>;

// File names and metadata stand in the lines, too: so the words of the system count at the end of a line
// only, those of the converter at the start of what a line says, and indented lines not at all.
class Words
{
public:
    explicit Words(const QStringList &allLines) : m_all(allLines)
    {
        for (const QString &line : allLines) {
            if (!line.startsWith(u' ')) m_said += withoutSpeaker(line);
        }
    }

    const QStringList &said() const { return m_said; }

    bool endIn(QLatin1StringView words) const
    {
        return std::any_of(m_said.cbegin(), m_said.cend(), [words](const QString &line) {
            return line.endsWith(words) || line.endsWith(words + u')'); // "error code: -28 (…)"
        });
    }

    // The first line that begins so; groups are those of the pattern.
    QRegularExpressionMatch beginWith(const QString &pattern) const
    {
        const QRegularExpression regex(u"^(?:"_s + pattern + u')');
        for (const QString &line : m_said) {
            auto match = regex.match(line);
            if (match.hasMatch()) return match;
        }
        return {};
    }
    bool haveBegun(const QString &pattern) const { return beginWith(pattern).hasMatch(); }

    // The lines as they were written, speakers and all.
    bool wrote(const QString &pattern) const { return !m_all.filter(QRegularExpression(pattern)).isEmpty(); }

private:
    QStringList m_all;
    QStringList m_said;
};

bool isOdd(qint64 side)
{
    return side > 0 && side % 2 != 0;
}

QString sizeText(qint64 width, qint64 height)
{
    return QString::number(width) + u" x "_s + QString::number(height);
}

Sentence spaceFailure(const Words &words, const ResizeTarget &)
{
    if (words.endIn("No space left on device"_L1))
        return u"The disk is full: there is no space left for the new video."_s;
    if (words.endIn("Disk quota exceeded"_L1))
        return u"Your share of the disk is used up: there is no space left for the new video."_s;
    if (words.endIn("File too large"_L1))
        return u"The new video is larger than the disk, or a limit for files (ulimit -f), allows."_s;
    return std::nullopt;
}

// The system's words for why a file could not be opened, read or written, and what they mean for either file.
struct AccessWords
{
    QLatin1StringView system;
    QLatin1StringView target;
    QLatin1StringView input; // empty: then it is something else
};

constexpr auto noFolder = "The folder for the new video does not exist."_L1;
constexpr auto diskGone = "The disk of the new video can no longer be reached."_L1;
constexpr auto noVideo = "The video is damaged, or it is no video at all."_L1;

constexpr AccessWords accessWords[] = {
    {"Permission denied"_L1, "You do not have permission to write the new video there."_L1,
     "You do not have permission to read the video."_L1},
    {"Operation not permitted"_L1, "You do not have permission to write the new video there."_L1, {}},
    {"Read-only file system"_L1, "The new video cannot be written there: that disk is read-only."_L1, {}},
    {"Is a directory"_L1, "The name of the new video belongs to a folder."_L1,
     "That is a folder, not a video."_L1},
    {"No such file or directory"_L1, noFolder, "The video is no longer there."_L1},
    {"Not a directory"_L1, noFolder, "The video is no longer there."_L1},
    {"File name too long"_L1, "The name of the new video is too long."_L1, {}},
    {"Text file busy"_L1, "The name of the new video belongs to a program that is running."_L1, {}},
    {"Input/output error"_L1, "The new video could not be written: its disk reports an error."_L1,
     "The video could not be read: it is cut off, or its disk reports an error."_L1},
    {"Stale file handle"_L1, diskGone, "The disk of the video can no longer be reached."_L1},
    {"Transport endpoint is not connected"_L1, diskGone,
     "The disk of the video can no longer be reached."_L1},
};

// A line about the file to be written, opened or not; the others tell of the input.
bool isOfTarget(const QString &line, QLatin1StringView systemWords, const QString &targetName)
{
    static const QRegularExpression writing(u"^(Error opening output|Error (muxing|writing|closing)|"
                                            "av_interleaved_write_frame|Could not write header)"_s);
    return line == targetName + ": "_L1 + systemWords || writing.match(line).hasMatch();
}

Sentence accessFailure(const Words &words, const ResizeTarget &target)
{
    // A line break in the path is one in the text, too.
    static const QRegularExpression breaks(u"[\\r\\n]"_s);
    const QString name = target.path.split(breaks).last();
    for (const AccessWords &access : accessWords) {
        for (const QString &line : words.said()) {
            if (!line.endsWith(": "_L1 + access.system)) continue;
            const QLatin1StringView meaning =
                isOfTarget(line, access.system, name) ? access.target : access.input;
            if (!meaning.isEmpty()) return QString(meaning);
        }
    }
    if (words.haveBegun(u"Unable to (choose an output format for|find a suitable output format for)"_s))
        return u"The name of the new video must end in .mp4."_s;
    return std::nullopt;
}

QString evenSizeAdvice(qint64 width, qint64 height)
{
    const auto even = [](qint64 side) { return evenSize(static_cast<double>(side)).value_or(side); };
    return u"A video of "_s + sizeText(width, height) + u" cannot be made: choose an even size, such as "_s +
           sizeText(even(width), even(height)) + u'.';
}

Sentence sizeFailure(const Words &words, const ResizeTarget &target)
{
    const auto odd = words.beginWith(u"(?:width|height) not divisible by 2 \\((\\d+)x(\\d+)\\)"_s);
    if (odd.hasMatch()) return evenSizeAdvice(odd.captured(1).toLongLong(), odd.captured(2).toLongLong());
    // Decoders say the same of damaged pictures, encoders go on to give up.
    const bool encoderRefused =
        words.haveBegun(u"(Error initializing output stream \\S+ -- )?Error while opening encoder"_s);
    const bool sizeRefused =
        words.haveBegun(u"Picture size \\d+x\\d+ is invalid|invalid width x height \\("_s);
    const bool scalerRefused =
        words.wrote(u"^\\[Parsed_scale\\S* @ 0x[0-9a-f]+\\] .*Picture size \\d+x\\d+ is invalid"_s) ||
        words.haveBegun(u"Failed to configure output pad on Parsed_scale"_s);
    if ((encoderRefused && sizeRefused) || scalerRefused)
        return u"A video of "_s + sizeText(target.width, target.height) +
               u" is too large to be made: choose a smaller size."_s;
    if (encoderRefused && (isOdd(target.width) || isOdd(target.height)))
        return evenSizeAdvice(target.width, target.height);
    return std::nullopt;
}

Sentence memoryFailure(const Words &words, const ResizeTarget &)
{
    if (!words.endIn("Cannot allocate memory"_L1) &&
        !words.haveBegun(u"x26[45] \\[error\\]: malloc of size"_s))
        return std::nullopt;
    return u"There is not enough memory for a video of this size."_s;
}

Sentence codecFailure(const Words &words, const ResizeTarget &)
{
    const auto missing = words.beginWith(u"Decoder \\(codec .*\\) not found for input stream #(\\d+:\\d+)|"
                                         "Decoding requested, but no decoder found for"_s);
    const auto failed = words.beginWith(u"Error while opening decoder(?: for input stream #(\\d+:\\d+))?"_s);
    if (missing.hasMatch() || failed.hasMatch()) {
        const QString stream = missing.captured(1) + failed.captured(1);
        const bool isSound =
            stream.isEmpty() ? words.wrote(u"^\\[aist#.*(no decoder found for|Error while opening decoder)"_s)
                             : words.wrote(u"^ +Stream #"_s + stream + u"\\b.*: Audio:"_s);
        return (missing.hasMatch() ? u"ffmpeg has no decoder for "_s : u"ffmpeg cannot decode "_s) +
               (isSound ? u"the sound of this video."_s : u"this video."_s);
    }
    if (words.haveBegun(
            u"Unknown encoder|Automatic encoder selection failed|Encoder \\(codec .*\\) not found"_s))
        return u"ffmpeg has no encoder for MP4 videos."_s;
    return std::nullopt;
}

// What cannot be decoded may be any of these; the converter's words are the same.
Sentence decodingFailure(const Words &words)
{
    // What a container holds about its encryption, by number or by name.
    if (words.wrote(u"^ +(unknown side data type 24|[Ee]ncryption init\\w* data):? \\("_s))
        return u"The video is encrypted: it cannot be converted."_s;
    if (words.wrote(u"^\\[[^\\]]+ @ 0x[0-9a-f]+\\] (.*: partial file$|File ended prematurely)"_s))
        return u"The video is cut off: what is there cannot be converted."_s;
    return u"The video is damaged or encrypted: ffmpeg could not decode it."_s;
}

Sentence damageFailure(const Words &words, const ResizeTarget &)
{
    if (words.wrote(
            u"^\\[[^\\]]+ @ 0x[0-9a-f]+\\] (?!Error opening ).*(\\b[Ee]ncrypted\\b|encryption info|decrypt|DRM protected)"_s))
        return u"The video is encrypted: it cannot be converted."_s;
    if (words.haveBegun(u"Could not write header"_s)) return std::nullopt; // decoded well enough
    const bool isOpen = words.haveBegun(u"Stream mapping:"_s);
    const bool invalid = words.endIn("Invalid data found when processing input"_L1);
    const bool unknown = words.endIn(": End of file"_L1) || words.endIn(": Invalid argument"_L1) ||
                         words.endIn(": could not find codec parameters"_L1) ||
                         words.haveBegun(u"Output file (#0 )?does not contain any stream"_s);
    if (!isOpen && (invalid || unknown)) return QString(noVideo);
    if (invalid || words.haveBegun(u"Cannot determine format of input "_s)) return decodingFailure(words);
    return std::nullopt;
}

// It ends well, as it sees it, and with an exit code that says nothing.
Sentence endedFromOutside(const Words &words, const ResizeTarget &)
{
    const auto received = words.beginWith(u"Exiting normally, received signal (\\d+)\\."_s);
    if (received.hasMatch()) return signalSentence(received.captured(1).toInt());
    if (words.haveBegun(u"Received > 3 system signals, hard exiting"_s)) return signalSentence(SIGTERM);
    return std::nullopt;
}

} // namespace

std::optional<QString> knownFailure(const QStringList &lines, const ResizeTarget &target)
{
    const Words words(lines);
    // A decoder that could not be opened is told of with the words for files, too.
    for (const auto failure : {spaceFailure, codecFailure, accessFailure, endedFromOutside, sizeFailure,
                               memoryFailure, damageFailure}) {
        if (Sentence found = failure(words, target)) return found;
    }
    return std::nullopt;
}

QString signalSentence(int signal)
{
    switch (signal) {
    case SIGKILL:
        return u"ffmpeg was killed by the system or by another program."_s;
    case SIGTERM:
    case SIGINT:
    case SIGHUP:
    case SIGQUIT:
        return u"ffmpeg was ended by another program."_s;
    case SIGXFSZ:
        return u"The new video is larger than the limit for files (ulimit -f) allows."_s;
    case SIGXCPU:
        return u"ffmpeg needed more time of the processor than the limit (ulimit -t) allows."_s;
    case SIGPIPE:
        return u"ffmpeg ended because nobody reads any more what it writes."_s;
    case SIGSEGV:
    case SIGABRT:
    case SIGFPE:
    case SIGBUS:
    case SIGILL:
    case SIGTRAP:
    case SIGSYS:
        return u"ffmpeg crashed (signal %1)."_s.arg(signal);
    default:
        return u"ffmpeg was ended by signal %1."_s.arg(signal);
    }
}

} // namespace tessaly
