#include "jobs/completion_text.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QString line(const QString &title, const FileProbe &resolution, const FileProbe &size)
{
    return title + u": "_s + QString::number(resolution.videoWidth.value_or(0)) + u" x "_s +
           QString::number(resolution.videoHeight.value_or(0)) + u" ("_s +
           size.fileSizeHuman.value_or(u"Unknown File Size"_s) + u')';
}

} // namespace

QString completionText(const FileProbe &input, const FileProbe &output, const FileProbe &outputAgain)
{
    return line(u"Input Resolution"_s, input, input) + u'\n' +
           line(u"Output Resolution"_s, outputAgain, output);
}

} // namespace tessaly
