#include "platform/linux/secretservice.h"

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

/// Empty when there is no bus.
[[nodiscard]] GObjectPtr<SecretService> connect(GCancellable* cancellable) {
    const GObjectPtr<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
    if (!bus) {
        return nullptr;
    }
    // By default GLib ends the process when the bus closes.
    g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    // Not the shared instance, which belongs to the thread that first requested it.
    return GObjectPtr<SecretService>(secret_service_open_sync(
        SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_NONE, cancellable, nullptr));
}

[[nodiscard]] GHashTablePtr attributes(const SecretItemName& name) {
    return GHashTablePtr(secret_attributes_build(&schema, "service", name.service.constData(),
                                                 "account", name.account.constData(), nullptr));
}

struct Found final {
    GObjectListPtr items;
    bool isFailed = false;
};

[[nodiscard]] Found search(SecretService* service, const SecretItemName& name, int flags,
                           GCancellable* cancellable) {
    GError* error = nullptr;
    GList* const items =
        secret_service_search_sync(service, &schema, attributes(name).get(),
                                   static_cast<SecretSearchFlags>(flags), cancellable, &error);
    const GErrorPtr failure(error);
    return {GObjectListPtr(items), failure != nullptr};
}

} // namespace

std::variant<SecretValuePtr, SecretError> find(const SecretItemName& name,
                                               GCancellable* cancellable) {
    const auto service = connect(cancellable);
    if (!service) {
        return SecretError::Unavailable;
    }
    const Found found =
        search(service.get(), name, SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS, cancellable);
    if (found.isFailed) {
        return SecretError::Unavailable;
    }
    auto whyNone = SecretError::NotFound;
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

void clear(const SecretItemName& name, GCancellable* cancellable) {
    const auto service = connect(cancellable);
    if (!service) {
        return;
    }
    // secret_service_clear would skip locked items.
    const Found found =
        search(service.get(), name, SECRET_SEARCH_ALL | SECRET_SEARCH_UNLOCK, cancellable);
    for (GList* entry = found.items.get(); entry != nullptr; entry = entry->next) {
        auto* const item = static_cast<SecretItem*>(entry->data);
        if (secret_item_get_locked(item) == FALSE) {
            secret_item_delete_sync(item, cancellable, nullptr);
        }
    }
}

void store(const SecretItemName& name, SecretValue* value, GCancellable* cancellable) {
    const auto service = connect(cancellable);
    if (service) {
        secret_service_store_sync(service.get(), &schema, attributes(name).get(),
                                  SECRET_COLLECTION_DEFAULT, "Brimlet host token", value,
                                  cancellable, nullptr);
    }
}

} // namespace brimlet::secretservice
