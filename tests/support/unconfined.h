// For tools of tests that write where the real ones do not.
#pragma once

#include <QByteArray>

namespace tessaly::test {

// While it lives, children of this process, and of programs that it starts, run without confinement.
class Unconfined
{
public:
    Unconfined() : m_before(qgetenv("TESSALY_CONFINEMENT")) { qputenv("TESSALY_CONFINEMENT", "off"); }
    ~Unconfined() { qputenv("TESSALY_CONFINEMENT", m_before); }
    Unconfined(const Unconfined &) = delete;
    Unconfined &operator=(const Unconfined &) = delete;

private:
    QByteArray m_before;
};

} // namespace tessaly::test
