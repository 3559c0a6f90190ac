#include "platform/child_process.h"
#include "platform/confinement.h"
#include "platform/landlock.h"
#include "platform/system_call_filter.h"
#include "support/test_case.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTemporaryFile>

#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace tessaly::test {

namespace {

constexpr const char *confinementSwitch = "TESSALY_CONFINEMENT";

constexpr int byTheFilter = 0; // instead of a level of Landlock

void writeFile(const QString &path, const QByteArray &text)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(text), text.size());
}

// Names, kinds, modes and contents, but for the folder that may be written.
QStringList everythingBut(const QString &own, const QString &folder)
{
    QStringList all;
    for (const QFileInfo &entry :
         QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot)) {
        if (entry.fileName() == own) continue;
        QFile file(entry.filePath());
        const bool isFile = entry.isFile() && file.open(QIODevice::ReadOnly);
        all += u"%1 %2 %3"_s.arg(entry.filePath(), QString::number(entry.permissions().toInt(), 16),
                                 QString::fromUtf8(isFile ? file.readAll() : QByteArray()));
        if (entry.isDir()) all += everythingBut({}, entry.filePath());
    }
    return all;
}

QString output(const QString &program, const QStringList &arguments, const WritablePlaces &writable)
{
    QByteArray text;
    const ProcessOutcome outcome = ChildProcess().run(
        program, arguments, Reading::standardOutput, [&text](const QByteArray &chunk) { text += chunk; }, {},
        {}, writable);
    return outcome.succeeded() ? QString::fromUtf8(text).trimmed() : u"no success"_s;
}

rlim_t hardCoreLimit()
{
    rlimit limit{};
    ::getrlimit(RLIMIT_CORE, &limit);
    return limit.rlim_max;
}

// Lays out a folder and makes the attempt in it.
class Stage
{
public:
    Stage()
    {
        QDir root(m_root.path());
        for (const QString &name : {u"own"_s, u"theirs/folder"_s, u"home"_s})
            root.mkpath(name);
        writeFile(path(u"own/file"_s), "own");
        writeFile(path(u"theirs/file"_s), "theirs");
        QFile::link(u"../theirs/file"_s, path(u"own/link"_s));
        QFile::link(u"own"_s, path(u"link"_s));
    }

    QString path(const QString &name) const { return m_root.filePath(name); }
    QString attempt(const QString &name, const QByteArrayList &places = {"own"}) const
    {
        WritablePlaces writable;
        for (const QByteArray &place : places)
            writable.paths += QFile::encodeName(m_root.path()) + '/' + place;
        return output(QStringLiteral(TESSALY_INTRUDER), {name, m_root.path()}, writable);
    }
    QStringList whatIsTheirs() const { return everythingBut(u"own"_s, m_root.path()); }

private:
    QTemporaryDir m_root;
};

} // namespace

class ConfinementTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestCase::init();
        qunsetenv(confinementSwitch);
    }

    void refuses_data()
    {
        QTest::addColumn<int>("level"); // of Landlock, from which on it is refused
        QTest::addColumn<QString>("error");
        const auto byLandlock = [](const char *attempt, int level = 1, const char *error = "EACCES") {
            QTest::newRow(attempt) << level << QString::fromLatin1(error);
        };
        byLandlock("write-at-home");
        byLandlock("write-over-the-input");
        byLandlock("make-a-file-elsewhere");
        byLandlock("make-a-folder-elsewhere");
        byLandlock("open-for-both-elsewhere");
        byLandlock("append-elsewhere");
        byLandlock("write-through-a-link");
        byLandlock("make-a-link");
        byLandlock("rename-over", 2);
        byLandlock("rename-away", 2);
        byLandlock("hard-link-out", 2);
        byLandlock("hard-link-in", 2, "EXDEV");
        byLandlock("remove-elsewhere");
        byLandlock("remove-a-folder-elsewhere");
        byLandlock("make-a-pipe-elsewhere");
        byLandlock("write-to-shared-memory");
        byLandlock("shell-that-writes");
        byLandlock("open-the-parents-memory");
        byLandlock("signal-the-parent", 6, "EPERM");
        for (const char *attempt : {"truncate-by-name",
                                    "open-to-empty",
                                    "change-the-mode",
                                    "change-the-mode-by-a-newer-call",
                                    "change-the-owner",
                                    "change-the-flags",
                                    "freeze-a-file-system",
                                    "leave-a-device-behind",
                                    "make-a-device",
                                    "handle-of-a-file",
                                    "connect-over-tcp",
                                    "connect-over-udp",
                                    "connect-to-an-abstract-name",
                                    "connect-to-a-path",
                                    "send-to-a-path",
                                    "talk-to-the-kernel",
                                    "trace-the-parent",
                                    "read-the-parent",
                                    "limit-the-parent",
                                    "leave-the-session",
                                    "join-the-parents-group",
                                    "change-the-terminal",
                                    "take-the-terminal",
                                    "type-into-the-terminal",
                                    "set-the-clock",
                                    "mount",
                                    "unshare",
                                    "clone-a-user-namespace",
                                    "key",
                                    "io-uring",
                                    "bpf",
                                    "perf-event",
                                    "userfaultfd"})
            QTest::newRow(attempt) << byTheFilter << u"EPERM"_s;
        for (const char *attempt : {"clone3", "change-attributes-by-a-newer-call"})
            QTest::newRow(attempt) << byTheFilter << u"ENOSYS"_s;
    }

    // Without confinement the same attempt comes to something else, which shows that the test can fail.
    void refuses()
    {
        QFETCH(int, level);
        QFETCH(QString, error);
        const QString attempt = QString::fromLatin1(QTest::currentDataTag());
        if (landlockLevel() < level) QSKIP("This kernel's Landlock is of a lower level, or it has none.");
        if (level == byTheFilter && !systemCallFilter()) QSKIP("This kernel has no seccomp filters.");

        const Stage stage;
        const QStringList before = stage.whatIsTheirs();
        QCOMPARE(stage.attempt(attempt), error);
        QCOMPARE(stage.whatIsTheirs(), before);

        qputenv(confinementSwitch, "off");
        const QString otherwise = Stage().attempt(attempt);
        QFile::remove(u"/dev/shm/tessaly-intruder-"_s + QString::number(QCoreApplication::applicationPid()));
        if (otherwise == error) QSKIP("The system refuses it to this user in any case.");
        QVERIFY2(otherwise != "wrong usage"_L1, qPrintable(otherwise));
    }

    void allows_data()
    {
        QTest::addColumn<QByteArrayList>("places");
        for (const char *attempt : {"make-own-file", "empty-own-file", "rename-own-file", "remove-own-file",
                                    "write-to-the-null-device", "read-elsewhere", "run-a-program",
                                    "signal-own-child", "start-a-thread", "make-a-pair-of-sockets"})
            QTest::newRow(attempt) << QByteArrayList{"own"};
        QTest::newRow("make-own-file, by a link") << QByteArrayList{"link"};
        QTest::newRow("make-own-file, beside a place that is missing") << QByteArrayList{"nothing", "own"};
        QTest::newRow("empty-own-file, which is the only place") << QByteArrayList{"own/file"};
        QTest::newRow("open-for-both-elsewhere, of two places") << QByteArrayList{"own", "theirs"};
    }

    void allows()
    {
        QFETCH(QByteArrayList, places);
        const QString attempt = QString::fromLatin1(QTest::currentDataTag()).section(u',', 0, 0);
        QCOMPARE(Stage().attempt(attempt, places), u"done"_s);
    }

    void aFileAsPlaceOpensNothingBesideIt()
    {
        if (landlockLevel() < 1) QSKIP("This kernel has no Landlock.");
        QCOMPARE(Stage().attempt(u"make-own-file"_s, {"own/file"}), u"EACCES"_s);
        QCOMPARE(Stage().attempt(u"empty-own-file"_s, {}), u"EACCES"_s);
    }

    void gainsNothingAndLeavesNoCore()
    {
        const QString shell = u"/bin/sh"_s;
        const QString facts = u"grep NoNewPrivs /proc/self/status; grep core /proc/self/limits"_s;
        const QString told = output(shell, {u"-c"_s, facts}, {}).simplified();
        // One byte; none where the test itself must not leave a core.
        QVERIFY2(told == "NoNewPrivs: 1 Max core file size 1 1 bytes"_L1 ||
                     (hardCoreLimit() == 0 && told == "NoNewPrivs: 1 Max core file size 0 0 bytes"_L1),
                 qPrintable(told));
    }

    void inheritsItsChannelsAndNothingElse()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        const int inherited = ::dup(file.handle()); // without the flag that closes it
        const QStringList write{u"-c"_s, u"{ echo x >&%1; } 2>/dev/null || echo closed"_s.arg(inherited)};
        QCOMPARE(output(u"/bin/bash"_s, write, {}), u"closed"_s);
        QCOMPARE(file.size(), 0);

        qputenv(confinementSwitch, "off");
        QCOMPARE(output(u"/bin/bash"_s, write, {}), QString());
        QCOMPARE(file.size(), 2);
        ::close(inherited);
    }

    void tellsWhatIsInForce()
    {
        QStringList means;
        if (landlockLevel() > 0) means += u"Landlock (level %1)"_s.arg(landlockLevel());
        if (systemCallFilter()) means += u"seccomp"_s;
        QCOMPARE(confinementInForce(), means.isEmpty() ? u"none"_s : means.join(", "_L1));
        qputenv(confinementSwitch, "off");
        QCOMPARE(confinementInForce(), u"none"_s);
        qputenv(confinementSwitch, "on");
        QVERIFY(means.isEmpty() || confinementInForce() != "none"_L1);
    }

    void findsThePlacesForAFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("place");
        QTest::newRow("that is there") << u"own/file"_s << "own/"_ba;
        QTest::newRow("that is not there") << u"own/new"_s << "own/"_ba;
        QTest::newRow("in a linked folder") << u"link/file"_s << "link/"_ba;
        QTest::newRow("behind a link") << u"own/link"_s << "own/../theirs/"_ba;
        QTest::newRow("behind a link, not there") << u"dangling"_s << "theirs/"_ba;
        QTest::newRow("that is a folder") << u"theirs/folder"_s << "theirs/"_ba;
        QTest::newRow("that is a device") << u"device"_s << "/dev/full"_ba;
    }

    void findsThePlacesForAFile()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, place);
        const Stage stage;
        QVERIFY(QFile::link(u"theirs/new"_s, stage.path(u"dangling"_s)));
        QVERIFY(QFile::link(u"/dev/full"_s, stage.path(u"device"_s)));
        const QByteArray root =
            place.startsWith('/') ? QByteArray() : QFile::encodeName(stage.path({})) + '/';
        QCOMPARE(placesForFile(stage.path(file)).paths, QByteArrayList{root + place});
    }
};

} // namespace tessaly::test

TESSALY_TEST_MAIN(tessaly::test::ConfinementTest)

#include "confinement_test.moc"
