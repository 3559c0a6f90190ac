#include "platform/system_call_filter.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tessaly {

namespace {

constexpr const char *refusedCalls[] = {
    // Sockets of every kind: behind a local one sits the session's bus, which starts programs for everybody.
    "socket",
    // Other processes.
    "ptrace", "process_vm_readv", "process_vm_writev", "process_madvise", "pidfd_getfd", "kcmp",
    "perf_event_open", "bpf", "userfaultfd", "lookup_dcookie",
    // What is mounted where, and worlds of one's own.
    "mount", "umount", "umount2", "pivot_root", "chroot", "fsopen", "fsconfig", "fsmount", "fspick",
    "move_mount", "open_tree", "mount_setattr", "unshare", "setns", "swapon", "swapoff", "quotactl",
    "quotactl_fd",
    // Keys, and roads to files that go round their folders.
    "add_key", "keyctl", "request_key", "name_to_handle_at", "open_by_handle_at", "fanotify_init",
    // Out of the group of processes that ends with the run, and into the one that has the terminal.
    "setsid", "setpgid",
    // Calls that this filter would not see.
    "io_uring_setup", "io_uring_enter", "io_uring_register",
    // The machine itself.
    "reboot", "kexec_load", "kexec_file_load", "init_module", "finit_module", "create_module",
    "delete_module", "acct", "syslog", "_sysctl", "nfsservctl", "iopl", "ioperm", "vhangup", "settimeofday",
    "stime", "clock_settime", "clock_settime64", "clock_adjtime", "clock_adjtime64", "adjtimex",
    "sethostname", "setdomainname", "modify_ldt", "vm86", "vm86old",
    // Whose a file is and who may use it; Landlock leaves that free.
    "chmod", "fchmod", "fchmodat", "fchmodat2", "chown", "chown32", "lchown", "lchown32", "fchown",
    "fchown32", "fchownat", "setxattr", "lsetxattr", "fsetxattr", "removexattr", "lremovexattr",
    "fremovexattr",
    // By name; Landlock refuses it only from level 3 on.
    "truncate", "truncate64"};

// Callers fall back from these to calls whose arguments can be seen.
constexpr const char *callsSaidToBeMissing[] = {"clone3", "openat2"};

struct RefusedArgument
{
    const char *call;
    unsigned argument;
    std::uint64_t mask;
    std::uint64_t value;
};

constexpr std::uint64_t allOfAnInt = 0xffffffff;
constexpr std::uint64_t kindOfSocket = 0xf; // beside it lie flags
constexpr std::uint64_t oldSocketpair = 8;  // of socketcall(), whose further arguments cannot be seen
constexpr std::uint64_t renameWhiteout = 4;

// Not in the headers of every release: <linux/fs.h> and <asm/ioctls.h>.
constexpr std::uint64_t setLabel = _IOC(_IOC_WRITE, 0x94, 50, 256);
constexpr std::uint64_t setFlags = _IOC(_IOC_WRITE, 'f', 2, sizeof(long));
constexpr std::uint64_t setFlagsOf32 = _IOC(_IOC_WRITE, 'f', 2, 4);
constexpr std::uint64_t setMoreFlags = _IOC(_IOC_WRITE, 'X', 32, 28);
constexpr std::uint64_t freeze = _IOC(_IOC_READ | _IOC_WRITE, 'X', 119, 4);
constexpr std::uint64_t thaw = _IOC(_IOC_READ | _IOC_WRITE, 'X', 120, 4);
constexpr std::uint64_t setTerminal2 = _IOC(_IOC_WRITE, 'T', 0x2B, 44);
constexpr std::uint64_t setTerminal2Drained = _IOC(_IOC_WRITE, 'T', 0x2C, 44);
constexpr std::uint64_t setTerminal2Flushed = _IOC(_IOC_WRITE, 'T', 0x2D, 44);

constexpr RefusedArgument refusedArguments[] = {
    {"clone", 0, CLONE_NEWUSER, CLONE_NEWUSER},
    {"clone", 0, CLONE_NEWNS, CLONE_NEWNS},
    {"clone", 0, CLONE_NEWPID, CLONE_NEWPID},
    {"clone", 0, CLONE_NEWNET, CLONE_NEWNET},
    {"clone", 0, CLONE_NEWIPC, CLONE_NEWIPC},
    {"clone", 0, CLONE_NEWUTS, CLONE_NEWUTS},
    {"clone", 0, CLONE_NEWCGROUP, CLONE_NEWCGROUP},
    {"mknod", 1, S_IFMT, S_IFCHR},
    {"mknod", 1, S_IFMT, S_IFBLK},
    {"mknodat", 2, S_IFMT, S_IFCHR},
    {"mknodat", 2, S_IFMT, S_IFBLK},
    // Opened to be emptied, but not to be written: unseen by Landlock below level 3.
    {"open", 1, O_TRUNC | O_ACCMODE, O_TRUNC},
    {"open", 1, O_TRUNC | O_ACCMODE, O_TRUNC | O_ACCMODE},
    {"openat", 2, O_TRUNC | O_ACCMODE, O_TRUNC},
    {"openat", 2, O_TRUNC | O_ACCMODE, O_TRUNC | O_ACCMODE},
    // A datagram of a pair can be sent to any local socket instead.
    {"socketpair", 1, kindOfSocket, SOCK_DGRAM},
    {"socketpair", 1, kindOfSocket, SOCK_RAW},
    {"socketcall", 0, allOfAnInt, oldSocketpair},
    // Leaves a device behind.
    {"renameat2", 4, renameWhiteout, renameWhiteout},
    // A file's flags, and whole file systems, by a file or folder that is open for reading.
    {"ioctl", 1, allOfAnInt, setFlags},
    {"ioctl", 1, allOfAnInt, setFlagsOf32},
    {"ioctl", 1, allOfAnInt, setMoreFlags},
    {"ioctl", 1, allOfAnInt, setLabel},
    {"ioctl", 1, allOfAnInt, freeze},
    {"ioctl", 1, allOfAnInt, thaw},
    // Typing into the terminal that the child inherits, taking it over, and changing how it behaves.
    {"ioctl", 1, allOfAnInt, TIOCSTI},
    {"ioctl", 1, allOfAnInt, TIOCLINUX},
    {"ioctl", 1, allOfAnInt, TIOCSCTTY},
    {"ioctl", 1, allOfAnInt, TIOCSPGRP},
    {"ioctl", 1, allOfAnInt, TIOCSETD},
    {"ioctl", 1, allOfAnInt, TCSETS},
    {"ioctl", 1, allOfAnInt, TCSETSW},
    {"ioctl", 1, allOfAnInt, TCSETSF},
    {"ioctl", 1, allOfAnInt, TCSETA},
    {"ioctl", 1, allOfAnInt, TCSETAW},
    {"ioctl", 1, allOfAnInt, TCSETAF},
    {"ioctl", 1, allOfAnInt, setTerminal2},
    {"ioctl", 1, allOfAnInt, setTerminal2Drained},
    {"ioctl", 1, allOfAnInt, setTerminal2Flushed}};

// What the library may not have heard of, the kernel may know: calls of Linux 6.13 and newer are said to be
// missing, and callers fall back from them. From 424 on a call has one number on every processor that the
// filter is made for; far above lie calls of single processors.
constexpr std::uint32_t firstNewCall = 463; // setxattrat
constexpr std::uint32_t endOfNewCalls = 1024;

constexpr sock_filter newCallsAreMissing[] = {
    BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
    BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, firstNewCall, 0, 2),
    BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, endOfNewCalls, 1, 0),
    BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
};

