#include "platform/landlock.h"

#include <cstdint>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tessaly {

namespace {

// Headers older than the running kernel lack what came with later levels.
constexpr std::uint64_t accessRefer = 1ULL << 13;       // level 2
constexpr std::uint64_t accessTruncate = 1ULL << 14;    // level 3
constexpr std::uint64_t accessIoctlDevice = 1ULL << 15; // level 5
constexpr std::uint64_t netBindTcp = 1ULL << 0;         // level 4
constexpr std::uint64_t netConnectTcp = 1ULL << 1;
constexpr std::uint64_t scopeAbstractUnixSocket = 1ULL << 0; // level 6
constexpr std::uint64_t scopeSignal = 1ULL << 1;

// As struct landlock_ruleset_attr has been since level 6. Older kernels take it while what they do not know
// is 0.
struct RulesetAttributes
{
    std::uint64_t handledAccessFs = 0;
    std::uint64_t handledAccessNet = 0;
    std::uint64_t scoped = 0;
};

constexpr std::uint64_t writingAFile = LANDLOCK_ACCESS_FS_WRITE_FILE | accessTruncate;
constexpr std::uint64_t writingInAFolder =
    writingAFile | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_REMOVE_FILE;

// Everything but to read and to run.
RulesetAttributes refusableAt(int level)
{
    RulesetAttributes refused{.handledAccessFs =
                                  LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                  LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                  LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                  LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                  LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM};
    if (level >= 2) refused.handledAccessFs |= accessRefer;
    if (level >= 3) refused.handledAccessFs |= accessTruncate;
    if (level >= 4) refused.handledAccessNet = netBindTcp | netConnectTcp;
    if (level >= 5) refused.handledAccessFs |= accessIoctlDevice;
    if (level >= 6) refused.scoped = scopeAbstractUnixSocket | scopeSignal;
    return refused;
}

void allowWriting(int ruleset, const QByteArray &path, std::uint64_t refusable)
{
    const int place = ::open(path.constData(), O_PATH | O_CLOEXEC);
    struct stat found = {};
    if (place >= 0 && ::fstat(place, &found) == 0) {
        const std::uint64_t rights = S_ISDIR(found.st_mode) ? writingInAFolder : writingAFile;
        const landlock_path_beneath_attr rule{.allowed_access = rights & refusable, .parent_fd = place};
        ::syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
    }
    if (place >= 0) ::close(place);
}

} // namespace

int landlockLevel()
{
    static const long level =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    return level > 0 ? static_cast<int>(level) : 0;
}

int landlockRuleset(int level, const QByteArrayList &writablePaths)
{
    if (level < 1) return -1;
    const RulesetAttributes refused = refusableAt(level);
    const auto ruleset =
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &refused, sizeof refused, 0));
    if (ruleset < 0) return -1;
    for (const QByteArray &path : writablePaths)
        allowWriting(ruleset, path, refused.handledAccessFs);
    return ruleset;
}

} // namespace tessaly
