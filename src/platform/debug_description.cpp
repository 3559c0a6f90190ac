#include "platform/debug_description.h"

#include <QTextBoundaryFinder>

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

QString numberEscape(char32_t character, int digits)
{
    return u"\\u{"_s + QString::number(uint{character}, 16).toUpper().rightJustified(digits, u'0') + u'}';
}

// Empty when the character stands for itself.
QString escape(char32_t character)
{
    switch (character) {
    case U'"':
        return u"\\\""_s;
    case U'\'':
        return u"\\'"_s;
    case U'\\':
        return u"\\\\"_s;
    case U'\n':
        return u"\\n"_s;
    case U'\r':
        return u"\\r"_s;
    case U'\t':
        return u"\\t"_s;
    case U'\0':
        return u"\\0"_s;
    default:
        break;
    }
    const bool isControl = character < 0x20 || character == 0x7F;
    return isControl ? numberEscape(character, 2) : QString();
}

bool wouldJoinWhatPrecedes(char32_t character)
{
    const QString pair = u'x' + QString::fromUcs4(&character, 1);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, pair);
    finder.setPosition(1);
    return !finder.isAtBoundary();
}

} // namespace

QString debugDescription(const QString &text)
{
    QString description = u"\""_s;
    bool afterSyntax = true; // the opening quote, or an escape
    for (const uint codePoint : text.toUcs4()) {
        const char32_t character = codePoint;
        QString written = escape(character);
        if (written.isEmpty() && afterSyntax && wouldJoinWhatPrecedes(character))
            written = numberEscape(character, character > 0xFFFF ? 8 : 4);
        afterSyntax = !written.isEmpty();
        description += afterSyntax ? written : QString::fromUcs4(&character, 1);
    }
    return description + u'"';
}

QString listDescription(const QStringList &list)
{
    QStringList elements;
    for (const QString &element : list)
        elements += debugDescription(element);
    return u'[' + elements.join(u", "_s) + u']';
}

} // namespace tessaly
