// Which processes run below a test, and their end.
#pragma once

#include <QList>
#include <QString>

class QProcess;

namespace tessaly::e2e {

struct RunningProcess
{
    qint64 id;
    qint64 parent;
    QString program; // name of the executable file
};

// Processes below one that have not ended.
QList<RunningProcess> processesBelow(qint64 id);

// Processes whose parent dies become children of the test, so that none is lost sight of.
void adoptOrphans();

// The prober and the converter, run by whichever program of the test or left by one that is gone.
QList<RunningProcess> runningMediaTools();

// Holds up the converter that is running, if there is one: in the middle of its work, for as long as the test
// needs.
bool suspendConverter();
void resumeConverters();

// The process ends with the test, however that ends.
void endWithTest(QProcess &process);

// Asks to end, and insists after two seconds.
void endProcess(QProcess &process);

// Kills what is left below the test.
void killProcessesBelowTest();

} // namespace tessaly::e2e
