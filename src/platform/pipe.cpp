#include "platform/pipe.h"

#include <array>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tessaly {

namespace {

constexpr qsizetype chunkSize = 65536; // what a pipe usually holds

void closeEnd(int &end)
{
    if (end >= 0) ::close(std::exchange(end, -1));
}

} // namespace

Pipe::Pipe()
{
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return;
    m_readingEnd = ends[0];
    m_writingEnd = ends[1];
    ::fcntl(m_readingEnd, F_SETFL, O_NONBLOCK);
}

Pipe::~Pipe()
{
    closeEnd(m_readingEnd);
    closeEnd(m_writingEnd);
}

void Pipe::closeWritingEnd()
{
    closeEnd(m_writingEnd);
}

bool Pipe::waitForArrival(int milliseconds) const
{
    pollfd end{m_readingEnd, POLLIN, 0};
    return ::poll(&end, 1, milliseconds) > 0;
}

QByteArray Pipe::readChunk()
{
    QByteArray chunk(chunkSize, Qt::Uninitialized);
    const ssize_t size = ::read(m_readingEnd, chunk.data(), static_cast<std::size_t>(chunk.size()));
    const bool nothingYet = size < 0 && (errno == EAGAIN || errno == EINTR);
    if (size <= 0 && !nothingYet) closeEnd(m_readingEnd);
    chunk.truncate(size > 0 ? size : 0);
    return chunk;
}

qint64 Pipe::available() const
{
    int bytes = 0;
    return ::ioctl(m_readingEnd, FIONREAD, &bytes) == 0 ? bytes : 0;
}

} // namespace tessaly
