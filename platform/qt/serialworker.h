#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

namespace brimlet {

/// Runs jobs one after another, in order, on a thread that exists only while there are jobs. All
/// members must be called from one thread.
class SerialWorker final {
public:
    /// Runs on the worker thread and may outlive this object, so it must own everything it uses. It
    /// should return early when a stop is requested.
    using Job = std::function<void(const std::stop_token&)>;
    using Deadline = std::chrono::steady_clock::time_point;

    SerialWorker();
    /// Waits 0.7 s for the jobs, then drops those that have not started and requests the running
    /// one to stop. If that has not returned 0.1 s later, its thread is left running, detached.
    ~SerialWorker();
    SerialWorker(const SerialWorker&) = delete;
    SerialWorker& operator=(const SerialWorker&) = delete;

    /// Queues the job and returns at once. A stop requested of the result skips a job that has not
    /// started, and is passed on to one that is running.
    std::stop_source post(Job job);

    /// Waits for all jobs. True when the last has ended before the deadline.
    [[nodiscard]] bool waitUntil(Deadline deadline);

private:
    struct Entry;
    struct Queue;

    static void work(const std::shared_ptr<Queue>& queue);

    /// Shared with the worker thread.
    std::shared_ptr<Queue> m_queue;
};

} // namespace brimlet
