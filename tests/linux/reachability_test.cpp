#include "linux/FakeNetworkManager.h"
#include "linux/LocalSocket.h"
#include "linux/base/Descriptor.h"
#include "linux/base/NetworkManagerReachability.h"
#include "support/Eventually.h"
#include "support/ManualMainLoop.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <net/route.h>
#include <sched.h>
#include <sys/ioctl.h>

#include <fstream>
#include <memory>
#include <optional>
#include <vector>

namespace halvane::linux {
namespace {

using platform::ReachabilityStatus;
using test::FakeNetworkManager;
using Statuses = std::vector<int>;

constexpr const char* kNoRoute = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
constexpr const char* kDefaultRoute =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
    "eth0\t00000000\t0100A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n";

class ReachabilityTest : public testing::Test {
protected:
    ReachabilityTest() { routes(kNoRoute); }

    void routes(const std::string& text) {
        std::filesystem::create_directories(files.path() / "proc/net");
        std::ofstream(files.path() / "proc/net/route") << text;
    }
    void watch(const std::string& busAddress, std::chrono::milliseconds patience = NetworkManagerReachability::kPatience) {
        reachability.emplace(loop, NetworkManagerReachability::Sources{busAddress, SystemFiles(files.path()), patience});
        reachability->setHandler([this](ReachabilityStatus status) { heard.push_back(static_cast<int>(status)); });
        reachability->startMonitoring();
    }
    /// Whether this, and nothing else, is heard in the end.
    bool hears(const Statuses& expected) {
        return test::eventually([&] { return loop.runPending(), heard.size() >= expected.size(); }) && heard == expected;
    }

