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
/// Bytes in memory that libsecret wipes when it is freed and, where the system allows it, keeps
/// from being swapped out.
using SecretValuePtr = std::unique_ptr<SecretValue, SecretValueUnref>;

/// The attributes that identify an item, in UTF-8.
struct SecretItemName final {
    QByteArray service;
    QByteArray account;
};

/// Calls to the desktop's Secret Service. Each call makes its own connection, so a service may be
/// started, ended or replaced at any time. A call blocks until the service has answered or
/// `cancellable` is cancelled; make it on a thread that has a GOwnContext.
namespace secretservice {

/// Never prompts. Gives Locked also while there is no such item but the default collection is
/// locked, because some services show nothing of a locked collection. A cancelled call gives
/// Unavailable.
[[nodiscard]] std::variant<SecretValuePtr, SecretError> find(const SecretItemName& name,
                                                             GCancellable* cancellable);

/// Deletes all items of that name, after prompting the user if they are locked.
void clear(const SecretItemName& name, GCancellable* cancellable);

/// Stores into the user's default collection, after prompting the user if it is locked.
void store(const SecretItemName& name, SecretValue* value, GCancellable* cancellable);

} // namespace secretservice
} // namespace brimlet
