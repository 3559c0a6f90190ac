// The ground of the tests of the temporary folder: a base of their own, files that must never be touched, and
// other copies of the program.
#pragma once

#include "platform/temporary_directory.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace tessaly::test {

using namespace Qt::StringLiterals;

inline void makeFile(const QString &path)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
}

inline bool isPrivateFolder(const QString &path)
{
    struct stat facts = {};
    return lstat(QFile::encodeName(path).constData(), &facts) == 0 && S_ISDIR(facts.st_mode) &&
           facts.st_uid == geteuid() && (facts.st_mode & 07777) == 0700;
}

inline QStringList contents(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

// Another copy of the program.
class Copy
{
public:
    Copy(const QString &base, const QString &mode)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TMPDIR"_s, base);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TESSALY_PLATFORM_HELPER), {mode});
        while (!process.canReadLine() && process.waitForReadyRead(waitLimit)) {
        }
        folder = QString::fromUtf8(process.readLine()).chopped(1);
    }
    ~Copy() { kill(); }

    // As a crash would.
    void kill()
    {
        process.kill();
        process.waitForFinished(waitLimit);
    }

    bool endInTheOrdinaryWay()
    {
        process.closeWriteChannel();
        return process.waitForFinished(waitLimit) && process.exitCode() == 0;
    }

    QString folder;

private:
    QProcess process;
};

class WorkspaceTestCase : public TestCase
{
    Q_OBJECT

protected Q_SLOTS:
    void init()
    {
        TestCase::init();
        place.reset(new QTemporaryDir);
        base = place->filePath(u"base"_s);
        outside = place->filePath(u"outside"_s);
        QVERIFY(QDir().mkdir(base) && QDir().mkdir(outside));
        makeFile(outside + "/file"_L1);
        userFolder = base + "/tessaly-"_L1 + QString::number(geteuid());
        setTemporaryRoot(base);
    }

    void cleanup()
    {
        QVERIFY(QFile::exists(outside + "/file"_L1));
        setTemporaryRoot(QString());
    }

protected:
    std::unique_ptr<QTemporaryDir> place;
    QString base;
    QString outside;
    QString userFolder;
};

} // namespace tessaly::test
