#include "platform/linux/libsecretstore.h"

#include "platform/linux/glibowners.h"
#include "platform/linux/secretservice.h"

#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

namespace brimlet {
namespace {

/// The program's start waits for one read and must take less than two seconds.
constexpr std::chrono::milliseconds kReadTimeout(1500);

[[nodiscard]] SecretItemName itemName(const QString& service, const QString& account) {
    return {service.toUtf8(), account.toUtf8()};
}

/// Makes blocking Secret Service calls, which are cancelled when the job is stopped.
void call(const std::stop_token& stop, const std::function<void(GCancellable*)>& calls) {
    const GOwnContext context;
    const GObjectPtr<GCancellable> cancellable(g_cancellable_new());
    const std::stop_callback onStop(stop,
                                    [&cancellable] { g_cancellable_cancel(cancellable.get()); });
    calls(cancellable.get());
}

[[nodiscard]] SecretResult resultOf(const std::variant<SecretValuePtr, SecretError>& found) {
    if (const auto* const error = std::get_if<SecretError>(&found)) {
        return *error;
    }
    gsize size = 0;
    const gchar* const bytes = secret_value_get(std::get<SecretValuePtr>(found).get(), &size);
    return QByteArray(bytes, static_cast<qsizetype>(size));
}

} // namespace

SecretResult LibsecretStore::read(const QString& service, const QString& account, LateAnswer late) {
    const auto deadline = std::chrono::steady_clock::now() + kReadTimeout;
    m_watch.reset();
    m_read = std::make_unique<SecretRead>(
        m_worker,
        [name = itemName(service, account)](const std::stop_token& stop) {
            SecretResult result = SecretError::Unavailable;
            call(stop, [&](GCancellable* cancellable) {
                result = resultOf(secretservice::find(name, cancellable));
            });
            return result;
        },
        [this, late](const SecretResult& result) {
            m_watch.reset();
            late(result);
        });
    const SecretResult result = m_read->readUntil(deadline);
    if (isAnswer(result)) {
        m_read.reset();
        return result;
    }
    m_watch = std::make_unique<SecretServiceWatch>(service, account);
    QObject::connect(m_watch.get(), &SecretServiceWatch::changed, m_read.get(),
                     &SecretRead::readAgain);
    QObject::connect(m_read.get(), &SecretRead::locked, m_watch.get(),
                     &SecretServiceWatch::askToUnlock);
    m_read->readAgain(); // for what has changed since the read
    return result;
}

void LibsecretStore::replace(const QString& service, const QString& account,
                             const std::optional<QByteArray>& value) {
    m_read.reset();
    if (m_watch && !m_watch->isPrompting()) { // else the user may be typing
        m_watch.reset();
    }
    std::shared_ptr<SecretValue> secret;
    if (value) {
        // Not "text/plain": some services convert text to their own encoding.
        secret.reset(
            secret_value_new(value->constData(), value->size(), "application/octet-stream"),
            SecretValueUnref());
    }
    // One job, and once something is deleted the value is added even if the program ends.
    m_worker.post([name = itemName(service, account), secret](const std::stop_token& stop) {
        call(stop, [&](GCancellable* cancellable) {
            const bool isDeleted = secretservice::clear(name, cancellable);
            if (secret) {
                secretservice::store(name, secret.get(), isDeleted ? nullptr : cancellable);
            }
        });
    });
}

} // namespace brimlet
