#include "jobs/resize_job.h"

#include "jobs/progress.h"
#include "jobs/resize_arguments.h"
#include "platform/bundle.h"

#include <QFileInfo>
#include <QStorageInfo>

#include <utility>

namespace tessaly {

using namespace Qt::StringLiterals;
using End = ProcessOutcome::End;

namespace {

// A converter that finds no space for its last words may end as if all were well.
bool diskIsFullFor(const QString &path)
{
    constexpr qint64 tooLittle = 65536; // bytes; the converter writes half of that at once
    const QString written = QFileInfo(path).canonicalFilePath(); // links lead elsewhere
    const QStorageInfo disk(QFileInfo(written.isEmpty() ? path : written).path());
    return disk.isValid() && disk.bytesAvailable() < tooLittle;
}

} // namespace

ResizeJob::ResizeJob(std::shared_ptr<const FileProbe> input, ResizeTarget target, QStringList arguments)
    : m_input(std::move(input)), m_target(std::move(target)), m_arguments(std::move(arguments))
{}

ResizeJob::ResizeJob(std::shared_ptr<const FileProbe> input, ResizeTarget target)
    : m_input(std::move(input)),
      m_target(std::move(target)),
      m_arguments(buildResizeArguments(*m_input, *m_input->fileFullPath, m_target.path, m_target.width,
                                       m_target.height))
{}

void ResizeJob::convert(const Progress &progress)
{
    m_guard.emplace(m_target.path, *m_input->fileFullPath);
    const std::optional<QString> converter = pathForResource(u"creator"_s);
    if (!converter) {
        m_outcome = {End::failedToStart, 0, u"ffmpeg is missing."_s};
        return;
    }
    const auto onChunk = [&](const QByteArray &chunk) { handleConverterOutput(chunk, progress); };
    m_outcome =
        m_converter.run(*converter, m_arguments, Reading::standardError, onChunk,
                        {.whenProgramEnds = programEndLimit}, progress.tick, placesForFile(m_target.path));
}

void ResizeJob::handleConverterOutput(const QByteArray &chunk, const Progress &progress)
{
    m_guard->look(m_converter.processId());
    m_text.add(chunk);
    const std::optional<double> percent = percentOfChunk(chunk, m_input->duration);
    if (percent && progress.percent) progress.percent(*percent);
    const bool hasDuration = m_input->duration > 0;
    const std::optional<double> seconds = hasDuration ? std::nullopt : secondsOfChunk(chunk);
    if (seconds && progress.converted) progress.converted(*seconds);
}

JobEnd ResizeJob::end(const FileProbe &output)
{
    m_hasEnded = true;
    if (m_converter.stopIsRequested() || runsAreEnding()) return JobCancelled{clearUp()};

    const bool endedWell = m_outcome.succeeded();
    const ConverterEnd end{.outcome = m_outcome,
                           .text = m_text.text(),
                           .readingErrors = m_text.readingErrors(),
                           .target = m_guard->target(endedWell),
                           .diskIsFull = diskIsFullFor(m_target.path)};
    if (std::optional<JobFailed> failure = failureOf(end, m_target, output)) {
        if (const std::optional<QString> leftover = clearUp()) failure->sentence += u' ' + *leftover;
        return *failure;
    }
    return JobDone{output, remarksOn(end, *m_input, output), output.proberFailure};
}

JobEnd ResizeJob::run(const Progress &progress)
{
    convert(progress);
    return end(FileProbe(m_target.path));
}

std::optional<QString> ResizeJob::clearUp() const
{
    if (!m_guard || m_guard->removeWhatWasWritten()) return std::nullopt;
    return u"What was written of the new video could not be removed: "_s + m_target.path;
}

} // namespace tessaly
