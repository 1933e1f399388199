#include "linux/device/FakeHostnamed.h"

namespace halvane::test {

namespace {

constexpr const char* kName = "org.freedesktop.hostname1";

int onGetHardwareSerial(sd_bus_message* call, const FakeHostnamed& fake) {
    if (fake.manner == FakeHostnamed::Manner::KeepsSilent) return 1;
    if (fake.manner == FakeHostnamed::Manner::Refuses) return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "no");
    return sd_bus_reply_method_return(call, "s", fake.serial.c_str());
}

int onGetProductUuid(sd_bus_message* call, FakeHostnamed& fake) {
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

}  // namespace

FakeHostnamed::FakeHostnamed(const PrivateBus& bus, Manner how, std::string serialNumber, std::array<std::uint8_t, 16> machine)
    : manner(how),
      serial(std::move(serialNumber)),
      uuid(machine),
      service_(bus, kName, "/org/freedesktop/hostname1", [this](sd_bus_message* call) {
          if (sd_bus_message_is_method_call(call, kName, "GetHardwareSerial") > 0) return onGetHardwareSerial(call, *this);
          if (sd_bus_message_is_method_call(call, kName, "GetProductUUID") > 0) return onGetProductUuid(call, *this);
          return 0;
      }) {}

}  // namespace halvane::test
