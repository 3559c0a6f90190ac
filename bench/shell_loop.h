// What the program's child runs are held against: a shell that makes the same runs, one after the other.
#pragma once

#include "bench/measure.h"

#include <QString>
#include <QStringList>

namespace tessaly::bench {

// The prober's arguments in a probe of the program.
QStringList probeArguments(const QString &file);

class ShellLoop
{
public:
    void addProbe(const QString &file);
    void addConverter(const QStringList &arguments);

    // Makes all runs; the answer is in seconds.
    double run() const;

private:
    std::string m_script;
};

} // namespace tessaly::bench
