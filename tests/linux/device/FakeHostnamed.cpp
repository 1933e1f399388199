#include "linux/device/FakeHostnamed.h"

#include <systemd/sd-bus.h>

namespace halvane::test {

namespace {

constexpr const char* kName = "org.freedesktop.hostname1";

int onGetHardwareSerial(sd_bus_message* call, void* userData, sd_bus_error*) {
    const auto& fake = *static_cast<FakeHostnamed*>(userData);
    if (fake.manner == FakeHostnamed::Manner::KeepsSilent) return 1;
    if (fake.manner == FakeHostnamed::Manner::Refuses) return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "no");
    return sd_bus_reply_method_return(call, "s", fake.serial.c_str());
}

int onGetProductUuid(sd_bus_message* call, void* userData, sd_bus_error*) {
    auto& fake = *static_cast<FakeHostnamed*>(userData);
    int interactive = 0;
    sd_bus_message_read(call, "b", &interactive);
    if (interactive != 0) fake.askedInteractively = true;
    if (fake.manner == FakeHostnamed::Manner::KeepsSilent) return 1;
    if (fake.manner == FakeHostnamed::Manner::Refuses) return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "no");
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(call, &reply);
    sd_bus_message_append_array(reply, 'y', fake.uuid.data(), fake.uuid.size());
    const int sent = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return sent;
}

// The library's own macros for this table use designators that C++ orders differently.
int onCall(sd_bus_message* message, void* userData, sd_bus_error* error) {
    if (sd_bus_message_is_method_call(message, kName, "GetHardwareSerial") > 0) return onGetHardwareSerial(message, userData, error);
    if (sd_bus_message_is_method_call(message, kName, "GetProductUUID") > 0) return onGetProductUuid(message, userData, error);
    return 0;
}

}  // namespace

FakeHostnamed::FakeHostnamed(const PrivateBus& bus, Manner how, std::string serialNumber, std::array<std::uint8_t, 16> machine)
    : manner(how), serial(std::move(serialNumber)), uuid(machine), thread_([this, address = bus.address()] { serve(address); }) {
    ready_.wait(false);
}

FakeHostnamed::~FakeHostnamed() {
    ending_ = true;
    thread_.join();
}

void FakeHostnamed::serve(const std::string& address) {
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, address.c_str());
    sd_bus_set_bus_client(bus, 1);
    sd_bus_start(bus);
    sd_bus_add_object(bus, nullptr, "/org/freedesktop/hostname1", onCall, this);
    sd_bus_request_name(bus, kName, 0);
    ready_ = true;
    ready_.notify_all();
    while (!ending_) {
        while (sd_bus_process(bus, nullptr) > 0) {
        }
        sd_bus_wait(bus, 20'000);
    }
    sd_bus_flush_close_unref(bus);
}

}  // namespace halvane::test
