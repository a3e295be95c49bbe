#pragma once

#include <QByteArray>
#include <QString>

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

/// The user's secret store. A service and an account together name an item. Main thread only.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Blocks for two seconds at most; sees the effect of every earlier `remove` and `add`. The
    /// system may ask the user for permission. Its dialog may stay open longer. Later calls are
    /// queued behind it, and a `read` then times out.
    [[nodiscard]] virtual SecretResult read(const QString& service, const QString& account) = 0;

    /// Removes every item of that name. Returns at once; a failure is ignored.
    virtual void remove(const QString& service, const QString& account) = 0;

    /// Adds an item; there must be none of that name. Returns at once; runs after every earlier
    /// `remove` and `add`, and may ask the user to unlock the store. After a failure, which is
    /// ignored, there is no item.
    virtual void add(const QString& service, const QString& account, const QByteArray& value) = 0;
};

} // namespace brimlet
