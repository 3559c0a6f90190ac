// A message bus of the test's own, on which no program of the desktop answers.
#pragma once

#include "support/test_case.h"

#include <QDBusConnection>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace tessaly::test {

class PrivateBus
{
public:
    // False when the bus does not start.
    bool start()
    {
        QFile config(m_folder.filePath(QStringLiteral("bus.conf")));
        if (!config.open(QIODevice::WriteOnly)) return false;
        config.write("<busconfig><type>session</type><listen>unix:dir=" + QFile::encodeName(m_folder.path()) +
                     "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
                     "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                     "<allow own=\"*\"/></policy></busconfig>");
        config.close();
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                        QStringLiteral("--config-file=") + config.fileName()});
        while (!m_daemon.canReadLine()) {
            if (!m_daemon.waitForReadyRead(waitLimit)) return false;
        }
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
        return true;
    }

    QDBusConnection connection(const QString &name) const
    {
        return QDBusConnection::connectToBus(m_address, name);
    }

    const QString &address() const { return m_address; }

    ~PrivateBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished(waitLimit);
    }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
};

} // namespace tessaly::test
