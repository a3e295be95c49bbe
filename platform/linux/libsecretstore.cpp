#include "platform/linux/libsecretstore.h"

#include "platform/linux/glibowners.h"
#include "platform/linux/secretservice.h"
#include "platform/qt/serialworker.h"

#include <functional>
#include <stop_token>
#include <utility>

namespace brimlet {
namespace {

/// Leaves the start of the program, which waits for one, within two seconds.
constexpr std::chrono::milliseconds readingTime(1500);

[[nodiscard]] SecretItemName itemName(const QString& service, const QString& account) {
    return {service.toUtf8(), account.toUtf8()};
}

/// A job that makes a call of the Secret Service's.
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

LibsecretStore::LibsecretStore()
    : m_worker(std::make_unique<SerialWorker>()) {}

LibsecretStore::~LibsecretStore() = default;

SecretResult LibsecretStore::read(const QString& service, const QString& account) {
    using Answer = std::variant<SecretValuePtr, SecretError>;
    const auto deadline = std::chrono::steady_clock::now() + readingTime;
    const auto answer = std::make_shared<Answer>(SecretError::Unavailable);
    const bool isInTime =
        m_worker->run(jobOf([answer, name = itemName(service, account)](GCancellable* cancellable) {
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
    m_worker->post(jobOf([name = itemName(service, account)](GCancellable* cancellable) {
        secretservice::clear(name, cancellable);
    }));
}

void LibsecretStore::add(const QString& service, const QString& account, const QByteArray& value) {
    // Not "text/plain": some services store text in their own encoding.
    const std::shared_ptr<SecretValue> kept(
        secret_value_new(value.constData(), value.size(), "application/octet-stream"),
        SecretValueUnref());
    m_worker->post(jobOf([name = itemName(service, account), kept](GCancellable* cancellable) {
        secretservice::store(name, kept.get(), cancellable);
    }));
}

} // namespace brimlet
