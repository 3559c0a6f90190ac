#include "support/test_case.h"

#include <QHashSeed>
#include <QRegularExpression>
#include <QStandardPaths>

namespace tessaly::test {

void TestCase::init()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void prepareProcess()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QHashSeed::setDeterministicGlobalSeed();
    QStandardPaths::setTestModeEnabled(true);
}

} // namespace tessaly::test
