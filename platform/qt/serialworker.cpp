#include "platform/qt/serialworker.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace brimlet {

struct SerialWorker::Entry final {
    Job job;
    std::stop_source stop;
};

struct SerialWorker::Queue final {
    std::mutex mutex;
    std::condition_variable changed;
    /// The running job stays first until it has ended.
    std::deque<std::shared_ptr<Entry>> entries;
    bool hasThread = false;
};

SerialWorker::SerialWorker()
    : m_queue(std::make_shared<Queue>()) {}

SerialWorker::~SerialWorker() {
    std::unique_lock lock(m_queue->mutex);
    const auto isIdle = [this] { return !m_queue->hasThread; };
    if (m_queue->changed.wait_for(lock, std::chrono::milliseconds(700), isIdle)) {
        return;
    }
    if (!m_queue->entries.empty()) {
        m_queue->entries.resize(1);
        m_queue->entries.front()->stop.request_stop();
    }
    m_queue->changed.wait_for(lock, std::chrono::milliseconds(100), isIdle);
}

bool SerialWorker::waitUntil(Deadline deadline) {
    std::unique_lock lock(m_queue->mutex);
    return m_queue->changed.wait_until(lock, deadline, [this] { return !m_queue->hasThread; });
}

std::stop_source SerialWorker::post(Job job) {
    auto entry = std::make_shared<Entry>();
    entry->job = std::move(job);
    const std::lock_guard lock(m_queue->mutex);
    m_queue->entries.push_back(entry);
    if (!m_queue->hasThread) {
        try {
            std::thread(&SerialWorker::work, m_queue).detach();
            m_queue->hasThread = true;
        } catch (const std::system_error&) {
            // No thread could be started. The job stays queued; the next one tries again.
        }
    }
    return entry->stop;
}

void SerialWorker::work(const std::shared_ptr<Queue>& queue) {
    std::unique_lock lock(queue->mutex);
    while (!queue->entries.empty()) {
        const auto entry = queue->entries.front();
        lock.unlock();
        if (!entry->stop.stop_requested()) {
            entry->job(entry->stop.get_token());
        }
        entry->job = nullptr; // destroys its captures before the caller continues
        lock.lock();
        queue->entries.pop_front();
    }
    queue->hasThread = false;
    queue->changed.notify_all();
}

} // namespace brimlet
