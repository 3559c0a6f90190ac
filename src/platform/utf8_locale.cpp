#include "platform/utf8_locale.h"

#include <QByteArray>

#include <clocale>
#include <langinfo.h>

namespace tessaly {

void useUtf8Locale()
{
    std::setlocale(LC_ALL, "");
    if (QByteArray(nl_langinfo(CODESET)).toUpper() != "UTF-8") qputenv("LC_ALL", "C.UTF-8");
}

} // namespace tessaly
