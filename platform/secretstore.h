#pragma once

#include <QByteArray>
#include <QString>

#include <variant>

namespace brimlet {

enum class SecretError {
    NotFound,    ///< The store answered and has no such item.
    Locked,      ///< There is an item, but the user has to unlock the store first.
    Unavailable, ///< No store, no bus, or it broke off.
    TimedOut,    ///< The store did not answer in time.
};

/// The exact bytes of the item, which need not be text, or why there are none.
using SecretResult = std::variant<QByteArray, SecretError>;

/// The user's secret store: items named by a service and an account. Main thread only.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Answers within two seconds and sees every earlier `remove` and `add`. Where the system
    /// itself asks the user before it hands an item out, its question may show, and stays on the
    /// screen when the time is over; what is called meanwhile waits behind it.
    [[nodiscard]] virtual SecretResult read(const QString& service, const QString& account) = 0;

    /// Takes away every item of that name. Returns at once; a failure is ignored.
    virtual void remove(const QString& service, const QString& account) = 0;

    /// Adds an item; there must be none of that name. Returns at once, runs after every earlier
    /// `remove` and `add`, and may ask the user to unlock the store. A failure is ignored and
    /// leaves no item.
    virtual void add(const QString& service, const QString& account, const QByteArray& value) = 0;
};

} // namespace brimlet
