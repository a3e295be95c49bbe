#include "tools/placement/stopsignal.h"

#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace brimlet::placement {

StopSignal::StopSignal() {
    if (::pipe(m_pipe.data()) != 0) {
        std::abort();
    }
    for (const int end : m_pipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
}

StopSignal::~StopSignal() {
    for (const int end : m_pipe) {
        ::close(end);
    }
}

void StopSignal::set() {
    if (!m_set.exchange(true)) {
        // Never read, so the other end stays readable. An empty pipe takes a byte.
        [[maybe_unused]] const ssize_t written = ::write(m_pipe[1], "", 1);
    }
}

void StopSignal::waitFor(std::chrono::milliseconds time) const {
    pollfd entry{fd(), POLLIN, 0};
    const auto end = std::chrono::steady_clock::now() + time;
    for (auto left = time; left.count() > 0 && !isSet();
         left =
             std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now())) {
        ::poll(&entry, 1, static_cast<int>(left.count()));
    }
}

} // namespace brimlet::placement
