#pragma once

#include <array>
#include <atomic>
#include <chrono>

namespace brimlet::placement {

/// Ends every thread of the service, also one that waits for a socket: once the signal is set,
/// `fd()` stays readable. Thread-safe.
class StopSignal final {
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    void set();
    [[nodiscard]] bool isSet() const { return m_set.load(); }
    [[nodiscard]] int fd() const { return m_pipe[0]; }
    /// Returns after the time, or as soon as the signal is set.
    void waitFor(std::chrono::milliseconds time) const;

private:
    std::atomic<bool> m_set{false};
    std::array<int, 2> m_pipe{-1, -1}; ///< The ends to read and to write.
};

} // namespace brimlet::placement
