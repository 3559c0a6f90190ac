#include "probe/metadata.h"

namespace tessaly {

using namespace Qt::StringLiterals;

std::vector<std::map<QString, QString>> metadataOf(const JSON &tags)
{
    // "media_type" 9 is the iTunes number for a film.
    constexpr std::int64_t filmMediaType = 9;
    const auto entry = [](const QString &label, const QString &value) {
        return std::map<QString, QString>{{u"key"_s, label}, {u"value"_s, value}};
    };
    const auto text = [&tags](const char *tag) { return QString::fromStdString(tags[tag].stringValue()); };
    return {
        entry(u"Title"_s, text("title")),
        entry(u"Tagline"_s, text("description")),
        entry(u"Synopsis"_s, text("Synopsis")),
        entry(u"Release Date"_s, text("date")),
        entry(u"Genre"_s, text("genre")),
        entry(u"HD"_s, tags["hd_video"].intValue() == 1 ? u"Yes"_s : u"No"_s),
        entry(u"Media Kind"_s, tags["media_type"].intValue() == filmMediaType ? u"Movie"_s : QString()),
        entry(u"Composer"_s, text("Composer")),
        entry(u"Rating"_s, text("iTunEXTC")),
        entry(u"Encoder"_s, text("Encoder")),
        entry(u"Copyright"_s, text("Copyright")),
        entry(u"Comment"_s, text("Comment")),
    };
}

} // namespace tessaly
