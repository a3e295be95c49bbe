#pragma once

#include "platform/secretstore.h"

#include <memory>

namespace brimlet {

class SerialWorker;

/// The desktop's keyring, by way of libsecret.
///
/// Every call to it is made on one worker thread, in order, because any of them may block: a
/// service that hangs for 25 seconds, a write until the user has answered its prompt. The thread
/// has a GLib context of its own, so that no answer depends on the kind of event loop Qt runs on,
/// and exists only while there is something to do. Here a read waits for its answer up to the
/// deadline; a write is left behind. Values stay in libsecret's wiped memory on their way.
class LibsecretStore final : public SecretStore {
public:
    LibsecretStore();
    /// Gives writes under way up to 0.8 s to end, then cancels them.
    ~LibsecretStore() override;
    LibsecretStore(const LibsecretStore&) = delete;
    LibsecretStore& operator=(const LibsecretStore&) = delete;

    [[nodiscard]] SecretResult read(const QString& service, const QString& account) override;
    void remove(const QString& service, const QString& account) override;
    void add(const QString& service, const QString& account, const QByteArray& value) override;

private:
    std::unique_ptr<SerialWorker> m_worker;
};

} // namespace brimlet
