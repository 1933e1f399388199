#include "systools/networksetup/NetworksetupTool.h"

#include "support/TemporaryDirectory.h"
#include "systools/FakeNetworkService.h"

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <sstream>

namespace halvane::systools {
namespace {

using Calls = std::vector<std::string>;

class NetworksetupTest : public testing::Test {
protected:
    NetworksetupTest() {
        std::ofstream(identity_) << "p12";
        add("/wifi", Medium::Wifi);
        add("/wired", Medium::Wired);
        add("/theirs", Medium::Wired);
        net_.connections.back().connection.owner = "li";
        add("/second", Medium::Wired);
        net_.connections.back().connection.network = "陈 's \"net\"";
    }

    void add(const std::string& handle, Medium medium) {
        net_.connections.push_back({handle,
                                    {.profile = "p",
                                     .owner = "chen",
                                     .medium = medium,
                                     .network = "test_dot1x",
                                     .identityFile = identity_,
                                     .certificateEnds = std::time(nullptr) + 60}});
    }
    int run(const Arguments& arguments) {
        NetworksetupTool tool("chen", net_.connector());
        std::ostringstream out;
        err_.str("");
        net_.calls.clear();
        return tool.run(arguments, out, err_);
    }
    [[nodiscard]] std::string said() const { return err_.str(); }
    void fails(const std::string& handle, ExitCode code, const std::string& device = "dev0") {
        net_.outcomes[handle] = {"test_dot1x", device, toolError(code, "reason " + std::to_string(code))};
    }

    const test::TemporaryDirectory directory_;
    const std::filesystem::path identity_ = directory_.path() / "id.p12";
    test::FakeNetwork net_;
    std::ostringstream err_;
};

TEST_F(NetworksetupTest, joins_by_radio_and_cable_and_one_of_them_is_enough) {
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kSuccess);
    EXPECT_EQ(net_.calls, (Calls{"join /wifi on any", "join /wired on any"}));
    net_.connections[0].connection.certificateEnds = 0;
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kSuccess);
    EXPECT_EQ(net_.calls.size(), 2U) << "one whose end is not known is tried";
    fails("/wifi", kNoDevice, "");
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kSuccess);
    EXPECT_EQ(said(), "");
    EXPECT_EQ(run({"-setairportnetwork", "eth7", "陈 's \"net\""}), kSuccess);
    EXPECT_EQ(net_.calls, Calls{"join /second on eth7"});
}

TEST_F(NetworksetupTest, of_several_failures_the_one_that_got_furthest_counts_and_all_are_told) {
    struct Row {
        ExitCode wifi;
        ExitCode wired;
        ExitCode answer;
    };
    const Row rows[] = {{kNoDevice, kRefused, kRefused},   {kRefused, kNoDevice, kRefused},     {kNoNetwork, kTimedOut, kTimedOut},
                        {kNoDevice, kNoDevice, kNoDevice}, {kNoDevice, kNoNetwork, kNoNetwork}, {kForbidden, kNoDevice, kForbidden}};
    for (const auto& [wifi, wired, answer] : rows) {
        fails("/wifi", wifi, "");
        fails("/wired", wired);
        EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), answer);
        EXPECT_EQ(said(), "networksetup: test_dot1x: reason " + std::to_string(wifi) + "\nnetworksetup: test_dot1x on dev0: reason " +
                              std::to_string(wired) + "\n");
    }
}

TEST_F(NetworksetupTest, nothing_is_tried_without_a_usable_certificate_or_a_known_network) {
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test"}), kNoNetwork);
    net_.connections[0].connection.certificateEnds = 86400;
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kSuccess);
    EXPECT_EQ(net_.calls, Calls{"join /wired on any"}) << "a certificate that is still good is enough";
    net_.connections[1].connection.certificateEnds = 86400;
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kRefused);
    EXPECT_NE(said().find("expired on 1970-01-02"), std::string::npos);
    std::filesystem::remove(identity_);
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kRefused);
    EXPECT_NE(said().find("not in the certificate store"), std::string::npos);
    EXPECT_TRUE(net_.calls.empty());
    net_.running = false;
    EXPECT_EQ(run({"-setairportnetwork", "en0", "test_dot1x"}), kNoService);
}

TEST_F(NetworksetupTest, the_service_takes_this_users_cables_with_it) {
    EXPECT_EQ(run({"-setnetworkserviceenabled", "Wi-Fi", "off"}), kSuccess);
    EXPECT_EQ(net_.calls, (Calls{"radios off", "leave /wired", "leave /second"}));
    EXPECT_EQ(run({"-setnetworkserviceenabled", "Wi-Fi", "on"}), kSuccess);
    EXPECT_EQ(net_.calls, (Calls{"radios on", "join /wired on any", "join /second on any"}));

    // A computer that lost its certificate: on is on, and the cables stay down.
    std::filesystem::remove(identity_);
    EXPECT_EQ(run({"-setnetworkserviceenabled", "Wi-Fi", "on"}), kSuccess);
    EXPECT_EQ(net_.calls, Calls{"radios on"});
    EXPECT_NE(said().find("not in the certificate store"), std::string::npos);

    // Who may not touch the radios still leaves by cable.
    net_.refusesSwitch = true;
    EXPECT_EQ(run({"-setnetworkserviceenabled", "Wi-Fi", "off"}), kForbidden);
    EXPECT_EQ(net_.calls.size(), 3U);
}

TEST_F(NetworksetupTest, arguments_that_make_no_sense_touch_nothing) {
    const std::pair<Arguments, int> rows[] = {{{}, kUsage},
                                              {{"-getinfo"}, kUsage},
                                              {{"-setairportnetwork", "en0"}, kUsage},
                                              {{"-setairportnetwork", "en0", ""}, kUsage},
                                              {{"-setairportnetwork", "", "x"}, kUsage},
                                              {{"-setairportnetwork", "en0", "x", "password"}, kUsage},
                                              {{"-setnetworkserviceenabled", "Wi-Fi", "maybe"}, kUsage},
                                              {{"-setnetworkserviceenabled", "Ethernet", "off"}, kNotFound}};
    for (const auto& [arguments, code] : rows) {
        EXPECT_EQ(run(arguments), code);
        EXPECT_TRUE(net_.calls.empty());
        EXPECT_FALSE(said().empty());
    }
}

}  // namespace
}  // namespace halvane::systools
