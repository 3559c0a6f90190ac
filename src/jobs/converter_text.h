// What a converter said on standard error, as lines for people.
#pragma once

#include "jobs/reading_errors.h"

#include <QByteArray>
#include <QStringList>

namespace tessaly {

// Gathers what a converter writes while it runs. However much it writes, little is kept: an input that is
// damaged all along makes hundreds of megabytes. One thread at a time.
class ConverterText
{
public:
    static constexpr qsizetype keptText = 65536; // bytes, at the head and at the tail

    // The next piece of standard error, cut anywhere.
    void add(const QByteArray &chunk);

    // All of it, or its head and its tail of whole lines, with a line break between them.
    QByteArray text() const;

    // Errors in the input's data, of the lines that have ended; see ReadingErrors.
    qint64 readingErrors() const { return m_errors.count(); }

private:
    void keep(const QByteArray &chunk);
    void readLines(QByteArrayView chunk);
    void endLine();

    QByteArray m_head;
    QByteArray m_tail;
    bool m_hasGap = false; // between them
    QByteArray m_line;     // the last one, not ended
    ReadingErrors m_errors;
};

// The lines in order, ended by line feeds or carriage returns, without colours, other control characters and
// blank lines. What is not UTF-8 is replaced.
QStringList converterLines(const QByteArray &text);

// The line without the part of the converter that speaks: "[libx264 @ 0x55…] too small" gives "too small".
QString withoutSpeaker(const QString &line);

// Without the lines at their head in which the converter tells of itself.
QStringList withoutBanner(const QStringList &lines);

// The last lines, joined by line feeds, without that head, progress and encoding statistics: those would push
// out the errors.
QString lastConverterLines(const QStringList &lines);

// The last line that says something about what went wrong, without its speaker; empty when none does.
QString lastMeaningfulLine(const QStringList &lines);

} // namespace tessaly
