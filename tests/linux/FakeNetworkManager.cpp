#include "linux/FakeNetworkManager.h"

#include <systemd/sd-bus.h>

#include <stdexcept>
#include <utility>

namespace halvane::test {

namespace {

constexpr const char* kName = "org.freedesktop.NetworkManager";
constexpr const char* kPath = "/org/freedesktop/NetworkManager";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

int appendProperties(sd_bus_message* message, std::uint32_t state, const std::string& type) {
    // Properties that nobody asked for stand around those of interest, as in life.
    return sd_bus_message_append(message, "a{sv}", 4, "Devices", "ao", 1, "/org/freedesktop/NetworkManager/Devices/1", "State", "u", state,
                                 "Version", "s", "1.42.4", "PrimaryConnectionType", "s", type.c_str());
}

}  // namespace

FakeNetworkManager::FakeNetworkManager(const PrivateBus& bus, std::uint32_t state, std::string connectionType, Manner manner)
    : manner_(manner), state_(state), connectionType_(std::move(connectionType)) {
    sd_bus_new(&bus_);
    sd_bus_set_address(bus_, bus.address().c_str());
    sd_bus_set_bus_client(bus_, 1);
    sd_bus_start(bus_);
    const auto onCall = [](sd_bus_message* call, void* data, sd_bus_error*) -> int {
        auto& self = *static_cast<FakeNetworkManager*>(data);
        if (sd_bus_message_is_method_call(call, kProperties, "GetAll") <= 0) return 0;
        self.asked_ = true;
        if (self.manner_ == Manner::KeepsSilent) return 1;
        sd_bus_message* reply = nullptr;
        sd_bus_message_new_method_return(call, &reply);
        {
            const std::lock_guard lock(self.mutex_);
            appendProperties(reply, self.state_, self.connectionType_);
        }
        const int sent = sd_bus_send(nullptr, reply, nullptr);
        sd_bus_message_unref(reply);
        return sent;
    };
    sd_bus_add_object(bus_, nullptr, kPath, onCall, this);
    if (sd_bus_request_name(bus_, kName, 0) < 0) throw std::runtime_error("no name");
    thread_ = std::thread([this] { serve(); });
}

FakeNetworkManager::~FakeNetworkManager() {
    ending_ = true;
    thread_.join();
    sd_bus_flush_close_unref(bus_);
}

void FakeNetworkManager::change(std::uint32_t state, const std::string& connectionType) {
    const std::lock_guard lock(mutex_);
    state_ = state;
    connectionType_ = connectionType;
    changed_ = true;
}

void FakeNetworkManager::serve() {
    while (!ending_) {
        while (sd_bus_process(bus_, nullptr) > 0) {
        }
        tellChange();
        sd_bus_wait(bus_, 5'000);
    }
}

void FakeNetworkManager::tellChange() {
    const std::lock_guard lock(mutex_);
    if (!std::exchange(changed_, false)) return;
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(bus_, &signal, kPath, kProperties, "PropertiesChanged");
    sd_bus_message_append(signal, "s", kName);
    appendProperties(signal, state_, connectionType_);
    sd_bus_message_append(signal, "as", 0);
    sd_bus_send(bus_, signal, nullptr);
    sd_bus_message_unref(signal);
}

}  // namespace halvane::test
