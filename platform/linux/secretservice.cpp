#include "platform/linux/secretservice.h"

#include <utility>

namespace brimlet::secretservice {
namespace {

/// The schema name is written but not matched in searches, so that items written by other programs
/// with the same attributes are found.
const SecretSchema schema = {
    "app.brimlet.host.Secret",
    SECRET_SCHEMA_DONT_MATCH_NAME,
    {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
     {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
     {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
    0,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

[[nodiscard]] SecretError errorOf(const GErrorPtr& failure) {
    const bool isTimeout =
        failure && g_error_matches(failure.get(), G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
    return isTimeout ? SecretError::TimedOut : SecretError::Unavailable;
}

/// Empty when there is no bus or no service; `error` may be null.
[[nodiscard]] GObjectPtr<SecretService> connect(GCancellable* cancellable, GErrorPtr* error) {
    const GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
    if (!bus) {
        return nullptr;
    }
    // By default GLib ends the process when the bus closes.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    GError* failure = nullptr;
    // Not the shared instance, which belongs to the thread that first requested it.
    GObjectPtr<SecretService> service(secret_service_open_sync(
        SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_NONE, cancellable, &failure));
    GErrorPtr owner(failure);
    if (error != nullptr) {
        *error = std::move(owner);
    }
    return service;
}

/// Why a search found nothing: some services show nothing of a collection that is locked or not
/// open.
[[nodiscard]] SecretError whyNothing(SecretService* service, GCancellable* cancellable) {
    GError* error = nullptr;
    const GObjectPtr<SecretCollection> collection(secret_collection_for_alias_sync(
        service, SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable, &error));
    const GErrorPtr failure(error);
    if (!collection) {
        return errorOf(failure);
    }
    const bool isLocked = secret_collection_get_locked(collection.get()) != FALSE;
    return isLocked ? SecretError::Locked : SecretError::NotFound;
}

[[nodiscard]] GHashTablePtr attributes(const SecretItemName& name) {
    return GHashTablePtr(secret_attributes_build(&schema, "service", name.service.constData(),
                                                 "account", name.account.constData(), nullptr));
}

struct Found final {
    GObjectListPtr items;
    GErrorPtr failure;
};

[[nodiscard]] Found search(SecretService* service, const SecretItemName& name, int flags,
                           GCancellable* cancellable) {
    GError* error = nullptr;
    GList* const items =
        secret_service_search_sync(service, &schema, attributes(name).get(),
                                   static_cast<SecretSearchFlags>(flags), cancellable, &error);
    return {GObjectListPtr(items), GErrorPtr(error)};
}

} // namespace

std::variant<SecretValuePtr, SecretError> find(const SecretItemName& name,
                                               GCancellable* cancellable) {
    GErrorPtr failure;
    const auto service = connect(cancellable, &failure);
    if (!service) {
        return errorOf(failure);
    }
    const Found found =
        search(service.get(), name, SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS, cancellable);
    if (found.failure) {
        return errorOf(found.failure);
    }
    if (found.items == nullptr) {
        return whyNothing(service.get(), cancellable);
    }
    auto whyNone = SecretError::Unavailable;
    for (GList* entry = found.items.get(); entry != nullptr; entry = entry->next) {
        auto* const item = static_cast<SecretItem*>(entry->data);
        if (SecretValuePtr value{secret_item_get_secret(item)}) {
            return value;
        }
        const bool isLocked = secret_item_get_locked(item) != FALSE;
        whyNone = isLocked ? SecretError::Locked : SecretError::Unavailable;
    }
    return whyNone;
}

bool clear(const SecretItemName& name, GCancellable* cancellable) {
    const auto service = connect(cancellable, nullptr);
    if (!service) {
        return false;
    }
    // secret_service_clear would skip locked items.
    const Found found =
        search(service.get(), name, SECRET_SEARCH_ALL | SECRET_SEARCH_UNLOCK, cancellable);
    bool isDeleted = false;
    for (GList* entry = found.items.get(); entry != nullptr; entry = entry->next) {
        auto* const item = static_cast<SecretItem*>(entry->data);
        if (secret_item_get_locked(item) == FALSE) {
            secret_item_delete_sync(item, cancellable, nullptr);
            isDeleted = true;
        }
    }
    return isDeleted;
}

void store(const SecretItemName& name, SecretValue* value, GCancellable* cancellable) {
    const auto service = connect(cancellable, nullptr);
    if (service) {
        secret_service_store_sync(service.get(), &schema, attributes(name).get(),
                                  SECRET_COLLECTION_DEFAULT, "Brimlet host token", value,
                                  cancellable, nullptr);
    }
}

} // namespace brimlet::secretservice
