#include "platform/qt/secretread.h"

#include <QPromise>

#include <memory>
#include <utility>

namespace brimlet {
namespace {

constexpr int kMaxFailures = 100;

SecretResult resultOf(const QFuture<SecretResult>& future) {
    // A read that was stopped before it started has no result.
    return future.resultCount() > 0 ? future.result() : SecretError::Unavailable;
}

} // namespace

SecretRead::SecretRead(SerialWorker& worker, Find find, SecretStore::LateAnswer late)
    : m_worker(worker)
    , m_find(std::move(find))
    , m_late(std::move(late)) {
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &SecretRead::take);
}

SecretRead::~SecretRead() {
    m_stop.request_stop();
}

SecretResult SecretRead::readUntil(SerialWorker::Deadline deadline) {
    const QFuture<SecretResult> future = start();
    if (m_worker.waitUntil(deadline)) {
        return resultOf(future);
    }
    m_isReading = true;
    m_watcher.setFuture(future);
    return SecretError::TimedOut;
}

void SecretRead::readAgain() {
    if (m_isReading) {
        m_isOutdated = true;
    } else if (m_late && m_failures < kMaxFailures) {
        m_isReading = true;
        m_watcher.setFuture(start());
    }
}

QFuture<SecretResult> SecretRead::start() {
    const auto promise = std::make_shared<QPromise<SecretResult>>();
    promise->start();
    m_stop = m_worker.post([promise, find = m_find](const std::stop_token& stop) {
        promise->addResult(find(stop));
        promise->finish();
    });
    return promise->future();
}

void SecretRead::take() {
    m_isReading = false;
    if (!m_late) {
        return;
    }
    const SecretResult result = resultOf(m_watcher.future());
    if (isAnswer(result)) {
        // The callee may destroy this object.
        std::exchange(m_late, nullptr)(result);
        return;
    }
    if (result == SecretResult(SecretError::Locked)) {
        Q_EMIT locked();
    } else {
        ++m_failures;
    }
    if (std::exchange(m_isOutdated, false) || result == SecretResult(SecretError::TimedOut)) {
        readAgain();
    }
}

} // namespace brimlet
