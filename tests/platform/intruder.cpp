// What a tool might try that a hostile file has taken over: intruder ATTEMPT FOLDER makes one attempt with
// that as its current folder and prints "done", or the error's name. In the folder, "own" is where it may
// write, and "theirs" is where it may not.
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <thread>

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/netlink.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/timex.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int newFile = O_WRONLY | O_CREAT;

// Not in the headers of every release.
constexpr long fchmodat2Number = 452;
constexpr long setxattratNumber = 463;

// As the system calls: -1 and an error, or something else.
long opening(const std::string &path, int flags)
{
    return open(path.c_str(), flags | O_CLOEXEC, 0600);
}

long writing(const std::string &path, int flags)
{
    const auto file = static_cast<int>(opening(path, flags));
    return file < 0 ? -1 : write(file, "x", 1);
}

long running(const char *program, const char *argument)
{
    const pid_t child = fork();
    if (child == 0) {
        execl(program, program, "-c", argument, nullptr);
        _exit(errno);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return 0;
    errno = EACCES; // all that a shell tells
    return -1;
}

long connecting(int kind)
{
    const int endpoint = socket(AF_INET, kind, 0);
    if (endpoint < 0) return -1;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    // Refused by nobody's listening there, it has been made all the same.
    return connect(endpoint, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0 ||
                   errno == ECONNREFUSED
               ? 0
               : -1;
}

long connectingByName(const std::string &name)
{
    const int endpoint = socket(AF_UNIX, SOCK_STREAM, 0);
    if (endpoint < 0) return -1;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof address.sun_path);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    return connect(endpoint, reinterpret_cast<sockaddr *>(&address), size) == 0 || errno == ECONNREFUSED ||
                   errno == ENOENT
               ? 0
               : -1;
}

long signallingOwnChild()
{
    const pid_t child = fork();
    if (child == 0) {
        for (;;)
            pause();
    }
    return kill(child, SIGKILL) == 0 && waitpid(child, nullptr, 0) == child ? 0 : -1;
}

long startingAThread()
{
    std::thread([] {}).join();
    return 0;
}

long makingAPair()
{
    int ends[2] = {};
    return socketpair(AF_UNIX, SOCK_STREAM, 0, ends);
}

// A datagram of a pair, sent elsewhere.
long sendingToAPath()
{
    int ends[2] = {};
    if (socketpair(AF_UNIX, SOCK_DGRAM, 0, ends) != 0) return -1;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, "theirs/socket");
    const auto *where = reinterpret_cast<sockaddr *>(&address);
    // That nobody listens there is known only when it has been tried.
    return sendto(ends[0], "x", 1, 0, where, sizeof address) == 1 || errno == ENOENT ? 0 : -1;
}

// In a process that leads no group, which could not leave its session.
long leavingTheSession()
{
    const pid_t child = fork();
    if (child == 0) _exit(setsid() < 0 ? errno : 0);
    int status = 0;
    waitpid(child, &status, 0);
    errno = WEXITSTATUS(status);
    return errno == 0 ? 0 : -1;
}