    const test::TemporaryDirectory files;
    test::ManualMainLoop loop;
    std::optional<NetworkManagerReachability> reachability;
    Statuses heard;
};

TEST_F(ReachabilityTest, the_kind_of_network_follows_state_and_primary_connection) {
    struct Row {
        std::uint32_t state;
        const char* type;
        int expected;
    };
    const Row rows[] = {
        {70, "802-3-ethernet", 2},
        {70, "802-11-wireless", 2},
        {70, "vpn", 2},
        {60, "802-11-wireless", 2},
        {70, "gsm", 1},
        {70, "cdma", 1},
        {50, "bluetooth", 1},
        {20, "gsm", 0},
        {10, "802-3-ethernet", 0},
        {0, "", 0},
        {40, "", 0},
        {70, "", 0},
        {70, "a kind of tomorrow", 2},
    };
    routes(kDefaultRoute);  // NetworkManager's word counts, not this
    for (const auto& [state, type, expected] : rows) {
        SCOPED_TRACE(std::to_string(state) + " " + type);
        const test::PrivateBus bus;
        const FakeNetworkManager manager(bus, state, type);
        heard.clear();
        watch(bus.address());
        EXPECT_TRUE(hears({expected})) << testing::PrintToString(heard);
        EXPECT_EQ(static_cast<int>(reachability->status()), expected);
        reachability.reset();
    }
}

TEST_F(ReachabilityTest, each_change_is_heard_once_on_the_main_loop) {
    const test::PrivateBus bus;
    FakeNetworkManager manager(bus, 70, "802-3-ethernet");
    watch(bus.address());
    EXPECT_EQ(heard, Statuses{}) << "before the main loop ran";
    ASSERT_TRUE(hears({2}));
    manager.change(70, "802-11-wireless");  // another network, the same status
    manager.change(70, "gsm");
    ASSERT_TRUE(hears({2, 1})) << testing::PrintToString(heard);
    manager.change(20, "");
    ASSERT_TRUE(hears({2, 1, 0})) << testing::PrintToString(heard);
    reachability->startMonitoring();  // does nothing
    manager.change(70, "802-11-wireless");
    ASSERT_TRUE(hears({2, 1, 0, 2})) << testing::PrintToString(heard);
}

TEST_F(ReachabilityTest, without_NetworkManager_the_default_route_decides) {
    const test::PrivateBus bus;
    for (const std::string& address : {bus.address(), std::string("unix:path=/nowhere/bus"), std::string("nonsense")}) {
        for (const auto& [table, expected] : {std::pair(kDefaultRoute, 2), std::pair(kNoRoute, 0)}) {
            SCOPED_TRACE(address);
            routes(table);
            heard.clear();
            watch(address);
            EXPECT_TRUE(hears({expected})) << testing::PrintToString(heard);
            reachability.reset();
        }
    }
}

TEST_F(ReachabilityTest, a_NetworkManager_that_comes_takes_over_and_one_that_goes_leaves_the_route) {
    const test::PrivateBus bus;
    watch(bus.address());
    ASSERT_TRUE(hears({0}));
    auto manager = std::make_unique<FakeNetworkManager>(bus, 70, "gsm");
    ASSERT_TRUE(hears({0, 1})) << testing::PrintToString(heard);
    routes(kDefaultRoute);
    manager.reset();
    ASSERT_TRUE(hears({0, 1, 2})) << testing::PrintToString(heard);
}

TEST_F(ReachabilityTest, a_silent_NetworkManager_or_bus_is_waited_for_only_so_long) {
    routes(kDefaultRoute);
    const test::PrivateBus bus;
    const FakeNetworkManager manager(bus, 70, "gsm", FakeNetworkManager::Manner::KeepsSilent);
    watch(bus.address(), std::chrono::milliseconds(300));
    ASSERT_TRUE(test::eventually([&] { return manager.wasAsked(); }));
    EXPECT_EQ(reachability->status(), ReachabilityStatus::Unknown);
    EXPECT_TRUE(hears({2})) << testing::PrintToString(heard);

    heard.clear();
    const auto silentBus = LocalSocket::listenAt(files.path() / "bus");
    watch("unix:path=" + (files.path() / "bus").string(), std::chrono::milliseconds(100));
    EXPECT_TRUE(hears({2})) << testing::PrintToString(heard);
}

TEST_F(ReachabilityTest, the_newest_handler_alone_hears_beginning_with_the_present_status) {
    watch("unix:path=/nowhere/bus");
    ASSERT_TRUE(test::eventually([&] { return reachability->status() == ReachabilityStatus::NotReachable; }));
    // The first handler's call waits on the main loop; it was replaced before that ran.
    Statuses later;
    reachability->setHandler([&](ReachabilityStatus status) { later.push_back(static_cast<int>(status)); });
    loop.runPending();
    EXPECT_EQ(heard, Statuses{});
    EXPECT_EQ(later, Statuses{0});
    reachability->setHandler(nullptr);
    loop.runPending();
    EXPECT_EQ(later, Statuses{0});
}

TEST_F(ReachabilityTest, nothing_is_heard_after_the_end_which_a_handler_may_bring_about) {
    watch("unix:path=/nowhere/bus");
    ASSERT_TRUE(test::eventually([&] { return loop.waiting() > 0; }));
    reachability.reset();
    loop.runPending();
    EXPECT_EQ(heard, Statuses{});

    watch("unix:path=/nowhere/bus");
    reachability->setHandler([this](ReachabilityStatus) { reachability.reset(); });
    EXPECT_TRUE(test::eventually([&] { return loop.runPending(), !reachability; }));

    // Destroyed while a bus keeps silent: nothing to wait for.
    const auto silentBus = LocalSocket::listenAt(files.path() / "bus");
    watch("unix:path=" + (files.path() / "bus").string());
    const auto begin = std::chrono::steady_clock::now();
    reachability.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

/// In a network of this thread's own: an interface that can be given and taken a default route.
class OwnNetwork {
public:
    static std::optional<OwnNetwork> enter() {
        if (::unshare(CLONE_NEWNET) != 0) return std::nullopt;
        OwnNetwork network;
        network.tunnel_ = Descriptor(::open("/dev/net/tun", O_RDWR | O_CLOEXEC));
        network.control_ = Descriptor(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        ifreq request = named();
        request.ifr_flags = IFF_TUN | IFF_NO_PI;
        if (!network.tunnel_ || ::ioctl(network.tunnel_.get(), TUNSETIFF, &request) != 0) return std::nullopt;
        request = named();
        request.ifr_flags = IFF_UP;
        if (::ioctl(network.control_.get(), SIOCSIFFLAGS, &request) != 0) return std::nullopt;
        return network;
    }
    bool changeDefaultRoute(unsigned long command) {
        rtentry route{};
        char interface[] = "test0";
        route.rt_dst.sa_family = route.rt_genmask.sa_family = AF_INET;
        route.rt_flags = RTF_UP;
        route.rt_dev = interface;
        return ::ioctl(control_.get(), command, &route) == 0;
    }

private:
    static ifreq named() {
        ifreq request{};
        std::string("test0").copy(request.ifr_name, IFNAMSIZ - 1);
        return request;
    }

    Descriptor tunnel_;
    Descriptor control_;
};

TEST_F(ReachabilityTest, routes_of_the_kernel_are_followed_as_they_come_and_go) {
    bool possible = false;
    std::thread([&] {
        auto network = OwnNetwork::enter();
        if (!network) return;
        possible = true;
        // /proc/net is that of the process; this thread's own is told by the reading thread, its child.
        std::filesystem::remove_all(files.path() / "proc");
        std::filesystem::create_directories(files.path() / "proc");
        std::filesystem::create_directory_symlink("/proc/thread-self/net", files.path() / "proc/net");
        watch("unix:path=/nowhere/bus");
        EXPECT_TRUE(hears({0})) << testing::PrintToString(heard);
        EXPECT_TRUE(network->changeDefaultRoute(SIOCADDRT));
        EXPECT_TRUE(hears({0, 2})) << testing::PrintToString(heard);
        EXPECT_TRUE(network->changeDefaultRoute(SIOCDELRT));
        EXPECT_TRUE(hears({0, 2, 0})) << testing::PrintToString(heard);
        reachability.reset();
    }).join();
    if (!possible) GTEST_SKIP() << "a network of its own needs privileges";
}

}  // namespace
}  // namespace halvane::linux
