#include "cli/resize_json.h"

#include "cli/member_writer.h"
#include "json/text_writer.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

// What was, or would have been, the new video.
std::optional<QString> writtenPath(const ResizeFile &file, const FileEnd &end)
{
    const bool hasOutput = file.output.path && !std::holds_alternative<Skipped>(end.outcome);
    return hasOutput ? std::optional(outputPath(file)) : std::nullopt;
}

QString outcomeName(const FileEnd &end)
{
    if (std::holds_alternative<JobDone>(end.outcome)) return u"done"_s;
    if (std::holds_alternative<Skipped>(end.outcome)) return u"skipped"_s;
    const bool isFailure =
        std::holds_alternative<JobFailed>(end.outcome) || std::holds_alternative<Refused>(end.outcome);
    return isFailure ? u"failed"_s : u"cancelled"_s;
}

struct Facts
{
    std::optional<qint64> width;
    std::optional<qint64> height;
    std::optional<quint64> bytes;
    std::optional<double> seconds;
};

Facts factsOf(const FileProbe *probe)
{
    if (!probe) return {};
    const bool hasDuration = probe->duration > 0;
    return {probe->videoWidth, probe->videoHeight, probe->fileSize,
            hasDuration ? std::optional(probe->duration) : std::nullopt};
}

// Why there is no new video, or what is left of it.
std::optional<QString> failureOf(const FileEnd &end)
{
    if (const auto *failed = std::get_if<JobFailed>(&end.outcome)) return failed->sentence;
    if (const auto *refused = std::get_if<Refused>(&end.outcome)) return refused->sentence;
    if (const auto *skipped = std::get_if<Skipped>(&end.outcome)) return skipped->sentence;
    if (const auto *cancelled = std::get_if<JobCancelled>(&end.outcome)) return cancelled->leftover;
    return std::nullopt;
}

std::optional<QString> detailsOf(const FileEnd &end)
{
    QString details;
    if (const auto *failed = std::get_if<JobFailed>(&end.outcome)) details = failed->details;
    if (const auto *skipped = std::get_if<Skipped>(&end.outcome)) details = skipped->details;
    return details.isEmpty() ? std::nullopt : std::optional(details);
}

} // namespace

QByteArray resizeJson(const ResizeFile &file, const FileEnd &end)
{
    const auto *done = std::get_if<JobDone>(&end.outcome);
    const Facts input = factsOf(end.input.get());
    const Facts output = factsOf(done ? &done->output : nullptr);
    TextWriter sink;
    MemberWriter members(sink);
    sink.beginDictionary();
    members.member("input", file.input.path.value_or(file.input.shown));
    members.member("output", writtenPath(file, end));
    members.member("outcome", outcomeName(end));
    members.member("inputWidth", input.width);
    members.member("inputHeight", input.height);
    members.member("inputBytes", input.bytes);
    members.member("inputSeconds", input.seconds);
    members.member("outputWidth", output.width);
    members.member("outputHeight", output.height);
    members.member("outputBytes", output.bytes);
    members.member("outputSeconds", output.seconds);
    members.member("secondsTaken", end.seconds);
    sink.key("remarks");
    sink.beginArray();
    for (const QString &sentence : remarksOf(end))
        sink.string(sentence.toStdString());
    sink.endArray();
    members.member("failure", failureOf(end));
    members.member("details", detailsOf(end));
    sink.endDictionary();
    return QByteArray::fromStdString(sink.text());
}

} // namespace tessaly
