// What a converter said on standard error, as lines for people.
#pragma once

#include <QByteArray>
#include <QStringList>

namespace tessaly {

// The lines in order, ended by line feeds or carriage returns, without colours, other control characters and
// blank lines. What is not UTF-8 is replaced.
QStringList converterLines(const QByteArray &text);

// The line without the part of the converter that speaks: "[libx264 @ 0x55…] too small" gives "too small".
QString withoutSpeaker(const QString &line);

// The last lines, joined by line feeds, without progress and encoding statistics: those would push out the
// errors.
QString lastConverterLines(const QStringList &lines);

// The last line that says something about what went wrong, without its speaker; empty when none does.
QString lastMeaningfulLine(const QStringList &lines);

} // namespace tessaly
