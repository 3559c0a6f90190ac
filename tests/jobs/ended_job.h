// A job whose converter has ended badly.
#pragma once

#include "jobs/job_end.h"

namespace tessaly::test {

using namespace Qt::StringLiterals;

inline const auto written = u"/videos/saved/out.mp4"_s;

struct EndedJob
{
    ConverterEnd converter;
    ResizeTarget target{written, 320, 180};
};

inline EndedJob endedWith(int code, const QByteArray &text)
{
    return {.converter = {.outcome = {ProcessOutcome::End::exited, code, {}}, .text = text}};
}

inline std::optional<JobFailed> failureOfJob(const EndedJob &job, const FileProbe &output)
{
    return failureOf(job.converter, job.target, output);
}

} // namespace tessaly::test
