#include "jobs/utils.h"

#include "platform/printing.h"

#include <QRegularExpression>

#include <charconv>
#include <cmath>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

constexpr auto anyCharacter = R"([^\n\x0B\f\r\x{85}\x{2028}\x{2029}])"_L1;
constexpr auto textEnd = R"((?!(?<=\r)\n)(?=(?:\r\n|[\n\x0B\f\r\x{85}\x{2028}\x{2029}])?\z))"_L1;

// The length of the quotation, escape or class that begins at this place; 0 when none does. A "." or "$"
// inside stands for itself.
qsizetype literalLength(QStringView pattern)
{
    if (pattern.startsWith(uR"(\Q)")) {
        const qsizetype end = pattern.indexOf(uR"(\E)"_s);
        return end < 0 ? pattern.size() : end + 2;
    }
    if (pattern.startsWith(u'\\')) return qMin<qsizetype>(2, pattern.size());
    if (!pattern.startsWith(u'[')) return 0;
    qsizetype at = pattern.startsWith(u"[^") ? 2 : 1;
    if (at < pattern.size() && pattern.at(at) == u']') ++at;
    while (at < pattern.size() && pattern.at(at) != u']') {
        const QStringView rest = pattern.sliced(at);
        const qsizetype named = rest.startsWith(u"[:") ? rest.indexOf(u":]"_s) : -1;
        at += named > 0 ? named + 2 : qMax<qsizetype>(1, rest.startsWith(u'\\') ? 2 : 1);
    }
    return qMin(at + 1, pattern.size());
}

// The library below knows only the line feed as a line terminator, while the converter's lines end in
// carriage returns.
QString withPlatformTerminators(const QString &pattern)
{
    QString result;
    for (qsizetype at = 0; at < pattern.size();) {
        const qsizetype literal = literalLength(QStringView(pattern).sliced(at));
        if (literal > 0) {
            result += QStringView(pattern).sliced(at, literal);
            at += literal;
            continue;
        }
        const QChar c = pattern.at(at++);
        if (c == u'.')
            result += anyCharacter;
        else if (c == u'$')
            result += textEnd;
        else
            result += c;
    }
    return result;
}

std::optional<double> numberFrom(QStringView piece)
{
    const QByteArray text = piece.toUtf8();
    double value = 0;
    const auto [end, error] = std::from_chars(text.cbegin(), text.cend(), value);
    if (error != std::errc() || end != text.cend() || !std::isfinite(value)) return std::nullopt;
    return value;
}

} // namespace

QStringList Utils::matchesForRegex(const QString &pattern, const QString &text)
{
    const QRegularExpression regex(withPlatformTerminators(pattern));
    if (!regex.isValid()) {
        print(u"invalid regex: The value “%1” is invalid."_s.arg(pattern));
        return {};
    }
    QStringList found;
    for (auto matches = regex.globalMatch(text); matches.hasNext();)
        found += matches.next().captured(0);
    return found;
}

std::optional<double> Utils::secondsFromTimestamp(const QString &text)
{
    const QStringList halves = text.split(u'.', Qt::SkipEmptyParts);
    if (halves.isEmpty()) return std::nullopt;
    const QStringList hms = halves.first().split(u':', Qt::SkipEmptyParts);
    if (hms.size() < 2) return std::nullopt;
    const auto centiseconds = numberFrom(halves.last());
    const auto hours = numberFrom(hms.first());
    const auto minutes = numberFrom(hms.at(1));
    const auto seconds = numberFrom(hms.last());
    if (!centiseconds || !hours || !minutes || !seconds) return std::nullopt;
    return *hours * 3600 + *minutes * 60 + *centiseconds / 100 + *seconds;
}

} // namespace tessaly
