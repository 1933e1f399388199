#include "systools/network/LibnmNetworkService.h"

#include "systools/Tool.h"
#include "systools/network/Activation.h"
#include "systools/network/ConnectionSettings.h"
#include "systools/network/SupplicantMessages.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <string_view>

namespace halvane::systools {

namespace {

using namespace std::chrono_literals;

/// The system's policy service, which NetworkManager asks first, may be slow.
constexpr auto kCallTime = 9s;
constexpr auto kScanTime = 5s;
/// A join takes two or three seconds, a refusal six or seven.
constexpr auto kJoinTime = 12s;
/// All calls together: a program that is ended by its alarm can say nothing any more.
constexpr auto kAllTime = 13s;
/// Beyond that, for each of the few connections that may have to be removed: what is half made must not stay.
constexpr auto kUndoTime = 1s;

std::vector<NMDevice*> devicesOf(const GPtrArray* devices) {
    std::vector<NMDevice*> all;
    for (unsigned i = 0; i < devices->len; ++i) all.push_back(NM_DEVICE(g_ptr_array_index(devices, i)));
    return all;
}

/// Of a cable. NetworkManager goes on for some seconds after it was pulled out.
bool hasCarrier(NMDevice& device) {
    gboolean carrier = TRUE;
    if (g_object_class_find_property(G_OBJECT_GET_CLASS(&device), "carrier") != nullptr)
        g_object_get(&device, "carrier", &carrier, nullptr);
    return carrier != FALSE;
}

bool offers(NMDeviceWifi* device, const std::string& ssid) {
    const auto* points = nm_device_wifi_get_access_points(device);
    for (unsigned i = 0; i < points->len; ++i) {
        GBytes* bytes = nm_access_point_get_ssid(NM_ACCESS_POINT(g_ptr_array_index(points, i)));
        gsize size = 0;
        const auto* data = bytes == nullptr ? nullptr : static_cast<const char*>(g_bytes_get_data(bytes, &size));
        if (data != nullptr && std::string_view(data, size) == ssid) return true;
    }
    return false;
}

}  // namespace

LibnmNetworkService::LibnmNetworkService() : calls_(kCallTime), end_(std::chrono::steady_clock::now() + kAllTime) {}

util::Result<std::unique_ptr<NetworkService>> LibnmNetworkService::connect() {
    std::unique_ptr<LibnmNetworkService> service(new LibnmNetworkService);
    const auto result = service->calls_.wait([](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        // By default the client has the policy service decide on all that NetworkManager can do, and our calls wait until that is done.
        g_async_initable_new_async(NM_TYPE_CLIENT, G_PRIORITY_DEFAULT, cancellable, callback, data, NM_CLIENT_INSTANCE_FLAGS,
                                   guint{NM_CLIENT_INSTANCE_FLAGS_NO_AUTO_FETCH_PERMISSIONS}, nullptr);
    });
    service->client_.reset(nm_client_new_finish(result.get(), service->calls_.error()));
    if (!service->client_) return toolError(kNoService, "NetworkManager cannot be reached: " + service->calls_.whatFailed());
    if (nm_client_get_nm_running(service->client_.get()) == FALSE) return toolError(kNoService, "NetworkManager is not running");
    return std::unique_ptr<NetworkService>(std::move(service));
}

void LibnmNetworkService::giveTime(std::chrono::milliseconds wanted, std::chrono::milliseconds atLeast) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - std::chrono::steady_clock::now());
    calls_.allow(std::clamp(left, atLeast, wanted));
}

std::vector<NetworkService::Installed> LibnmNetworkService::installed(const std::string& owner) {
    std::vector<Installed> found;
    const auto* connections = nm_client_get_connections(client_.get());
    for (unsigned i = 0; i < connections->len; ++i) {
        auto* connection = NM_CONNECTION(g_ptr_array_index(connections, i));
        auto read = ConnectionSettings::read(*connection);
        if (read && read->owner == owner) found.push_back({nm_connection_get_path(connection), std::move(*read)});
    }
    return found;
}

