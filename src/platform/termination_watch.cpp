#include "platform/termination_watch.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tessaly {

namespace {

constexpr std::array watchedSignals{SIGTERM, SIGINT, SIGHUP, SIGQUIT};
constexpr char signalArrived = 's';
constexpr char watchEnds = 'e';

std::array<int, 2> wakeUp{-1, -1}; // a pipe: the one thing that a signal handler may talk to
std::array<struct sigaction, watchedSignals.size()> formerTreatment;
std::atomic<bool> asked = false;

void tell(char what)
{
    // The pipe can only be full when the thread has much to read anyway.
    [[maybe_unused]] const ssize_t written = ::write(wakeUp[1], &what, 1);
}

void onSignal(int)
{
    const int formerError = errno;
    asked = true;
    tell(signalArrived);
    errno = formerError;
}

} // namespace

TerminationWatch::TerminationWatch(std::function<void()> handler)
{
    asked = false;
    if (::pipe2(wakeUp.data(), O_CLOEXEC) != 0) return;
    ::fcntl(wakeUp[1], F_SETFL, O_NONBLOCK);
    m_thread = std::thread([handler = std::move(handler)] {
        char what = watchEnds;
        while (::read(wakeUp[0], &what, 1) == 1 && what == signalArrived)
            handler();
    });
    struct sigaction treatment = {};
    treatment.sa_handler = onSignal;
    treatment.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < watchedSignals.size(); ++i) {
        ::sigaction(watchedSignals[i], nullptr, &formerTreatment[i]);
        const bool isIgnored = formerTreatment[i].sa_handler == SIG_IGN;
        if (!isIgnored) ::sigaction(watchedSignals[i], &treatment, nullptr);
    }
}

TerminationWatch::~TerminationWatch()
{
    if (!m_thread.joinable()) return;
    for (std::size_t i = 0; i < watchedSignals.size(); ++i) {
        ::sigaction(watchedSignals[i], &formerTreatment[i], nullptr);
    }
    tell(watchEnds);
    m_thread.join();
    ::close(wakeUp[0]);
    ::close(wakeUp[1]);
    wakeUp = {-1, -1};
}

bool TerminationWatch::wasAsked()
{
    return asked;
}

void outliveReaders()
{
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace tessaly
