#include "platform/confinement.h"

#ifdef Q_OS_LINUX
#include "platform/landlock.h"
#include "platform/small_stack.h"
#include "platform/system_call_filter.h"

#include <QStringList>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace tessaly {

#ifdef Q_OS_LINUX

namespace {

bool isSwitchedOff()
{
    return qEnvironmentVariable("TESSALY_CONFINEMENT") == "off"_L1;
}

// Behind the three channels.
constexpr unsigned firstOther = 3;
constexpr unsigned closeRangeCloexec = 4; // not in the headers of every release

// One byte rather than none: where cores go to a program, it is only called off by a limit of 1 (core(5)).
TESSALY_ON_A_SMALL_STACK void leaveNoCore()
{
    const rlimit one{.rlim_cur = 1, .rlim_max = 1};
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    if (::setrlimit(RLIMIT_CORE, &one) != 0) ::setrlimit(RLIMIT_CORE, &none);
}

} // namespace

Confinement::Confinement(const WritablePlaces &writable) : m_isOn(!isSwitchedOff())
{
    if (!m_isOn) return;
    m_ruleset = landlockRuleset(landlockLevel(), QByteArrayList{"/dev/null"} + writable.paths);
    m_filter = systemCallFilter();
}

Confinement::~Confinement()
{
    if (m_ruleset >= 0) ::close(m_ruleset);
}

TESSALY_ON_A_SMALL_STACK void Confinement::enter() const
{
    if (!m_isOn) return;
    leaveNoCore();
    ::syscall(SYS_close_range, firstOther, ~0U, closeRangeCloexec);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    if (m_ruleset >= 0) ::syscall(SYS_landlock_restrict_self, m_ruleset, 0);
    if (m_filter) ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, m_filter, 0, 0);
}

QString confinementInForce()
{
    QStringList means;
    if (const int level = landlockLevel(); level > 0) means += u"Landlock (level %1)"_s.arg(level);
    if (systemCallFilter()) means += u"seccomp"_s;
    return isSwitchedOff() || means.isEmpty() ? u"none"_s : means.join(", "_L1);
}

#else

Confinement::Confinement(const WritablePlaces &) : m_isOn(false) {}
Confinement::~Confinement() = default;
void Confinement::enter() const {}

QString confinementInForce()
{
    return u"none"_s;
}

#endif

} // namespace tessaly