util::Result<std::string> LibnmNetworkService::add(const CompanyConnection& connection) {
    giveTime(kCallTime);
    const auto settings = ConnectionSettings::make(connection);
    const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        nm_client_add_connection2(client_.get(), nm_connection_to_dbus(settings.get(), NM_CONNECTION_SERIALIZE_ALL),
                                  NM_SETTINGS_ADD_CONNECTION2_FLAG_TO_DISK, nullptr, TRUE, cancellable, callback, data);
    });
    const linux::GObjectPointer<NMRemoteConnection> added(
        nm_client_add_connection2_finish(client_.get(), result.get(), nullptr, calls_.error()));
    if (added) return std::string(nm_connection_get_path(NM_CONNECTION(added.get())));
    auto error = networkManagerError(calls_, "take the network " + connection.network);
    if (error.code != kTimedOut) return error;
    // It may do so all the same, a moment later.
    NMRemoteConnection* late = nullptr;
    giveTime(kUndoTime, kUndoTime);
    calls_.waitUntil([&] {
        late = nm_client_get_connection_by_uuid(client_.get(), nm_connection_get_uuid(settings.get()));
        return late != nullptr;
    });
    if (late == nullptr) return error;
    return std::string(nm_connection_get_path(NM_CONNECTION(late)));
}

util::Result<void> LibnmNetworkService::remove(const std::string& handle) {
    // To delete it takes it down as well, only later. It matters more than what leaving answers.
    (void)leave(handle);
    auto* connection = nm_client_get_connection_by_path(client_.get(), handle.c_str());
    if (connection == nullptr) return {};
    giveTime(kCallTime, kUndoTime);
    const auto result = calls_.wait([connection](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        nm_remote_connection_delete_async(connection, cancellable, callback, data);
    });
    if (nm_remote_connection_delete_finish(connection, result.get(), calls_.error()) == FALSE)
        return networkManagerError(calls_, std::string("delete the network ") + nm_connection_get_id(NM_CONNECTION(connection)));
    return {};
}

NMActiveConnection* LibnmNetworkService::activeOf(const std::string& handle) const {
    const auto* active = nm_client_get_active_connections(client_.get());
    for (unsigned i = 0; i < active->len; ++i) {
        auto* each = NM_ACTIVE_CONNECTION(g_ptr_array_index(active, i));
        auto* connection = nm_active_connection_get_connection(each);
        if (connection != nullptr && handle == nm_connection_get_path(NM_CONNECTION(connection))) return each;
    }
    return nullptr;
}

util::Result<void> LibnmNetworkService::leave(const std::string& handle) {
    auto* active = activeOf(handle);
    if (active == nullptr) return {};
    giveTime(kCallTime);
    const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        nm_client_deactivate_connection_async(client_.get(), active, cancellable, callback, data);
    });
    if (nm_client_deactivate_connection_finish(client_.get(), result.get(), calls_.error()) == FALSE &&
        !calls_.endedWith(NM_MANAGER_ERROR, NM_MANAGER_ERROR_CONNECTION_NOT_ACTIVE))
        return networkManagerError(calls_, "leave the network");
    if (!calls_.waitUntil([&] { return activeOf(handle) == nullptr; }))
        return toolError(kTimedOut, "NetworkManager is still leaving the network");
    return {};
}

util::Result<void> LibnmNetworkService::setWireless(bool on) {
    giveTime(kCallTime);
    const auto result = calls_.wait([&](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        nm_client_dbus_set_property(client_.get(), NM_DBUS_PATH, NM_DBUS_INTERFACE, "WirelessEnabled",
                                    g_variant_new_boolean(on ? TRUE : FALSE), -1, cancellable, callback, data);
    });
    if (nm_client_dbus_set_property_finish(client_.get(), result.get(), calls_.error()) == FALSE)
        return networkManagerError(calls_, on ? "switch the radios on" : "switch the radios off");
    return {};
}

bool LibnmNetworkService::isInReach(NMDevice& device, const CompanyConnection& connection) {
    if (!NM_IS_DEVICE_WIFI(&device) || connection.hidden) return true;
    auto* wifi = NM_DEVICE_WIFI(&device);
    if (offers(wifi, connection.network)) return true;
    // The list of a radio that was asleep is old or empty: look around once.
    giveTime(kScanTime);
    const auto result = calls_.wait([wifi](GCancellable* cancellable, GAsyncReadyCallback callback, void* data) {
        nm_device_wifi_request_scan_async(wifi, cancellable, callback, data);
    });
    if (nm_device_wifi_request_scan_finish(wifi, result.get(), calls_.error()) == FALSE) return false;
    return calls_.waitUntil([&] { return offers(wifi, connection.network); });
}

