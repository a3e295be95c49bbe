#pragma once

#include "platform/qt/secretread.h"
#include "platform/qt/serialworker.h"
#include "platform/secretstore.h"

#include <memory>

namespace brimlet {

/// Generic passwords in the user's default keychain.
///
/// When the keychain is locked or the program's signature has changed, a call shows a dialog and
/// blocks until the user has answered. All calls therefore run in order on a worker thread. A read
/// waits for it for up to 1.5 s and then gives TimedOut; the dialog stays on the screen, and its
/// answer is passed on when it comes. After a dismissed dialog the item is read again when the user
/// unlocks a keychain. Calls cannot be cancelled: later ones wait until the dialog is answered, and
/// those not started when the store is destroyed are dropped.
class MacSecretStore final : public SecretStore {
public:
    MacSecretStore();
    ~MacSecretStore() override;
    MacSecretStore(const MacSecretStore&) = delete;
    MacSecretStore& operator=(const MacSecretStore&) = delete;

    [[nodiscard]] SecretResult read(const QString& service, const QString& account,
                                    LateAnswer late) override;
    void replace(const QString& service, const QString& account,
                 const std::optional<QByteArray>& value) override;

private:
    class UnlockWatch;

    SerialWorker m_worker;
    std::unique_ptr<SecretRead> m_read;   ///< The last read, if it was left unanswered.
    std::unique_ptr<UnlockWatch> m_watch; ///< Since then.
};

} // namespace brimlet
