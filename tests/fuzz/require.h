// How a fuzz target says that something does not hold: it names it, and aborts.
#pragma once

#include <cstdio>
#include <cstdlib>

#define REQUIRE(condition)                                                                                   \
    do {                                                                                                     \
        if (!(condition)) tessaly::test::fail(#condition, __LINE__);                                         \
    } while (false)

namespace tessaly::test {

[[noreturn]] inline void fail(const char *condition, int line)
{
    std::fprintf(stderr, "line %d: %s does not hold\n", line, condition);
    std::abort();
}

} // namespace tessaly::test