util::Result<LibnmNetworkService::Device> LibnmNetworkService::deviceFor(const Installed& installed, NMConnection& connection,
                                                                         const std::optional<std::string>& interface,
                                                                         const std::set<std::string>& taken) {
    Device able;
    bool ofTheKind = false;
    bool isTaken = false;
    for (NMDevice* device : devicesOf(nm_client_get_devices(client_.get()))) {
        const char* name = nm_device_get_iface(device);
        if (name == nullptr || (interface && *interface != name)) continue;
        if (nm_device_connection_compatible(device, &connection, nullptr) == FALSE) continue;
        ofTheKind = true;
        // "Unavailable" is a cable that is not plugged in, or a radio that is off.
        if (nm_device_get_state(device) < NM_DEVICE_STATE_DISCONNECTED || !hasCarrier(*device)) continue;
        isTaken = isTaken || taken.contains(name);
        if (taken.contains(name)) continue;
        auto* active = nm_device_get_active_connection(device);
        const bool isOurs = active != nullptr && active == activeOf(installed.handle);
        if (isOurs || !able || nm_device_get_state(able.get()) > NM_DEVICE_STATE_DISCONNECTED) able.reset(NM_DEVICE(g_object_ref(device)));
        if (isOurs) break;
    }
    const bool wired = installed.connection.medium == Medium::Wired;
    if (!ofTheKind) return toolError(kNoDevice, wired ? "there is no wired device for it" : "there is no Wi-Fi device for it");
    if (!able && isTaken) return toolError(kNoDevice, "its device has joined another network");
    if (!able) return toolError(kNoDevice, wired ? "no cable is plugged in" : "the radio is off");
    if (!isInReach(*able, installed.connection)) return toolError(kNoNetwork, "the network is out of reach");
    return able;
}

/// Those that are started on devices which no other of this round has, and which none has joined with.
struct LibnmNetworkService::Round {
    std::map<std::size_t, std::unique_ptr<Activation>> activations;  // by the attempt's number
    std::set<std::string> devices;
};

LibnmNetworkService::Round LibnmNetworkService::start(const std::vector<Installed>& connections,
                                                      const std::optional<std::string>& interface, std::vector<Attempt>& attempts,
                                                      std::set<std::size_t>& waiting, const std::set<std::string>& joined) {
    Round round;
    for (const std::size_t i : std::set(waiting)) {
        const Installed& each = connections[i];
        auto* found = nm_client_get_connection_by_path(client_.get(), each.handle.c_str());
        if (found == nullptr) {
            attempts[i].why = toolError(kNoNetwork, "it was removed meanwhile");
            waiting.erase(i);
            continue;
        }
        const linux::GObjectPointer<NMConnection> connection(NM_CONNECTION(g_object_ref(found)));
        auto taken = joined;
        taken.insert(round.devices.begin(), round.devices.end());
        const auto device = deviceFor(each, *connection, interface, taken);
        if (!device) {
            // Its only device may be trying another one just now: then its turn comes when that has failed.
            if (!round.devices.empty() && deviceFor(each, *connection, interface, joined)) continue;
            attempts[i].why = device.error();
            waiting.erase(i);
            continue;
        }
        waiting.erase(i);
        attempts[i].device = nm_device_get_iface(device->get());
        auto activation = std::make_unique<Activation>(*client_, *connection, **device);
        giveTime(kCallTime);
        if (auto started = activation->start(calls_); !started) {
            attempts[i].why = started.error();
            continue;
        }
        round.devices.insert(attempts[i].device);
        round.activations.emplace(i, std::move(activation));
    }
    return round;
}

std::vector<NetworkService::Attempt> LibnmNetworkService::join(const std::vector<Installed>& connections,
                                                               const std::optional<std::string>& interface) {
    std::vector<Attempt> attempts;
    std::set<std::size_t> waiting;
    for (const auto& each : connections) {
        waiting.insert(attempts.size());
        attempts.push_back({.network = each.connection.network});
    }
    std::set<std::string> joined;
    while (!waiting.empty()) {
        const SupplicantMessages heard(nm_client_get_dbus_connection(client_.get()));
        const Round round = start(connections, interface, attempts, waiting, joined);
        giveTime(kJoinTime);
        calls_.waitUntil([&] { return std::ranges::all_of(round.activations, [](const auto& each) { return each.second->ended(); }); });
        for (const auto& [i, activation] : round.activations) {
            // The supplicant does not say which of several it speaks of.
            attempts[i].why = activation->outcome(round.activations.size() == 1 ? &heard : nullptr);
            if (!attempts[i].why) joined.insert(attempts[i].device);
        }
        if (round.activations.empty()) break;
    }
    return attempts;
}

}  // namespace halvane::systools
