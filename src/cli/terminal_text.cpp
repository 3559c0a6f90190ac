#include "cli/terminal_text.h"

namespace tessaly {

using namespace Qt::StringLiterals;

namespace {

bool turnsTheDirection(QChar c)
{
    const char16_t code = c.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool isHarmless(QChar c)
{
    const QChar::Category category = c.category();
    return category != QChar::Other_Control && category != QChar::Separator_Line &&
           category != QChar::Separator_Paragraph && !turnsTheDirection(c);
}

} // namespace

QString terminalText(const QString &text)
{
    QString line;
    for (const QChar c : text) {
        if (isHarmless(c)) {
            line += c;
        } else {
            line += u"\\u{"_s + QString::number(c.unicode(), 16).toUpper().rightJustified(2, u'0') + u'}';
        }
    }
    return line;
}

} // namespace tessaly
