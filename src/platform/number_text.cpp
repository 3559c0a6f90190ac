#include "platform/number_text.h"

#include <QLocale>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QString notFinite(double value)
{
    if (std::isnan(value)) return u"nan"_s;
    return value < 0 ? u"-inf"_s : u"inf"_s;
}

template<class... Format>
QString writtenByLibrary(double value, Format... format)
{
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...).ptr;
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

// A finite value as ±0.DIGITS times ten to the power of pointPosition.
struct ShortestDigits
{
    QString sign;
    QString digits;
    int pointPosition;
};

ShortestDigits shortestDigits(double value)
{
    const QString text = writtenByLibrary(std::abs(value), std::chars_format::scientific);
    const qsizetype exponentMark = text.indexOf(u'e');
    return {std::signbit(value) ? u"-"_s : QString(), text.first(exponentMark).remove(u'.'),
            text.sliced(exponentMark + 1).toInt() + 1};
}

QString plainLayout(const ShortestDigits &number)
{
    const QString zerosBefore(qMax(0, 1 - number.pointPosition), u'0');
    const QString digits = zerosBefore + number.digits;
    const qsizetype wholeDigits = qMax(1, number.pointPosition);
    const QString whole = digits.first(qMin(wholeDigits, digits.size())).leftJustified(wholeDigits, u'0');
    const QString fraction = digits.sliced(qMin(wholeDigits, digits.size()));
    return number.sign + whole + u'.' + (fraction.isEmpty() ? u"0"_s : fraction);
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

qsizetype skipDigits(QStringView text, qsizetype from)
{
    while (from < text.size() && isDigit(text[from]))
        ++from;
    return from;
}

qsizetype skipSign(QStringView text, qsizetype from)
{
    return from < text.size() && (text[from] == u'+' || text[from] == u'-') ? from + 1 : from;
}

QStringView withoutLeadingBlanks(QStringView text)
{
    while (!text.isEmpty() && text.front().isSpace())
        text = text.sliced(1);
    return text;
}

// How much of the text can belong to a decimal number.
qsizetype lengthOfDecimal(QStringView text)
{
    qsizetype end = skipDigits(text, skipSign(text, 0));
    if (end < text.size() && text[end] == u'.') end = skipDigits(text, end + 1);
    if (end < text.size() && text[end].toLower() == u'e') {
        const qsizetype exponentStart = skipSign(text, end + 1);
        const qsizetype exponentEnd = skipDigits(text, exponentStart);
        if (exponentEnd > exponentStart) end = exponentEnd;
    }
    return end;
}

} // namespace

QString plainDecimal(double value)
{
    return std::isfinite(value) ? plainLayout(shortestDigits(value)) : notFinite(value);
}

QString generalText(double value)
{
    return std::isfinite(value) ? writtenByLibrary(value, std::chars_format::general, 16) : notFinite(value);
}

qint64 integerFromText(QStringView text)
{
    text = withoutLeadingBlanks(text);
    const qsizetype digitsStart = skipSign(text, 0);
    const qsizetype end = skipDigits(text, digitsStart);
    if (end == digitsStart) return 0;
    const bool isNegative = text.front() == u'-';
    const QByteArray number =
        (isNegative ? "-" : "") + text.sliced(digitsStart, end - digitsStart).toLatin1();
    qint64 value = 0;
    const auto result = std::from_chars(number.begin(), number.end(), value);
    if (result.ec == std::errc()) return value;
    return isNegative ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
}

double doubleFromText(QStringView text)
{
    text = withoutLeadingBlanks(text);
    // Unlike from_chars, this tells a number that is too large (an infinity) from one that is too small (0).
    // What remains of a text without digits, such as "-" or ".", gives 0 as well.
    return QLocale::c().toDouble(text.first(lengthOfDecimal(text)));
}

} // namespace tessaly
