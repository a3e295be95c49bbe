#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>
#include <variant>

namespace brimlet {

enum class SecretError {
    NotFound,    ///< The store has no such item.
    Locked,      ///< There is such an item, but the user must unlock the store first.
    Unavailable, ///< No store, no bus, or the connection failed.
    TimedOut,    ///< The store did not answer in time.
};

/// The exact bytes of the item, which need not be text, or why there are none.
using SecretResult = std::variant<QByteArray, SecretError>;

/// Whether it is known what the store holds: an item, or that there is none.
[[nodiscard]] inline bool isAnswer(const SecretResult& result) {
    return std::holds_alternative<QByteArray>(result) ||
           std::get<SecretError>(result) == SecretError::NotFound;
}

/// The user's secret store. A service and an account together name an item. Main thread only.
class SecretStore {
public:
    using LateAnswer = std::function<void(const SecretResult&)>;

    virtual ~SecretStore() = default;

    /// Blocks for two seconds at most; sees the effect of every earlier `replace`. When the result
    /// is not an answer (`isAnswer`), the store goes on trying: it asks the user at most once to
    /// unlock it, reads again when it has become available or unlocked, and calls `late` once, in
    /// a later turn of the event loop, with the answer. The next `read` or `replace` ends this,
    /// and so does destroying the store.
    [[nodiscard]] virtual SecretResult read(const QString& service, const QString& account,
                                            LateAnswer late) = 0;

    /// Removes every item of that name and then, if there is a value, adds one with it. Returns at
    /// once; runs after every earlier call, and may ask the user to unlock the store. A failure is
    /// ignored; after one of adding there is no item.
    virtual void replace(const QString& service, const QString& account,
                         const std::optional<QByteArray>& value) = 0;
};

} // namespace brimlet
