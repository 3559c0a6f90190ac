#include "probe/file_facts.h"

#include "platform/byte_count.h"
#include "platform/printing.h"

#include <QFile>

#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>

namespace tessaly {

using namespace Qt::StringLiterals;

std::optional<quint64> fileSize(const QString &path)
{
    const std::filesystem::path file(QFile::encodeName(path).toStdString());
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (error) {
        print(u"Failed to get file attributes for local path: "_s + path + u" with error: "_s +
              QString::fromLocal8Bit(error.message().c_str()));
        return std::nullopt;
    }
    if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_directory(status)) {
        print(u"Failed to get a size attribute from path: "_s + path);
        return std::nullopt;
    }
    return static_cast<quint64>(QFile(path).size());
}

QString fileSizeHuman(const QString &path)
{
    const std::optional<quint64> size = fileSize(path);
    if (!size) return u"Unknown File Size"_s;
    return byteCountText(static_cast<qint64>(*size));
}

QString durationHuman(double seconds)
{
    constexpr double int64Bound = 9223372036854775808.0; // 2^63
    if (!std::isfinite(seconds) || seconds >= int64Bound || seconds < -int64Bound) return u"00:00:00.00"_s;

    const auto whole = static_cast<qint64>(seconds);
    std::array<char, 400> rounded{}; // the longest double has 309 digits before the point
    const auto end =
        std::to_chars(rounded.data(), rounded.data() + rounded.size(), seconds, std::chars_format::fixed, 2)
            .ptr;
    const QString fraction = QString::fromLatin1(rounded.data(), end - rounded.data()).section(u'.', 1, 1);

    const auto twoDigits = [](qint64 value) {
        return (value < 10 ? u"0"_s : QString()) + QString::number(value);
    };
    const QString hours = (whole < 36000 ? u"0"_s : QString()) + QString::number(whole / 3600);
    return hours + u':' + twoDigits((whole / 60) % 60) + u':' + twoDigits(whole % 60) + u'.' + fraction;
}

} // namespace tessaly
