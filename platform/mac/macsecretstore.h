#pragma once

#include "platform/qt/serialworker.h"
#include "platform/secretstore.h"

namespace brimlet {

/// Generic passwords in the user's default keychain.
///
/// A keychain that is locked, or one that finds the program signed anew, asks the user and waits
/// for the answer. So every call is made on a thread of its own, in order; a read is waited for up
/// to a deadline and then given up here, while the question stays on the screen. No call can be
/// broken off: what comes later waits behind the question, and what has not begun when the program
/// ends is dropped.
class MacSecretStore final : public SecretStore {
public:
    [[nodiscard]] SecretResult read(const QString& service, const QString& account) override;
    void remove(const QString& service, const QString& account) override;
    void add(const QString& service, const QString& account, const QByteArray& value) override;

private:
    SerialWorker m_worker;
};

} // namespace brimlet
