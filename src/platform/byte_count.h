// Sizes of files as text for people: decimal units, as a file browser shows them.
#pragma once

#include <QLocale>
#include <QString>

namespace tessaly {

// 0 is "Zero KB", 1234567 is "1.2 MB". Rounded to at most no (KB), one (MB) or two (GB and larger) fraction
// digits, halves away from zero; zeros at the end are left out. Unit words are English and follow one ASCII
// space; the decimal separator is the locale's.
QString byteCountText(qint64 bytes, const QLocale &locale = QLocale());

} // namespace tessaly
