#include "picture/confinement.h"

#include <seccomp.h>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

namespace brimlet {
namespace {

/// In bytes. The largest pictures of each kind need less than 384 MiB with all libraries.
constexpr rlim_t kAddressSpace = rlim_t{512} * 1024 * 1024;
/// Seconds. The program that waits for the picture gives up sooner.
constexpr rlim_t kCpuTime = 3;

bool limit(__rlimit_resource_t resource, rlim_t value) {
    const rlimit limits{value, value};
    return setrlimit(resource, &limits) == 0;
}

bool limitResources() {
    return limit(RLIMIT_AS, kAddressSpace) && limit(RLIMIT_CPU, kCpuTime) &&
           limit(RLIMIT_NOFILE, 0) && limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_CORE, 0);
}

bool filterSystemCalls() {
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_KILL_PROCESS);
    if (filter == nullptr) {
        return false;
    }
    const auto allow = [filter](int call) {
        return seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0) == 0;
    };
    const auto allowOnly = [filter](int call, scmp_arg_cmp condition) {
        return seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1, condition) == 0;
    };
    constexpr auto kNotExecutable = [](unsigned argument) {
        return scmp_arg_cmp{argument, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0};
    };
    const bool isLoaded = allowOnly(SCMP_SYS(read), SCMP_A0(SCMP_CMP_EQ, STDIN_FILENO)) &&
                          allowOnly(SCMP_SYS(write), SCMP_A0(SCMP_CMP_EQ, STDOUT_FILENO)) &&
                          allowOnly(SCMP_SYS(mmap), kNotExecutable(2)) &&
                          allowOnly(SCMP_SYS(mprotect), kNotExecutable(2)) &&
                          allow(SCMP_SYS(munmap)) && allow(SCMP_SYS(mremap)) &&
                          allow(SCMP_SYS(madvise)) && allow(SCMP_SYS(brk)) &&
                          allow(SCMP_SYS(futex)) && allow(SCMP_SYS(getrandom)) &&
                          // Qt asks before it decides not to start threads.
                          allow(SCMP_SYS(sched_getaffinity)) &&
                          // Elsewhere no system call, but that depends on the machine.
                          allow(SCMP_SYS(clock_gettime)) && allow(SCMP_SYS(exit)) &&
                          allow(SCMP_SYS(exit_group)) && seccomp_load(filter) == 0;
    seccomp_release(filter);
    return isLoaded;
}

} // namespace

bool confineProcess() {
    // Also where the program that waits for the picture ends without a word.
    return prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && close_range(STDERR_FILENO, ~0U, 0) == 0 &&
           limitResources() && prctl(PR_SET_DUMPABLE, 0) == 0 &&
           prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && filterSystemCalls();
}

} // namespace brimlet
