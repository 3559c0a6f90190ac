#include "jobs/output_name.h"

namespace tessaly {

using namespace Qt::StringLiterals;

QString withMp4Extension(const QString &path)
{
    const QString name = path.section(u'/', -1);
    if (name.isEmpty() || name == "."_L1 || name == ".."_L1) return path;
    if (name.endsWith(".mp4"_L1, Qt::CaseInsensitive)) return path;
    return path + (name.endsWith(u'.') ? "mp4"_L1 : ".mp4"_L1);
}

} // namespace tessaly
