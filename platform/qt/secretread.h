#pragma once

#include "platform/qt/serialworker.h"
#include "platform/secretstore.h"

#include <QFutureWatcher>

#include <functional>
#include <stop_token>

namespace brimlet {

/// Reads one item of a secret store on a worker: once for a caller who waits, and as often as
/// needed until there is an answer. Main thread only.
class SecretRead final : public QObject {
    Q_OBJECT

public:
    /// Looks for the item. Runs on the worker thread, so it must own everything it uses, and should
    /// return early when a stop is requested.
    using Find = std::function<SecretResult(const std::stop_token& stop)>;

    /// The worker must outlive this object.
    SecretRead(SerialWorker& worker, Find find, SecretStore::LateAnswer late);
    /// Requests a read under way to stop. `late` is not called any more.
    ~SecretRead() override;

    /// `late` is not called any more. A read under way goes on; a prompt that it shows can still be
    /// answered, and then serves the calls queued behind it.
    void ignoreAnswer() { m_late = nullptr; }

    /// Reads. Waits until the deadline and then gives TimedOut; the read goes on, and its answer is
    /// passed to `late`. Call first, and once.
    [[nodiscard]] SecretResult readUntil(SerialWorker::Deadline deadline);

    /// Reads, after a read under way, and passes an answer to `late`. Does nothing after an answer,
    /// or after a hundred failures: a service that ends whenever it is called would otherwise be
    /// started again and again.
    void readAgain();

Q_SIGNALS:
    /// A read whose result was not waited for has found the store locked.
    void locked();

private:
    QFuture<SecretResult> start();
    void take();

    SerialWorker& m_worker;
    Find m_find;
    SecretStore::LateAnswer m_late;
    QFutureWatcher<SecretResult> m_watcher;
    std::stop_source m_stop;
    int m_failures = 0;
    bool m_isReading = false;
    bool m_isOutdated = false; ///< Something changed during the read under way.
};

} // namespace brimlet
