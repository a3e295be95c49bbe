#pragma once

#include "platform/linux/glibowners.h"
#include "platform/secretstore.h"

#include <libsecret/secret.h>

#include <memory>
#include <variant>

namespace brimlet {

struct SecretValueUnref {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
/// Bytes in memory that is not swapped out where the system allows that, and wiped at the end.
using SecretValuePtr = std::unique_ptr<SecretValue, SecretValueUnref>;

/// The attributes an item is found by, UTF-8.
struct SecretItemName final {
    QByteArray service;
    QByteArray account;
};

/// The desktop's Secret Service, asked anew by each call: one that starts, ends or is replaced
/// while the program runs makes no difference. The calls block until the service has answered or
/// the call is cancelled, and belong on a thread that has a GOwnContext.
namespace secretservice {

/// Never prompts. A cancelled call is Unavailable.
[[nodiscard]] std::variant<SecretValuePtr, SecretError> find(const SecretItemName& name,
                                                             GCancellable* cancellable);

/// Deletes every item of that name. May prompt.
void clear(const SecretItemName& name, GCancellable* cancellable);

/// Stores into the user's default collection. May prompt.
void store(const SecretItemName& name, SecretValue* value, GCancellable* cancellable);

} // namespace secretservice
} // namespace brimlet
