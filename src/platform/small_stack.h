// For what a child does between fork and exec: it may have a few kilobytes of stack there, and share it with
// its parent. What the sanitizers add would take more, and spoil what they note of the parent.
#pragma once

#define TESSALY_ON_A_SMALL_STACK __attribute__((no_sanitize("address", "undefined")))
