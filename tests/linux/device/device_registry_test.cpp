#include "linux/device/FakeHostnamed.h"
#include "linux/device/LinuxDeviceRegistry.h"
#include "linux/device/RecordedMachine.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace halvane::linux {
namespace {

using test::FakeHostnamed;
using test::PrivateBus;
using test::RecordedMachine;
using namespace std::chrono_literals;

constexpr const char* kClass = "IOPlatformExpertDevice";
constexpr const char* kSerial = "IOPlatformSerialNumber";
constexpr const char* kUuid = "IOPlatformUUID";
constexpr std::array<std::uint8_t, 16> kBusUuid = {0xde, 0xad, 0xbe, 0xef, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0xa, 0xb, 0xc};

std::optional<std::string> text(const LinuxDeviceRegistry& registry, const std::string& key, const std::string& serviceClass = kClass) {
    const auto value = registry.property(serviceClass, key);
    return value ? std::optional(*value->text()) : std::nullopt;
}

HostnamedClient noBus() { return HostnamedClient("unix:path=/no/such/socket"); }

TEST(DeviceRegistry, serial_number_is_the_first_source_that_is_filled_in) {
    const std::tuple<const char*, RecordedMachine::Files, std::optional<std::string>> rows[] = {
        {"firmware", {{"sys/class/dmi/id/product_serial", "PF3ABCDE\n"}, {"var/lib/halvane/machine-serial", "OLD\n"}}, "PF3ABCDE"},
        {"blanks around", {{"sys/class/dmi/id/product_serial", "  VMware-56 4d 0c  \n"}}, "VMware-56 4d 0c"},
        {"filler, so what was recorded",
         {{"sys/class/dmi/id/product_serial", "To Be Filled By O.E.M.\n"}, {"var/lib/halvane/machine-serial", "R90XYZ\n"}},
         "R90XYZ"},
        {"device tree", {{"proc/device-tree/serial-number", std::string("10000000f00dcafe\0", 17)}}, "10000000f00dcafe"},
        {"a recorded filler does not count either", {{"var/lib/halvane/machine-serial", "Default string\n"}}, std::nullopt},
        {"nothing", {}, std::nullopt},
    };
    for (const auto& [name, files, serial] : rows) {
        const RecordedMachine machine(files);
        EXPECT_EQ(text(LinuxDeviceRegistry(machine.files(), noBus()), kSerial), serial) << name;
    }
}

TEST(DeviceRegistry, filler_texts_of_makers_identify_no_machine) {
    for (const char* filler : {"To Be Filled By O.E.M.", "to be filled by o.e.m.", "None", "0", "Default string", "System Serial Number",
                               "", "   ", "00000000", "Not Specified", "N/A", "........", "0123456789", "INVALID", "\xff\xfe", "a\x01z"}) {
        const RecordedMachine machine{{"sys/class/dmi/id/product_serial", std::string(filler) + "\n"}};
        EXPECT_EQ(text(LinuxDeviceRegistry(machine.files(), noBus()), kSerial), std::nullopt) << filler;
    }
    for (const char* serial : {"1", "00000001", "5CG0123ABC", "None1", "0x0"}) {
        const RecordedMachine machine{{"sys/class/dmi/id/product_serial", std::string(serial) + "\n"}};
        EXPECT_EQ(text(LinuxDeviceRegistry(machine.files(), noBus()), kSerial), serial);
    }
}

TEST(DeviceRegistry, uuid_is_upper_case_and_never_a_filler) {
    const std::tuple<const char*, std::optional<std::string>> rows[] = {
        {"4c4c4544-0042-3510-8052-b4c04f4a4d32", "4C4C4544-0042-3510-8052-B4C04F4A4D32"},
        {"00000000-0000-0000-0000-000000000000", std::nullopt},
        {"FFFFFFFF-ffff-ffff-ffff-ffffffffffff", std::nullopt},
        {"03000200-0400-0500-0006-000700080009", std::nullopt},
        {"4c4c4544-0042-3510-8052-b4c04f4a4d3", std::nullopt},
        {"4c4c4544x0042-3510-8052-b4c04f4a4d32", std::nullopt},
        {"Not Settable", std::nullopt},
    };
    for (const auto& [told, uuid] : rows) {
        const RecordedMachine firmware{{"sys/class/dmi/id/product_uuid", std::string(told) + "\n"}};
        EXPECT_EQ(text(LinuxDeviceRegistry(firmware.files(), noBus()), kUuid), uuid) << told;
        const RecordedMachine recorded{{"var/lib/halvane/machine-uuid", std::string(told) + "\n"}};
        EXPECT_EQ(text(LinuxDeviceRegistry(recorded.files(), noBus()), kUuid), uuid) << told;
    }
}

TEST(DeviceRegistry, other_classes_and_keys_have_no_property) {
    const RecordedMachine machine{{"sys/class/dmi/id/product_serial", "PF3ABCDE\n"}};
    const LinuxDeviceRegistry registry(machine.files(), noBus());
    EXPECT_EQ(text(registry, kSerial, "IOPlatformDevice"), std::nullopt);
    EXPECT_EQ(text(registry, "product_serial"), std::nullopt);
}

TEST(DeviceRegistry, hostnamed_is_asked_when_the_firmware_may_not_be_read) {
    const PrivateBus bus;
    const FakeHostnamed hostnamed(bus, FakeHostnamed::Manner::Answers, "BUS-SERIAL", kBusUuid);
    const RecordedMachine machine{{"var/lib/halvane/machine-serial", "RECORDED\n"}};
    const LinuxDeviceRegistry registry(machine.files(), HostnamedClient(bus.address()));
    EXPECT_EQ(text(registry, kSerial), "BUS-SERIAL");
    EXPECT_EQ(text(registry, kUuid), "DEADBEEF-0102-0304-0506-0708090A0B0C");
    EXPECT_FALSE(hostnamed.askedInteractively) << "nobody sits there to type an administrator's password";
}

TEST(DeviceRegistry, refusal_filler_and_silence_of_hostnamed_lead_to_what_was_recorded) {
    const RecordedMachine machine{{"var/lib/halvane/machine-serial", "RECORDED\n"}};
    const std::tuple<const char*, FakeHostnamed::Manner, const char*> rows[] = {
        {"refuses", FakeHostnamed::Manner::Refuses, "BUS-SERIAL"},
        {"tells a filler", FakeHostnamed::Manner::Answers, "System Serial Number"},
        {"keeps silent", FakeHostnamed::Manner::KeepsSilent, "BUS-SERIAL"},
    };
    for (const auto& [name, manner, serial] : rows) {
        const PrivateBus bus;
        const FakeHostnamed hostnamed(bus, manner, serial, {});
        const LinuxDeviceRegistry registry(machine.files(), HostnamedClient(bus.address(), 200ms));
        EXPECT_EQ(text(registry, kSerial), "RECORDED") << name;
        EXPECT_EQ(text(registry, kUuid), std::nullopt) << name;
    }
    const PrivateBus empty;
    EXPECT_EQ(text(LinuxDeviceRegistry(machine.files(), HostnamedClient(empty.address())), kSerial), "RECORDED") << "nobody on the bus";
}

/// A socket that takes connections and never says a word, as a bus daemon that hangs does.
class HangingBus {
public:
    HangingBus() : path_(std::filesystem::temp_directory_path() / ("halvane-hang-" + std::to_string(::getpid()))) {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        path_.string().copy(name.sun_path, sizeof name.sun_path - 1);
        socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 || ::listen(socket_, 8) != 0)
            throw std::runtime_error("cannot listen on " + path_.string());
    }
    ~HangingBus() {
        ::close(socket_);
        ::unlink(path_.c_str());
    }
    [[nodiscard]] std::string address() const { return "unix:path=" + path_.string(); }

private:
    std::filesystem::path path_;
    int socket_ = -1;
};

TEST(DeviceRegistry, bus_that_hangs_costs_no_more_than_the_deadline) {
    const HangingBus bus;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(HostnamedClient(bus.address(), 300ms).hardwareSerial(), std::nullopt);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_GE(took, 250ms) << "it should have hung";
    EXPECT_LT(took, 5s);
}

}  // namespace
}  // namespace halvane::linux
