// Keeps the computer awake, on the bus of this address, until it is killed.
#include "ui/sleep_inhibitor.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const tessaly::SleepInhibitor inhibitor(
        QStringLiteral("A test"),
        QDBusConnection::connectToBus(application.arguments().value(1), QStringLiteral("holder")));
    return QCoreApplication::exec();
}
