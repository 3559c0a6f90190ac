// Shuts the children in, so that a hostile file that takes over a tool finds nothing to take or to spoil:
// what docs/security.md promises is kept here. Linux only; elsewhere children run as any program does.
#pragma once

#include "platform/writable_places.h"

#include <QString>

struct sock_fprog;

namespace tessaly {

// The bounds of one child. It may read and run what it likes, but write only to its places and to the null
// device, and inherits nothing but its three channels; it has no network, gains no privileges, does not touch
// other processes, stays in its process group, and leaves no core dump.
// What this system cannot refuse is not refused, and nothing is said of it.
class Confinement
{
public:
    // Looks at the places now, and at TESSALY_CONFINEMENT in the environment: "off" means no bounds. Any
    // thread.
    explicit Confinement(const WritablePlaces &writable);
    ~Confinement();
    Confinement(const Confinement &) = delete;
    Confinement &operator=(const Confinement &) = delete;

    // In the child, between fork and exec; for good. Makes system calls and nothing else.
    void enter() const;

private:
    bool m_isOn;
    int m_ruleset = -1;                   // a descriptor, closed by programs that are started
    const sock_fprog *m_filter = nullptr; // nobody's; lives as long as the program
};

// By which means children are shut in from now on, such as "Landlock (level 6), seccomp"; "none" without any.
// Any thread.
QString confinementInForce();

} // namespace tessaly
