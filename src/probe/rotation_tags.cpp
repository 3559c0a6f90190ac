#include "probe/rotation_tags.h"

namespace tessaly {

namespace {

// The tag's text for a display matrix rotation; nothing for an angle that is no quarter or half turn (a
// matrix of zeros is reported as the smallest 64-bit integer).
std::optional<std::string> tagForRotation(const JSON &rotation)
{
    const std::optional<std::int64_t> degrees = rotation.int_();
    if (!degrees || rotation != JSON(*degrees)) return std::nullopt;
    switch (*degrees) {
    case -90:
        return "90";
    case 90:
        return "270";
    case 180:
    case -180:
        return "180";
    default:
        return std::nullopt;
    }
}

std::optional<std::string> tagFromDisplayMatrix(const JSON &stream)
{
    for (const JSON &entry : stream["side_data_list"].arrayValue()) {
        if (entry["side_data_type"] != JSON("Display Matrix")) continue;
        if (std::optional<std::string> tag = tagForRotation(entry["rotation"])) return tag;
    }
    return std::nullopt;
}

} // namespace

void restoreRotateTags(JSON &report)
{
    const std::vector<JSON> streams = report["streams"].arrayValue();
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const JSON tags = streams[i]["tags"];
        const bool hasTag = !tags["rotate"].error();
        if (hasTag) continue;
        const std::optional<std::string> tag = tagFromDisplayMatrix(streams[i]);
        if (!tag) continue;
        if (tags.type() != Type::dictionary) report.set({"streams", i, "tags"}, JSON(Object(Dictionary())));
        report.set({"streams", i, "tags", "rotate"}, *tag);
    }
}

} // namespace tessaly
