#include "device/CompanyAccess.h"

#include "support/FakeDevice.h"
#include "support/ManualMainLoop.h"
#include "support/ThreadQueue.h"

#include <gtest/gtest.h>

#include <future>

namespace halvane::device {
namespace {

class CompanyAccessTest : public testing::Test {
protected:
    using Starts = std::vector<std::string>;
    static Starts revoking(const std::string& name) {
        Starts starts{"/usr/sbin/networksetup -setnetworkserviceenabled Wi-Fi off",
                      "/usr/sbin/networksetup -setnetworkserviceenabled Wi-Fi on"};
        if (!name.empty()) starts.insert(starts.begin(), "/usr/bin/security delete-certificate -c " + name);
        return starts;
    }
    Starts revoked(const std::optional<std::string>& certificateName) {
        device.launcher.starts.clear();
        access.revoke(certificateName);
        EXPECT_TRUE(device.launcher.starts.empty()) << "nothing runs inside the call";
        queue.runPending();
        return device.launcher.starts;
    }

    test::ManualMainLoop queue;
    test::FakeDevice device;
    CompanyAccess access{{queue, device.helper}};
};

TEST_F(CompanyAccessTest, certificate_goes_first_then_the_network_off_and_on) {
    const std::pair<std::optional<std::string>, const char*> rows[] = {
        {"chen.xiao.pfx", "chen.xiao"},
        {"a.pfxb.pfx", "ab"},
        {"plain", "plain"},
        {"A.PFX", "A.PFX"},
        {".pfx", ""},
        {"", ""},
        {std::nullopt, ""},
    };
    for (const auto& [given, name] : rows) EXPECT_EQ(revoked(given), revoking(name)) << given.value_or("absent");
}

TEST_F(CompanyAccessTest, tools_that_fail_do_not_keep_the_others_from_running) {
    EXPECT_EQ(revoked("c.pfx").size(), 3u);
    EXPECT_EQ(device.log.lines().size(), 3u) << "none of the three could be started";
}

TEST_F(CompanyAccessTest, calls_that_wait_behind_a_busy_tool_do_not_pile_up) {
    for (int poll = 0; poll < 20; ++poll) access.revoke("c.pfx");
    queue.runPending();
    EXPECT_EQ(device.launcher.starts, revoking("c"));
    EXPECT_EQ(revoked("c.pfx"), revoking("c")) << "the next call acts again";
    access.revoke("c.pfx");
    queue.async([this] { device.launcher.starts.push_back("an installation"); });
    access.revoke("c.pfx");
    device.launcher.starts.clear();
    queue.runPending();
    ASSERT_EQ(device.launcher.starts.size(), 4u);
    EXPECT_EQ(device.launcher.starts[0], "an installation") << "the last word counts";
    access.revoke("c.pfx");
    access.revoke("d.pfx");
    device.launcher.starts.clear();
    queue.runPending();
    EXPECT_EQ(device.launcher.starts.size(), 6u) << "another certificate is another matter";
}

TEST_F(CompanyAccessTest, calls_come_while_the_tools_run) {
    {
        test::ThreadQueue tools;
        CompanyAccess busy({tools, device.helper});
        for (int poll = 0; poll < 50; ++poll) busy.revoke("c.pfx");
        std::promise<void> done;
        tools.async([&done] { done.set_value(); });
        done.get_future().wait();
    }
    ASSERT_GE(device.launcher.starts.size(), 3u);
    EXPECT_EQ(device.launcher.starts.size() % 3, 0u) << "each of them whole";
    EXPECT_EQ(device.launcher.starts.back(), revoking("c").back());
}

}  // namespace
}  // namespace halvane::device
