#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

namespace brimlet {

/// Runs jobs strictly one after another on a thread that exists only while there are any. All
/// members are for one thread.
class SerialWorker final {
public:
    /// Should end early once a stop is requested, if it can. It must hold all it touches, and may
    /// outlive the worker.
    using Job = std::function<void(const std::stop_token&)>;
    using Deadline = std::chrono::steady_clock::time_point;

    SerialWorker();
    /// Gives the jobs 0.7 s to end, then drops those that have not begun, asks the one that has to
    /// stop, and leaves it to itself if it does not heed that within another 0.1 s.
    ~SerialWorker();
    SerialWorker(const SerialWorker&) = delete;
    SerialWorker& operator=(const SerialWorker&) = delete;

    /// Returns at once.
    void post(Job job);

    /// True when the job, and every earlier one, has ended before the deadline. Otherwise the job
    /// is dropped or asked to stop, and its effect must be ignored.
    [[nodiscard]] bool run(Job job, Deadline deadline);

private:
    struct Entry;
    struct Queue;

    [[nodiscard]] std::shared_ptr<Entry> enqueue(Job job);
    static void work(const std::shared_ptr<Queue>& queue);

    /// Shared with the thread.
    std::shared_ptr<Queue> m_queue;
};

} // namespace brimlet
