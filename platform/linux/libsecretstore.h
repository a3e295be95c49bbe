#pragma once

#include "platform/linux/secretservicewatch.h"
#include "platform/qt/secretread.h"
#include "platform/qt/serialworker.h"
#include "platform/secretstore.h"

#include <memory>

namespace brimlet {

/// The desktop's keyring, accessed through libsecret.
///
/// All libsecret calls run in order on one worker thread, because each of them may block: 25
/// seconds when the service hangs, a write until the user has answered its prompt. The thread
/// exists only while there are calls, and has its own GLib context, so the calls work with any
/// event loop that Qt uses. A read waits for the worker for up to 1.5 s; a write returns at once.
/// Without an answer, the Secret Service is watched on the main thread, and read again when it
/// changes. The destructor waits up to 0.8 s for pending writes, then cancels them. Written values
/// are kept in libsecret's memory, which is wiped when it is freed.
class LibsecretStore final : public SecretStore {
public:
    [[nodiscard]] SecretResult read(const QString& service, const QString& account,
                                    LateAnswer late) override;
    void replace(const QString& service, const QString& account,
                 const std::optional<QByteArray>& value) override;

private:
    SerialWorker m_worker;
    std::unique_ptr<SecretRead> m_read;          ///< The last read, if it was left unanswered.
    std::unique_ptr<SecretServiceWatch> m_watch; ///< While that answer is awaited.
};

} // namespace brimlet
