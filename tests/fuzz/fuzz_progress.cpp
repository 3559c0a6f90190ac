// Whatever a converter says, line by line: a percentage comes only from a chunk of valid UTF-8 with its
// trigger, and is a number; the line below the bar has its form and never loses percent; a failure has a
// sentence, and details that can be shown.
#include "jobs/converter_text.h"
#include "jobs/job_end.h"
#include "jobs/progress.h"
#include "jobs/utils.h"
#include "require.h"

#include <QRegularExpression>

#include <cmath>

using namespace tessaly;
using namespace Qt::StringLiterals;

namespace {

void checkChunk(const QByteArray &chunk, const std::optional<double> &percent)
{
    if (!percent) return;
    REQUIRE(std::isfinite(*percent));
    REQUIRE(chunk.contains("time="));
    REQUIRE(chunk.isValidUtf8());
}

// Chunks that are no readings are the seconds in between.
void checkRemainingTime(const QByteArrayList &chunks)
{
    static const QRegularExpression form(
        u"\\A((100|[1-9]?\\d) %( - (about [1-9]\\d? (second|minute|hour)s? left|no progress for \\d+ "
        "(s|minutes)|finishing))?|no progress for \\d+ (s|minutes))\\z"_s);
    RemainingTime line;
    std::chrono::milliseconds elapsed(0);
    int shown = 0;
    for (const QByteArray &chunk : chunks) {
        elapsed += std::chrono::milliseconds(chunk.size() * 50);
        const std::optional<double> percent = percentOfChunk(chunk, 100);
        checkChunk(chunk, percent);
        if (percent)
            line.addReading(*percent, elapsed);
        else
            line.tick(elapsed);
        if (line.text().isEmpty()) continue;
        const auto match = form.match(line.text());
        REQUIRE(match.hasMatch());
        REQUIRE(match.captured(2).toInt() >= shown);
        shown = match.captured(2).toInt();
    }
}

void checkConverted(const QByteArrayList &chunks)
{
    static const QRegularExpression form(
        u"\\A(\\d\\d:[0-5]\\d:[0-5]\\d converted( - )?)?(no progress for \\d+ (s|minutes))?\\z"_s);
    RemainingTime line;
    std::chrono::milliseconds elapsed(0);
    double converted = 0;
    for (const QByteArray &chunk : chunks) {
        elapsed += std::chrono::milliseconds(chunk.size() * 50);
        if (const auto seconds = secondsOfChunk(chunk)) line.addConverted(*seconds, elapsed);
        line.tick(elapsed);
        REQUIRE(form.match(line.text()).hasMatch());
        REQUIRE(line.converted() >= converted);
        converted = line.converted();
    }
}

// However the text is cut into chunks.
void checkText(const QByteArray &text)
{
    ConverterText whole;
    whole.add(text);
    ConverterText pieces;
    for (qsizetype at = 0; at < text.size(); at += 7)
        pieces.add(text.mid(at, 7));
    REQUIRE(whole.text() == pieces.text());
    REQUIRE(whole.readingErrors() == pieces.readingErrors());
    REQUIRE(whole.readingErrors() >= 0);
    REQUIRE(whole.text().size() <= 2 * ConverterText::keptText + 1);
}

void checkFailure(const QByteArray &text)
{
    static const QRegularExpression controls(u"[\\x00-\\x08\\x0B-\\x1F\\x7F]"_s);
    const ConverterEnd end{.outcome = {ProcessOutcome::End::exited, 1, {}}, .text = text};
    const auto failure = failureOf(end, {u"/videos/out.mp4"_s, 321, 180}, FileProbe());
    REQUIRE(failure);
    REQUIRE(!failure->sentence.trimmed().isEmpty());
    REQUIRE(!failure->sentence.contains(u'\n'));
    REQUIRE(!(failure->sentence + failure->details).contains(controls));
    REQUIRE(failure->details.count(u'\n') < 30);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    Utils::secondsFromTimestamp(QString::fromUtf8(text));
    checkChunk(text, percentOfChunk(text, 100));
    checkRemainingTime(text.split('\n'));
    checkConverted(text.split('\n'));
    checkText(text);
    checkFailure(text);
    return 0;
}
