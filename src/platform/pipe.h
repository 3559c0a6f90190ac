// A pipe from a child to this program.
#pragma once

#include <QByteArray>

namespace tessaly {

// Both ends are closed by programs that are started meanwhile. Where the system is out of descriptors the
// pipe is at its end from the beginning. On one thread.
class Pipe
{
public:
    Pipe();
    ~Pipe();
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    int readingEnd() const { return m_readingEnd; } // a descriptor; -1 once the end was seen
    int writingEnd() const { return m_writingEnd; } // a descriptor; -1 once closed
    void closeWritingEnd();

    // Waits at most so many milliseconds; true when there is something to read, the end among it.
    bool waitForArrival(int milliseconds) const;

    // At most 64 KiB of what is there, without waiting; empty when nothing is there or at the end.
    QByteArray readChunk();

    qint64 available() const; // bytes that are there now
    bool isAtEnd() const { return m_readingEnd < 0; }

private:
    int m_readingEnd = -1;
    int m_writingEnd = -1;
};

} // namespace tessaly
