#include "linux/SecretStore.h"

#include "util/SessionBus.h"

#include <algorithm>
#include <utility>

namespace halvane::linux {

namespace {

constexpr const char* kServiceName = "org.freedesktop.secrets";
constexpr const char* kContentType = "application/octet-stream";

/// The name of the schema is not matched, so that an item of another program under the same service
/// is found, as the system's own store does it.
const SecretSchema kSchema{"com.halvane.GenericPassword",
                           SECRET_SCHEMA_DONT_MATCH_NAME,
                           {{"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                            {"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                            {"class", SECRET_SCHEMA_ATTRIBUTE_STRING},
                            {"accessibility", SECRET_SCHEMA_ATTRIBUTE_STRING},
                            {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}}};

struct UnrefTable {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
using Attributes = std::unique_ptr<GHashTable, UnrefTable>;

struct UnrefValue {
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using ValuePointer = std::unique_ptr<SecretValue, UnrefValue>;

Attributes attributesFor(const platform::KeychainQuery& query) {
    return Attributes(
        secret_attributes_build(&kSchema, "service", query.service.c_str(), "account", query.account.c_str(), static_cast<char*>(nullptr)));
}

Attributes fullAttributesFor(const platform::KeychainQuery& query) {
    return Attributes(secret_attributes_build(&kSchema, "service", query.service.c_str(), "account", query.account.c_str(), "class",
                                              query.itemClass.c_str(), "accessibility", query.accessibility.c_str(),
                                              static_cast<char*>(nullptr)));
}

util::Error lockedError() { return util::serviceError("secret service: the collection is locked"); }

}  // namespace

SecretStore::~SecretStore() = default;

util::Error SecretStore::failure(const char* what) const {
    return util::serviceError(std::string("secret service: ") + what + ": " + calls_.whatFailed());
}

util::Result<void> SecretStore::open() {
    if (auto connected = connect(); !connected) return connected;
    if (auto started = startService(); !started) return started;
    const auto result = calls_.wait([](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        secret_service_open(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_OPEN_SESSION, cancellable, callback, data);
    });
    service_.reset(secret_service_open_finish(result.get(), calls_.error()));
    return service_ ? util::Result<void>() : failure("cannot be opened");
}

util::Result<void> SecretStore::connect() {
    if (!util::sessionBusAddress()) return util::serviceError("secret service: there is no session bus");
    const auto result = calls_.wait([](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        g_bus_get(G_BUS_TYPE_SESSION, cancellable, callback, data);
    });
    bus_.reset(g_bus_get_finish(result.get(), calls_.error()));
    if (!bus_) return failure("the session bus cannot be reached");
    // The library would end the program together with the bus.
    g_dbus_connection_set_exit_on_close(bus_.get(), FALSE);
    return {};
}

util::Result<VariantPointer> SecretStore::askBus(const char* method, GVariant* arguments) {
    const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        g_dbus_connection_call(bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
                               nullptr, G_DBUS_CALL_FLAGS_NONE, -1, cancellable, callback, data);
    });
    VariantPointer reply(g_dbus_connection_call_finish(bus_.get(), result.get(), calls_.error()));
    if (!reply) return failure("is not there");
    return reply;
}

util::Result<void> SecretStore::startService() {
    // The library crashes when it opens a service that is not there: it has to run before.
    const auto owned = askBus("NameHasOwner", g_variant_new("(s)", kServiceName));
    if (!owned) return owned.error();
    gboolean runs = FALSE;
    if (g_variant_is_of_type(owned->get(), G_VARIANT_TYPE("(b)")) != FALSE) g_variant_get(owned->get(), "(b)", &runs);
    if (runs != FALSE) return {};
    const auto started = askBus("StartServiceByName", g_variant_new("(su)", kServiceName, 0U));
    return started ? util::Result<void>() : started.error();
}

util::Result<SecretStore::Items> SecretStore::find(const platform::KeychainQuery& query) {
    const auto attributes = attributesFor(query);
    const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        secret_service_search(service_.get(), &kSchema, attributes.get(), SECRET_SEARCH_ALL, cancellable, callback, data);
    });
    GError** error = calls_.error();
    GList* list = secret_service_search_finish(service_.get(), result.get(), error);
    if (*error != nullptr) return failure("cannot be searched");
    Items items;
    for (GList* link = list; link != nullptr; link = link->next) items.emplace_back(SECRET_ITEM(link->data));
    g_list_free(list);
    if (std::ranges::any_of(items, [](const auto& item) { return secret_item_get_locked(item.get()) != FALSE; })) return lockedError();
    if (items.empty()) {
        // A locked collection may keep to itself what it holds: then nothing found means nothing.
        if (const auto collection = openCollection(); !collection) return collection.error();
    }
    return items;
}

util::Result<GObjectPointer<SecretCollection>> SecretStore::openCollection() {
    const auto result = calls_.wait([this](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        secret_collection_for_alias(service_.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable, callback, data);
    });
    GError** error = calls_.error();
    GObjectPointer<SecretCollection> collection(secret_collection_for_alias_finish(result.get(), error));
    if (!collection)
        return *error == nullptr ? util::serviceError("secret service: there is no default collection") : failure("its collection");
    if (secret_collection_get_locked(collection.get()) != FALSE) return lockedError();
    return collection;
}

util::Result<util::Bytes> SecretStore::secretOf(SecretItem& item) {
    const auto result = calls_.wait([&item](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        secret_item_load_secret(&item, cancellable, callback, data);
    });
    if (secret_item_load_secret_finish(&item, result.get(), calls_.error()) == FALSE) return failure("the secret cannot be read");
    const ValuePointer value(secret_item_get_secret(&item));
    if (!value) return lockedError();
    std::size_t size = 0;
    const char* bytes = secret_value_get(value.get(), &size);
    return util::Bytes(bytes, size);
}

util::Result<void> SecretStore::create(const platform::KeychainQuery& query, const util::Bytes& data) {
    const auto collection = openCollection();
    if (!collection) return collection.error();
    const auto attributes = fullAttributesFor(query);
    const ValuePointer value(secret_value_new(data.data(), static_cast<gssize>(data.size()), kContentType));
    const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* userData) {
        secret_item_create(collection->get(), &kSchema, attributes.get(), ("Halvane: " + query.service).c_str(), value.get(),
                           SECRET_ITEM_CREATE_NONE, cancellable, callback, userData);
    });
    const GObjectPointer<SecretItem> item(secret_item_create_finish(result.get(), calls_.error()));
    return item ? util::Result<void>() : failure("the item cannot be stored");
}

util::Result<void> SecretStore::destroy(SecretItem& item) {
    const auto result = calls_.wait([&item](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        secret_item_delete(&item, cancellable, callback, data);
    });
    return secret_item_delete_finish(&item, result.get(), calls_.error()) != FALSE ? util::Result<void>()
                                                                                   : failure("the item cannot be deleted");
}

}  // namespace halvane::linux
