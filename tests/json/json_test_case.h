// What the tests of the JSON values share.
#pragma once

#include "support/test_case.h"

#include <QByteArray>
#include <QString>
#include <clocale>
#include <string>
#include <string_view>

namespace tessaly::test {

inline std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

// For comparisons that show both texts when they differ.
inline QString shown(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Every program of these tests also runs where the decimal separator is a comma.
class JSONTestCase : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        std::setlocale(LC_ALL, "");
        const QByteArray expected =
            qEnvironmentVariable("TESSALY_DECIMAL_SEPARATOR", QStringLiteral(".")).toUtf8();
        QCOMPARE(QByteArray(std::localeconv()->decimal_point), expected);
    }
};

} // namespace tessaly::test
