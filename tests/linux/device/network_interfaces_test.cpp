#include "linux/device/LinuxNetworkInterfaces.h"
#include "linux/device/RecordedMachine.h"

#include <gtest/gtest.h>
#include <net/if.h>

namespace halvane::linux {
namespace {

using test::RecordedMachine;

constexpr const char* kHeader = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

std::string route4(const std::string& interface, const std::string& destination, int metric, const std::string& mask,
                   const std::string& flags = "0003") {
    return interface + "\t" + destination + "\t0102A8C0\t" + flags + "\t0\t0\t" + std::to_string(metric) + "\t" + mask + "\t0\t0\t0   \n";
}
std::string default4(const std::string& interface, int metric, const std::string& flags = "0003") {
    return route4(interface, "00000000", metric, "00000000", flags);
}
std::string default6(const std::string& interface, const std::string& metric, const std::string& flags = "00000003") {
    const std::string zero(32, '0');
    return zero + " 00 " + zero + " 00 fe80000000000000021122fffe334455 " + metric + " 00000001 00000000 " + flags + "     " + interface +
           "\n";
}

struct Row {
    const char* name;
    std::string route;
    std::string route6;
    const char* primary;
};

/// Wired, wireless, a tunnel, a bridge, the host's end of a container's cable, a VLAN and a monitor.
void addLaptopInterfaces(RecordedMachine& machine) {
    machine.interface("lo", 1, "00:00:00:00:00:00", false, 772);
    machine.interface("enp0s31f6", 2, "a4:83:e7:01:0b:2c", true);
    machine.interface("wlp2s0", 3, "a4:83:e7:ff:00:9e", true);
    machine.interface("tun0", 4, "", false, 65534);
    machine.interface("docker0", 5, "02:42:5c:11:22:33", false);
    machine.interface("veth1a2b3c", 7, "fe:dc:ba:98:76:54", false);
    machine.interface("enp0s31f6.100", 8, "a4:83:e7:01:0b:2c", false);
    machine.interface("mon0", 9, "a4:83:e7:ff:00:9f", true, 803);
}

TEST(NetworkInterfaces, en0_is_the_physical_interface_with_the_best_default_route) {
    const Row rows[] = {
        {"only wireless has a route", kHeader + default4("wlp2s0", 600), "", "wlp2s0"},
        {"the smaller metric wins whatever the order", kHeader + default4("wlp2s0", 600) + default4("enp0s31f6", 100), "", "enp0s31f6"},
        {"a tunnel in front is not taken", kHeader + default4("tun0", 50) + default4("wlp2s0", 600), "", "wlp2s0"},
        {"a network's route is no way out", kHeader + route4("enp0s31f6", "0002A8C0", 0, "00FFFFFF") + default4("wlp2s0", 600), "",
         "wlp2s0"},
        {"half of the world is no default", kHeader + route4("wlp2s0", "00000000", 0, "00000080") + default4("enp0s31f6", 9), "",
         "enp0s31f6"},
        {"a route that rejects", kHeader + default4("enp0s31f6", 1, "0201") + default4("wlp2s0", 600), "", "wlp2s0"},
        {"IPv6 alone, its unreachable route of lo aside", kHeader, default6("lo", "ffffffff", "00200200") + default6("wlp2s0", "00000258"),
         "wlp2s0"},
        {"IPv6 metrics are hexadecimal", kHeader + default4("enp0s31f6", 128), default6("wlp2s0", "00000064"), "wlp2s0"},
        {"nothing but a bridge: the first physical one", kHeader + default4("docker0", 0), "", "enp0s31f6"},
        {"offline", kHeader, "", "enp0s31f6"},
        {"no route files at all", "", "", "enp0s31f6"},
        {"lines cut off and garbage", kHeader + std::string("wlp2s0\t00000000\nwlp2s0 0 0 zz 0 0 x 0\n\xff\xfe"), "0 0 0\n", "enp0s31f6"},
    };
    for (const auto& row : rows) {
        RecordedMachine machine;
        addLaptopInterfaces(machine);
        if (!row.route.empty()) machine.put("proc/net/route", row.route);
        if (!row.route6.empty()) machine.put("proc/net/ipv6_route", row.route6);
        EXPECT_EQ(LinuxNetworkInterfaces(machine.files()).primary(), row.primary) << row.name;
    }
}

TEST(NetworkInterfaces, machine_without_physical_interface_has_no_en0) {
    RecordedMachine container;
    container.interface("lo", 1, "00:00:00:00:00:00", false, 772);
    container.interface("eth0", 12, "02:42:ac:11:00:02", false);
    container.put("proc/net/route", kHeader + default4("eth0", 0));
    const LinuxNetworkInterfaces interfaces(container.files());
    EXPECT_EQ(interfaces.indexOf("en0"), 0U);
    EXPECT_EQ(interfaces.indexOf("eth0"), 12U) << "its own name still finds it";

    const RecordedMachine nothing;
    EXPECT_EQ(LinuxNetworkInterfaces(nothing.files()).indexOf("en0"), 0U);
    EXPECT_EQ(LinuxNetworkInterfaces(nothing.files()).addressListLength(1), std::nullopt);
}

TEST(NetworkInterfaces, first_physical_one_is_the_first_the_kernel_found) {
    RecordedMachine server;
    for (unsigned i = 0; i < 12; ++i) server.interface("eno" + std::to_string(i), 20 - i, "00:00:00:00:00:0a", true);
    EXPECT_EQ(LinuxNetworkInterfaces(server.files()).primary(), "eno11");
}

TEST(NetworkInterfaces, link_address_is_six_bytes_or_an_error) {
    const std::tuple<const char*, const char*, std::optional<util::Bytes>> rows[] = {
        {"usual", "a4:83:e7:01:0b:2c", std::string("\xa4\x83\xe7\x01\x0b\x2c", 6)},
        {"zeros count as bytes", "00:00:00:00:00:00", std::string(6, '\0')},
        {"InfiniBand", "80:00:02:08:fe:80:00:00:00:00:00:00:00:02:c9:03:00:a1:b2:c3", std::nullopt},
        {"a tunnel has none", "", std::nullopt},
        {"cut off", "a4:83:e7:01:0b", std::nullopt},
        {"not hexadecimal", "a4:83:e7:01:0b:xy", std::nullopt},
        {"overlong pair", "a4:83:e7:01:0b:02c", std::nullopt},
    };
    for (const auto& [name, address, bytes] : rows) {
        RecordedMachine machine;
        machine.interface("eth0", 2, address, true);
        const LinuxNetworkInterfaces interfaces(machine.files());
        const auto answer = interfaces.linkAddress(2, 6);
        EXPECT_EQ(answer ? std::optional(*answer) : std::nullopt, bytes) << name;
        EXPECT_EQ(answer ? 0 : answer.error().code, bytes ? 0 : EADDRNOTAVAIL) << name;
        EXPECT_EQ(interfaces.linkAddress(2, 5).error().code, ENOBUFS) << name;
        EXPECT_EQ(interfaces.linkAddress(3, 6).error().code, ENODEV) << name;
    }
}

TEST(NetworkInterfaces, member_of_a_bond_tells_its_own_address) {
    RecordedMachine machine;
    machine.interface("eno2", 3, "aa:aa:aa:aa:aa:aa", true);
    machine.put("sys/class/net/eno2/bonding_slave/perm_hwaddr", "0c:c4:7a:11:22:33\n");
    machine.interface("bond0", 4, "aa:aa:aa:aa:aa:aa", false);
    machine.put("proc/net/route", kHeader + default4("bond0", 0));
    const LinuxNetworkInterfaces interfaces(machine.files());
    EXPECT_EQ(interfaces.linkAddress(interfaces.indexOf("en0"), 6).value(), util::Bytes("\x0c\xc4\x7a\x11\x22\x33"));
}

TEST(NetworkInterfaces, names_that_are_paths_find_nothing) {
    RecordedMachine machine;
    machine.interface("eth0", 2, "a4:83:e7:01:0b:2c", true);
    for (const char* name : {"", ".", "..", "../net/eth0", "eth0/", "eth1", "EN0"})
        EXPECT_EQ(LinuxNetworkInterfaces(machine.files()).indexOf(name), 0U) << name;
}

TEST(NetworkInterfaces, this_machine_agrees_with_the_kernel) {
    const LinuxNetworkInterfaces interfaces{SystemFiles()};
    struct if_nameindex* all = ::if_nameindex();
    ASSERT_NE(all, nullptr);
    for (const auto* each = all; each->if_index != 0; ++each) {
        EXPECT_EQ(interfaces.indexOf(each->if_name), each->if_index) << each->if_name;
        EXPECT_TRUE(interfaces.addressListLength(each->if_index)) << each->if_name;
    }
    ::if_freenameindex(all);
    if (const auto primary = interfaces.primary()) {
        const unsigned index = interfaces.indexOf("en0");
        EXPECT_EQ(index, ::if_nametoindex(primary->c_str()));
        EXPECT_TRUE(interfaces.linkAddress(index, *interfaces.addressListLength(index)));
    }
}

}  // namespace
}  // namespace halvane::linux
