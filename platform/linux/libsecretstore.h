#pragma once

#include "platform/qt/serialworker.h"
#include "platform/secretstore.h"

namespace brimlet {

/// The desktop's keyring, accessed through libsecret.
///
/// All libsecret calls run in order on one worker thread, because each of them may block: 25
/// seconds when the service hangs, a write until the user has answered its prompt. The thread
/// exists only while there are calls, and has its own GLib context, so the calls work with any
/// event loop that Qt uses. A read waits for the worker for up to 1.5 s; a write returns at once.
/// The destructor waits up to 0.8 s for pending writes, then cancels them. Written values are kept
/// in libsecret's memory, which is wiped when it is freed.
class LibsecretStore final : public SecretStore {
public:
    [[nodiscard]] SecretResult read(const QString& service, const QString& account) override;
    void remove(const QString& service, const QString& account) override;
    void add(const QString& service, const QString& account, const QByteArray& value) override;

private:
    SerialWorker m_worker;
};

} // namespace brimlet
