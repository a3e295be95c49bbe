// Not Apple's header: the additions of macOS to the C library's that Brimlet uses, written from the
// manual page clock_gettime(3). See tests/mac/README.md.
#pragma once

#include_next <time.h>

#include <stdint.h>

constexpr clockid_t CLOCK_UPTIME_RAW = 8;                      // macOS 10.12
extern "C" uint64_t clock_gettime_nsec_np(clockid_t clock_id); // macOS 10.12
