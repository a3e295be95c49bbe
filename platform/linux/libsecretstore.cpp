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

/// A worker job that makes a blocking Secret Service call, cancelled when the job is stopped.
[[nodiscard]] SerialWorker::Job jobOf(std::function<void(GCancellable*)> call) {
    return [call = std::move(call)](const std::stop_token& stop) {
        const GOwnContext context;
        const GObjectPtr<GCancellable> cancellable(g_cancellable_new());
        const std::stop_callback onStop(
            stop, [&cancellable] { g_cancellable_cancel(cancellable.get()); });
        call(cancellable.get());
    };
}

} // namespace

SecretResult LibsecretStore::read(const QString& service, const QString& account) {
    using Answer = std::variant<SecretValuePtr, SecretError>;
    const auto deadline = std::chrono::steady_clock::now() + kReadTimeout;
    const auto answer = std::make_shared<Answer>(SecretError::Unavailable);
    const bool isInTime =
        m_worker.run(jobOf([answer, name = itemName(service, account)](GCancellable* cancellable) {
                         *answer = secretservice::find(name, cancellable);
                     }),
                     deadline);
    if (!isInTime) {
        return SecretError::TimedOut;
    }
    if (const auto* const error = std::get_if<SecretError>(answer.get())) {
        return *error;
    }
    gsize size = 0;
    const gchar* const bytes = secret_value_get(std::get<SecretValuePtr>(*answer).get(), &size);
    return QByteArray(bytes, static_cast<qsizetype>(size));
}

void LibsecretStore::remove(const QString& service, const QString& account) {
    m_worker.post(jobOf([name = itemName(service, account)](GCancellable* cancellable) {
        secretservice::clear(name, cancellable);
    }));
}

void LibsecretStore::add(const QString& service, const QString& account, const QByteArray& value) {
    // Not "text/plain": some services convert text to their own encoding.
    const std::shared_ptr<SecretValue> secret(
        secret_value_new(value.constData(), value.size(), "application/octet-stream"),
        SecretValueUnref());
    m_worker.post(jobOf([name = itemName(service, account), secret](GCancellable* cancellable) {
        secretservice::store(name, secret.get(), cancellable);
    }));
}

} // namespace brimlet
