// Hears when the system or a person at the terminal asks the program to end.
#pragma once

#include <functional>
#include <thread>

namespace tessaly {

// While one lives, SIGTERM, SIGINT, SIGHUP and SIGQUIT do not end the program but call the handler, each
// time, on a thread of the watch. One that was ignored before (the hang-up under nohup, the interrupt in the
// background of a script) stays ignored. At most one watch at a time; where the system is out of descriptors
// it hears nothing. A child that is started meanwhile has the usual treatment of signals.
class TerminationWatch
{
public:
    explicit TerminationWatch(std::function<void()> handler);
    ~TerminationWatch(); // gives the signals their former treatment back
    TerminationWatch(const TerminationWatch &) = delete;
    TerminationWatch &operator=(const TerminationWatch &) = delete;

    // True from the very arrival of a signal on, before the handler is called. Any thread.
    static bool wasAsked();

private:
    std::thread m_thread;
};

// From now on a reader of this program's output that goes away does not end the program: writing fails
// instead. Children have the usual treatment.
void outliveReaders();

} // namespace tessaly
