// The system calls that no media tool needs, refused with an error.
#pragma once

struct sock_fprog;

namespace tessaly {

// The filter as the kernel takes it, made at the first call and kept until the end of the program; nullptr
// where the kernel has none or it cannot be made. Any thread.
const sock_fprog *systemCallFilter();

} // namespace tessaly
