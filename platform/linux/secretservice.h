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

/// Never prompts. Without such an item it gives Locked while the default collection is locked, and
/// Unavailable while there is none, because some services show nothing of a collection that is
/// locked or not open. A cancelled call gives Unavailable.
[[nodiscard]] std::variant<SecretValuePtr, SecretError> find(const SecretItemName& name,
                                                             GCancellable* cancellable);

/// Deletes all items of that name, after prompting the user if they are locked. Returns whether the
/// service was asked to delete any.
bool clear(const SecretItemName& name, GCancellable* cancellable);

/// Stores into the user's default collection, after prompting the user if it is locked.
void store(const SecretItemName& name, SecretValue* value, GCancellable* cancellable);

} // namespace secretservice
} // namespace brimlet
