// Tests may run as root, whom no permission stops.
#pragma once

#include <QtGlobal>

#include <unistd.h>

namespace tessaly::test {

// While it lives the whole process, and what it starts, acts as a user without rights. Where the tests run as
// an ordinary user anyway, nothing changes.
class OrdinaryUser
{
public:
    OrdinaryUser() : m_wasRoot(::geteuid() == 0 && ::seteuid(65534) == 0)
    {
        if (::geteuid() == 0) qFatal("root cannot become an ordinary user here");
    }
    ~OrdinaryUser()
    {
        if (m_wasRoot && ::seteuid(0) != 0) qFatal("cannot become root again");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    bool m_wasRoot;
};

} // namespace tessaly::test
