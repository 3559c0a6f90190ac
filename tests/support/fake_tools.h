// A resource folder of a test's own, whose "sniffer" and "creator" do what the test says.
//
// Steps of the fake tool, with their parameters; "output" is the last argument it was started with:
//   print TEXT, print-file FILE           to standard output
//   rubbish, invalid-utf8, open-brace     to standard output: what a broken prober may print
//   print-input-kind                      to standard output: "null device", "ended", "open" or "closed"
//   complain TEXT, complain-file FILE     to standard error
//   progress MILLISECONDS TEXT…           to standard error, each text in one write, with that pause after it
//   flood-stdout BYTES, flood-stderr BYTES
//   pause MILLISECONDS
//   wait-for-file PATH                    until it is there
//   wait-until-read                       until what was written to standard error has been read
//   wait-for-turn PREFIX                  until PREFIX with the number of this call behind it is there
//   hang                                  for ever, until a signal ends it
//   ignore-terminate                      from here on
//   slow-flush MILLISECONDS [STATUS]      waits for the terminate signal, then so long, then exits (255)
//   crash                                 dies of a signal (SIGSEGV)
//   exit STATUS
//   fail-at-call N [STATUS]               exits (1) when this is the Nth call, goes on otherwise
//   write-output TEXT, copy-to-output FILE
//   hold-output TEXT                      writes it and keeps the file open
//   leave-behind MILLISECONDS [TEXT]      leaves a process that keeps the standard channels open so long;
//                                         with a text: so long from the tool's end on, then it prints that
//   note-treatment FILE                   appends whether its process group is its own, and from /proc which
//                                         signals it blocks and ignores
//   become PROGRAM                        goes on as this program, with the same arguments
// After the last step it exits with 0. A wrong step ends it with 99 and a line on standard error.
#pragma once

#include "support/unconfined.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

namespace tessaly::test {

class FakeTools
{
public:
    // Both tools are there, do nothing and exit with 0; pathForResource() finds them while the object lives,
    // and children run without confinement: the fakes keep their records beside themselves.
    FakeTools();
    ~FakeTools();
    FakeTools(const FakeTools &) = delete;
    FakeTools &operator=(const FakeTools &) = delete;

    QString folder() const;
    QString path(const QString &tool) const;

    // One step; the first word of each list is its name.
    void setBehaviour(const QString &tool, const QString &name, const QStringList &parameters = {});
    void setSteps(const QString &tool, const QList<QStringList> &steps);

    void useRealTool(const QString &tool);
    // Children are confined again, when both tools are real.
    void confine();
    static QString realTool(const QString &tool);
    void remove(const QString &tool);
    // Puts something there that is no program.
    void replaceByFolder(const QString &tool);
    void replaceByPlainFile(const QString &tool, const QByteArray &contents = "no program\n");
    void replaceByBrokenLink(const QString &tool);

    // The arguments of each start of a fake, oldest first; the real tools note nothing.
    QList<QStringList> calls(const QString &tool) const;
    void forgetCalls(const QString &tool);
    // Processes of a fake that still exist, those that they left behind among them.
    QList<qint64> runningProcesses(const QString &tool) const;

private:
    void useFake(const QString &tool);

    QTemporaryDir m_resources;
    std::optional<Unconfined> m_unconfined{std::in_place};
};

} // namespace tessaly::test
