// A job whose converter has ended.
#pragma once

#include "jobs/failure_report.h"

namespace tessaly::test {

using namespace Qt::StringLiterals;

inline const auto written = u"/videos/saved/out.mp4"_s;

inline JobEnd endedWith(int code, const QByteArray &text = {})
{
    return {{RunOutcome::End::ended, code, {}, text}, true, {written, 320, 180}};
}

} // namespace tessaly::test
