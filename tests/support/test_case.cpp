#include "support/test_case.h"

#include <QCoreApplication>
#include <QHashSeed>
#include <QRegularExpression>
#include <QStandardPaths>

namespace tessaly::test {

void TestCase::init()
{
    // The platform without a display says of some window calls that it does not support them: true, and no
    // fault.
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support )")));
}

void prepareProcess()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char *bus : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(bus, "unix:path=/nonexistent/bus");
    // Against tests that hang; as ctest's, it has nothing to do with how fast the machine is.
    if (!qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT")) qputenv("QTEST_FUNCTION_TIMEOUT", "900000");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); // the developer's desktop may have its own
    QHashSeed::setDeterministicGlobalSeed();
    QStandardPaths::setTestModeEnabled(true);
}

} // namespace tessaly::test
