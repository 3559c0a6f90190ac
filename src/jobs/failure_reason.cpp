#include "jobs/failure_reason.h"

#include "jobs/converter_text.h"
#include "jobs/even_size.h"

#include <QRegularExpression>

#include <algorithm>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

using Reason = std::optional<QString>;

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

Reason spaceReason(const Words &words, const ResizeTarget &)
{
    if (words.endIn("No space left on device"_L1))
        return u"The disk is full: there is no space left for the new video."_s;
    if (words.endIn("Disk quota exceeded"_L1))
        return u"Your share of the disk is used up: there is no space left for the new video."_s;
    if (words.endIn("File too large"_L1)) return u"The new video is larger than the disk allows."_s;
    return std::nullopt;
}

// The system's word for why a file could not be opened, and what it means for either file.
struct AccessWords
{
    QLatin1StringView system;
    QLatin1StringView target;
    QLatin1StringView input; // empty: then it is something else
};

constexpr AccessWords accessWords[] = {
    {"Permission denied"_L1, "You do not have permission to write the new video there."_L1,
     "You do not have permission to read the video."_L1},
    {"Operation not permitted"_L1, "You do not have permission to write the new video there."_L1, {}},
    {"Read-only file system"_L1, "The new video cannot be written there: that disk is read-only."_L1, {}},
    {"Is a directory"_L1, "The name of the new video belongs to a folder."_L1, {}},
    {"No such file or directory"_L1, "The folder for the new video is no longer there."_L1,
     "The video is no longer there."_L1},
    {"Not a directory"_L1, "The folder for the new video is no longer there."_L1,
     "The video is no longer there."_L1},
    {"File name too long"_L1, "The name of the new video is too long."_L1, {}},
};

Reason accessReason(const Words &words, const ResizeTarget &target)
{
    // A line break in the path is one in the text, too.
    static const QRegularExpression breaks(u"[\\r\\n]"_s);
    const QString name = target.path.split(breaks).last();
    for (const AccessWords &access : accessWords) {
        for (const QString &line : words.said()) {
            if (!line.endsWith(": "_L1 + access.system)) continue;
            const bool isTarget =
                line == name + ": "_L1 + access.system || line.startsWith("Error opening output"_L1);
            const QLatin1StringView meaning = isTarget ? access.target : access.input;
            if (!meaning.isEmpty()) return QString(meaning);
        }
    }
    return std::nullopt;
}

QString evenSizeAdvice(qint64 width, qint64 height)
{
    const auto even = [](qint64 side) { return evenSize(static_cast<double>(side)).value_or(side); };
    return u"A video of "_s + sizeText(width, height) + u" cannot be made: choose an even size, such as "_s +
           sizeText(even(width), even(height)) + u'.';
}

Reason sizeReason(const Words &words, const ResizeTarget &target)
{
    const auto odd = words.beginWith(u"(?:width|height) not divisible by 2 \\((\\d+)x(\\d+)\\)"_s);
    if (odd.hasMatch()) return evenSizeAdvice(odd.captured(1).toLongLong(), odd.captured(2).toLongLong());
    // Decoders say the same of damaged pictures, encoders go on to give up.
    const bool encoderRefused =
        words.haveBegun(u"(Error initializing output stream \\S+ -- )?Error while opening encoder"_s);
    const bool sizeRefused =
        words.haveBegun(u"Picture size \\d+x\\d+ is invalid|invalid width x height \\("_s);
    if ((encoderRefused && sizeRefused) ||
        words.haveBegun(u"Failed to configure output pad on Parsed_scale"_s))
        return u"A video of "_s + sizeText(target.width, target.height) +
               u" is too large to be made: choose a smaller size."_s;
    if (encoderRefused && (isOdd(target.width) || isOdd(target.height)))
        return evenSizeAdvice(target.width, target.height);
    return std::nullopt;
}

Reason memoryReason(const Words &words, const ResizeTarget &)
{
    if (!words.endIn("Cannot allocate memory"_L1) &&
        !words.haveBegun(u"x26[45] \\[error\\]: malloc of size"_s))
        return std::nullopt;
    return u"There is not enough memory for a video of this size."_s;
}

Reason codecReason(const Words &words, const ResizeTarget &)
{
    const auto missing = words.beginWith(u"Decoder \\(codec .*\\) not found for input stream #(\\d+:\\d+)|"
                                         "Decoding requested, but no decoder found for"_s);
    const auto failed = words.beginWith(u"Error while opening decoder for input stream #(\\d+:\\d+)"_s);
    if (missing.hasMatch() || failed.hasMatch()) {
        const QString stream = missing.captured(1) + failed.captured(1);
        const bool isSound = stream.isEmpty() ? words.wrote(u"^\\[aist#.*no decoder found for"_s)
                                              : words.wrote(u"^ +Stream #"_s + stream + u"\\b.*: Audio:"_s);
        return (missing.hasMatch() ? u"The converter has no decoder for "_s
                                   : u"The converter cannot decode "_s) +
               (isSound ? u"the sound of this video."_s : u"this video."_s);
    }
    if (words.haveBegun(
            u"Unknown encoder|Automatic encoder selection failed|Encoder \\(codec .*\\) not found"_s))
        return u"The converter has no encoder for MP4 videos."_s;
    return std::nullopt;
}

Reason damageReason(const Words &words, const ResizeTarget &)
{
    if (words.wrote(
            u"^\\[[^\\]]+ @ 0x[0-9a-f]+\\] (?!Error opening ).*(\\b[Ee]ncrypted\\b|encryption info|decrypt|DRM protected)"_s))
        return u"The video is encrypted: it cannot be converted."_s;
    if (words.haveBegun(u"Could not write header"_s)) return std::nullopt; // decoded well enough
    const bool invalid = words.endIn("Invalid data found when processing input"_L1);
    if (invalid && !words.haveBegun(u"Stream mapping:"_s))
        return u"The video is damaged, or it is no video at all."_s;
    if (invalid || words.haveBegun(u"Cannot determine format of input stream"_s))
        return u"The video is damaged or encrypted: the converter could not decode it."_s;
    return std::nullopt;
}

} // namespace

std::optional<QString> knownFailureReason(const QStringList &lines, const ResizeTarget &target)
{
    const Words words(lines);
    for (const auto reason :
         {spaceReason, accessReason, sizeReason, memoryReason, codecReason, damageReason}) {
        if (Reason found = reason(words, target)) return found;
    }
    return std::nullopt;
}

} // namespace tessaly