long changingTheTerminal()
{
    const termios settings{};
    return tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

long takingTheTerminal()
{
    return tcsetpgrp(STDIN_FILENO, getpgrp());
}

long changingTheFlags()
{
    int flags = 0;
    const auto file = static_cast<int>(opening("theirs/file", O_RDONLY));
    return file < 0 || ioctl(file, FS_IOC_GETFLAGS, &flags) != 0 ? -1 : ioctl(file, FS_IOC_SETFLAGS, &flags);
}

long settingTheClock()
{
    timex nothing{};
    return syscall(SYS_adjtimex, &nothing);
}

long emptyingOwnFile()
{
    const auto file = static_cast<int>(opening("own/file", O_WRONLY | O_TRUNC));
    return file < 0 ? -1 : ftruncate(file, 100);
}

void *nowhere()
{
    return nullptr;
}

long readingTheParent()
{
    iovec none{};
    return syscall(SYS_process_vm_readv, getppid(), &none, 1, &none, 1, 0);
}

const std::map<std::string, std::function<long()>> attempts = {
    // files
    {"write-at-home", [] { return writing("home/.profile", newFile); }},
    {"write-over-the-input", [] { return writing("theirs/file", O_WRONLY); }},
    {"make-a-file-elsewhere", [] { return opening("theirs/new", newFile); }},
    {"make-a-folder-elsewhere", [] { return mkdir("theirs/new", 0700); }},
    {"open-for-both-elsewhere", [] { return opening("theirs/file", O_RDWR); }},
    {"append-elsewhere", [] { return writing("theirs/file", O_WRONLY | O_APPEND); }},
    {"write-through-a-link", [] { return writing("own/link", O_WRONLY); }},
    {"make-a-link", [] { return symlink("../theirs", "own/new"); }},
    {"rename-over", [] { return rename("own/file", "theirs/file"); }},
    {"rename-away", [] { return rename("theirs/file", "own/new"); }},
    {"hard-link-out", [] { return link("own/file", "theirs/new"); }},
    {"hard-link-in", [] { return link("theirs/file", "own/new"); }},
    {"truncate-by-name", [] { return truncate("theirs/file", 0); }},
    {"open-to-empty", [] { return opening("theirs/file", O_RDONLY | O_TRUNC); }},
    {"remove-elsewhere", [] { return unlink("theirs/file"); }},
    {"remove-a-folder-elsewhere", [] { return rmdir("theirs/folder"); }},
    {"change-the-mode", [] { return chmod("theirs/file", 0777); }},
    {"change-the-owner", [] { return chown("theirs/file", getuid(), getgid()); }},
    {"change-the-mode-by-a-newer-call",
     [] { return syscall(fchmodat2Number, AT_FDCWD, "theirs/file", 0777, 0); }},
    {"change-attributes-by-a-newer-call",
     [] { return syscall(setxattratNumber, AT_FDCWD, "theirs/file", 0, nowhere(), nowhere(), 0); }},
    {"change-the-flags", changingTheFlags},
    {"freeze-a-file-system", [] { return ioctl(STDIN_FILENO, FIFREEZE, 0); }},
    {"leave-a-device-behind",
     [] { return renameat2(AT_FDCWD, "own/file", AT_FDCWD, "own/new", RENAME_WHITEOUT); }},
    {"make-a-device", [] { return mknod("own/new", S_IFCHR | 0600, makedev(1, 3)); }},
    {"make-a-pipe-elsewhere", [] { return mkfifo("theirs/new", 0600); }},
    {"write-to-shared-memory",
     [] { return opening("/dev/shm/tessaly-intruder-" + std::to_string(getppid()), newFile); }},
    {"shell-that-writes", [] { return running("/bin/sh", "echo x >theirs/new"); }},
    {"handle-of-a-file", [] { return syscall(SYS_name_to_handle_at, AT_FDCWD, nowhere(), nowhere(), 0, 0); }},
    // network
    {"connect-over-tcp", [] { return connecting(SOCK_STREAM); }},
    {"connect-over-udp", [] { return connecting(SOCK_DGRAM); }},
    {"connect-to-an-abstract-name", [] { return connectingByName(std::string(1, '\0') + "nobody"); }},
    {"connect-to-a-path", [] { return connectingByName("theirs/socket"); }},
    {"send-to-a-path", sendingToAPath},
    {"talk-to-the-kernel", [] { return socket(AF_NETLINK, SOCK_RAW, NETLINK_ROUTE); }},
    // other processes
    {"signal-the-parent", [] { return kill(getppid(), 0); }},
    {"trace-the-parent", [] { return ptrace(PTRACE_SEIZE, getppid(), 0, 0); }},
    {"read-the-parent", readingTheParent},
    {"open-the-parents-memory",
     [] { return opening("/proc/" + std::to_string(getppid()) + "/mem", O_RDWR); }},
    {"limit-the-parent",
     [] {
         rlimit limit{};
         return prlimit(getppid(), RLIMIT_NOFILE, nullptr, &limit);
     }},
    {"leave-the-session", leavingTheSession},
    {"join-the-parents-group", [] { return setpgid(0, getpgid(getppid())); }},
    {"change-the-terminal", changingTheTerminal},
    {"take-the-terminal", takingTheTerminal},
    {"type-into-the-terminal", [] { return ioctl(STDIN_FILENO, TIOCSTI, "x"); }},
    // the system
    {"set-the-clock", settingTheClock},
    {"mount", [] { return syscall(SYS_mount, nowhere(), nowhere(), nowhere(), 0, nowhere()); }},
    {"unshare", [] { return unshare(0); }},
    // Not a pair that the kernel takes; refused before it looks.
    {"clone-a-user-namespace", [] { return syscall(SYS_clone, CLONE_NEWUSER | CLONE_FS, 0, 0, 0, 0); }},
    {"clone3", [] { return syscall(SYS_clone3, nowhere(), 0); }},
    {"key", [] { return syscall(SYS_keyctl, 0, -3, 0, 0, 0); }},
    {"io-uring", [] { return syscall(SYS_io_uring_setup, 0, nowhere()); }},
    {"bpf", [] { return syscall(SYS_bpf, -1, nowhere(), 0); }},
    {"perf-event", [] { return syscall(SYS_perf_event_open, nowhere(), 0, -1, -1, 0); }},
    {"userfaultfd", [] { return syscall(SYS_userfaultfd, O_CLOEXEC | 1); }},
    // What a tool needs, or a script around one.
    {"make-own-file", [] { return writing("own/new", newFile | O_EXCL); }},
    {"empty-own-file", emptyingOwnFile},
    {"rename-own-file", [] { return rename("own/file", "own/new"); }},
    {"remove-own-file", [] { return unlink("own/file"); }},
    {"write-to-the-null-device", [] { return writing("/dev/null", newFile | O_TRUNC); }},
    {"read-elsewhere", [] { return opening("theirs/file", O_RDONLY); }},
    {"run-a-program", [] { return running("/bin/sh", "exit 0"); }},
    {"signal-own-child", signallingOwnChild},
    {"start-a-thread", startingAThread},
    {"make-a-pair-of-sockets", makingAPair},
};

} // namespace

int main(int count, char *words[])
{
    const auto attempt = count == 3 ? attempts.find(words[1]) : attempts.end();
    if (attempt == attempts.end() || chdir(words[2]) != 0) {
        std::puts("wrong usage");
        return 2;
    }
    std::puts(attempt->second() < 0 ? strerrorname_np(errno) : "done");
    return 0;
}
