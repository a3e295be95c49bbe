#include "tools/placement/stopsignal.h"

#include <cstdint>
#include <cstdlib>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace brimlet::placement {

StopSignal::StopSignal()
    : m_fd(::eventfd(0, EFD_CLOEXEC)) {
    if (m_fd < 0) {
        std::abort();
    }
}

StopSignal::~StopSignal() {
    ::close(m_fd);
}

void StopSignal::set() {
    m_set.store(true);
    const std::uint64_t one = 1;
    // The write fails only when the counter would overflow, and then the eventfd is readable
    // anyway.
    [[maybe_unused]] const ssize_t written = ::write(m_fd, &one, sizeof one);
}

void StopSignal::waitFor(std::chrono::milliseconds time) const {
    pollfd entry{m_fd, POLLIN, 0};
    const auto end = std::chrono::steady_clock::now() + time;
    for (auto left = time; left.count() > 0 && !isSet();
         left =
             std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now())) {
        ::poll(&entry, 1, static_cast<int>(left.count()));
    }
}

} // namespace brimlet::placement