class Rules
{
public:
    Rules() : m_context(::seccomp_init(SCMP_ACT_ALLOW))
    {
        m_isReady = m_context && ::seccomp_attr_set(m_context.get(), SCMP_FLTATR_ACT_BADARCH, refusal) == 0;
        addArchitecturesOfOtherBuilds();
        for (const char *call : refusedCalls)
            add(refusal, call, {});
        for (const char *call : callsSaidToBeMissing)
            add(SCMP_ACT_ERRNO(ENOSYS), call, {});
        for (const RefusedArgument &refused : refusedArguments)
            add(refusal, refused.call,
                {{.arg = refused.argument,
                  .op = SCMP_CMP_MASKED_EQ,
                  .datum_a = refused.mask,
                  .datum_b = refused.value}});
        // Limits of other processes; 0 is the caller itself.
        add(refusal, "prlimit64", {{.arg = 0, .op = SCMP_CMP_NE, .datum_a = 0, .datum_b = 0}});
    }

    // Empty when anything went wrong.
    std::vector<sock_filter> program() const
    {
        if (!m_isReady) return {};
        const int file = ::memfd_create("filter", MFD_CLOEXEC);
        if (file < 0) return {};
        std::vector<sock_filter> program(std::begin(newCallsAreMissing), std::end(newCallsAreMissing));
        const std::size_t before = program.size();
        struct stat made = {};
        if (::seccomp_export_bpf(m_context.get(), file) == 0 && ::fstat(file, &made) == 0)
            program.resize(before + static_cast<std::size_t>(made.st_size) / sizeof(sock_filter));
        if (program.size() == before ||
            ::pread(file, &program[before], static_cast<std::size_t>(made.st_size), 0) != made.st_size)
            program.clear();
        ::close(file);
        return program;
    }

private:
    static constexpr std::uint32_t refusal = SCMP_ACT_ERRNO(EPERM);

    struct Release
    {
        void operator()(void *context) const { ::seccomp_release(context); }
    };

    // A tool may be a build for the smaller brother of this processor.
    void addArchitecturesOfOtherBuilds()
    {
#if defined(__x86_64__)
        addArchitecture(SCMP_ARCH_X86);
#elif defined(__aarch64__)
        addArchitecture(SCMP_ARCH_ARM);
#endif
    }

    [[maybe_unused]] void addArchitecture(std::uint32_t architecture)
    {
        m_isReady = m_isReady && ::seccomp_arch_add(m_context.get(), architecture) == 0;
    }

    // What the library has not heard of, or cannot tell for this processor, is left out.
    void add(std::uint32_t action, const char *call, const std::vector<scmp_arg_cmp> &comparisons)
    {
        const int number = ::seccomp_syscall_resolve_name(call);
        if (!m_isReady || number == __NR_SCMP_ERROR) return;
        ::seccomp_rule_add_array(m_context.get(), action, number, static_cast<unsigned>(comparisons.size()),
                                 comparisons.data());
    }

    std::unique_ptr<void, Release> m_context;
    bool m_isReady = false;
};

bool kernelFilters()
{
    const std::uint32_t action = SECCOMP_RET_ERRNO;
    return ::syscall(SYS_seccomp, SECCOMP_GET_ACTION_AVAIL, 0, &action) == 0;
}

} // namespace

const sock_fprog *systemCallFilter()
{
    static std::vector<sock_filter> program =
        kernelFilters() ? Rules().program() : std::vector<sock_filter>();
    static const sock_fprog filter{.len = static_cast<unsigned short>(program.size()),
                                   .filter = program.data()};
    return program.empty() ? nullptr : &filter;
}

} // namespace tessaly
