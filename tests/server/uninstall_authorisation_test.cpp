#include "device/HVDeviceInfoHelper.h"
#include "linux/http/CurlTransport.h"
#include "server/RunningCompany.h"
#include "service/APIClient.h"
#include "service/HVRequstHelper.h"
#include "session/HDCLUserConfig.h"
#include "support/Eventually.h"
#include "support/FakeDevice.h"
#include "support/FakeReachability.h"
#include "support/ManualMainLoop.h"
#include "support/MemoryDirectories.h"
#include "support/MemoryFileStore.h"
#include "support/MemoryPreferences.h"
#include "support/ThreadQueue.h"
#include "tools/UninstallAuthorisation.h"
#include "util/Json.h"

#include <cstdlib>

namespace halvane::test {
namespace {

using namespace std::chrono_literals;
using tools::UninstallAuthorisation;

/// A signed-in client with the real transport before the real server.
class UninstallByClient : public RunningCompany {
protected:
    static constexpr const char* kSent = "安全码已发送至您的工作手机或邮箱";
    static constexpr const char* kWrong = "安全码错误";
    static constexpr const char* kNoCode = "安全码已失效，请重新申请";
    static constexpr const char* kDone = "卸载成功";

    static void SetUpTestSuite() {
        for (const char* name : {"http_proxy", "all_proxy", "ALL_PROXY"}) ::unsetenv(name);
    }
    UninstallByClient() {
        device.launcher.outputs["/usr/sbin/scutil"] = "laptop\n";
        const auto login = util::Json::decode(signIn("chen.xiao"));
        user.user_loginSuccessWithDic(*util::member(&*login, "data")->dictionary());
    }

    /// What the person reads after the press.
    template <typename Press>
    std::string tipAfter(Press press) {
        std::optional<std::string> tip;
        press([&tip](const UninstallAuthorisation::Reply& reply) { tip = reply.tip; });
        EXPECT_TRUE(eventually([&] {
            mainLoop->runPending();
            return tip.has_value();
        }));
        return tip.value_or("no answer");
    }
    std::string apply() {
        return tipAfter([this](auto answer) { authorisation.applyVertifyCode(answer); });
    }
    std::string verify(const std::string& code) {
        return tipAfter([&](auto answer) { authorisation.verify(code, answer); });
    }
    static std::string otherThan(const std::string& code) { return code == "000000" ? "000001" : "000000"; }

    std::shared_ptr<ManualMainLoop> mainLoop = std::make_shared<ManualMainLoop>();
    MemoryPreferences preferences;
    MemoryFileStore files;
    MemoryDirectories directories;
    FakeReachability reachability;
    FakeDevice device;
    session::HDCLUserConfig user{preferences, files, directories};
    linux_http::CurlTransport transport;
    service::APIClient client{{transport, mainLoop, user, directories, reachability, "Halvane/1.0", "zh-CN"}};
    service::HVRequstHelper requests{client, url};
    ThreadQueue toolQueue;
    UninstallAuthorisation authorisation{{toolQueue, mainLoop, user, requests, device.helper}};
};

TEST_F(UninstallByClient, the_mailed_code_authorises_once_and_a_wrong_one_before_it_does_no_harm) {
    EXPECT_EQ(verify("123456"), kNoCode) << "nobody asked for one yet";
    EXPECT_EQ(apply(), kSent);
    const auto code = mailedCode(company);
    ASSERT_EQ(code.size(), 6U);
    EXPECT_EQ(verify(otherThan(code)), kWrong);
    EXPECT_EQ(verify("abcdef"), kWrong);
    EXPECT_EQ(verify(code), kDone);
    EXPECT_EQ(verify(code), kNoCode);
}

TEST_F(UninstallByClient, a_code_that_came_too_late_is_to_be_asked_for_again) {
    EXPECT_EQ(apply(), kSent);
    time.turn(10min);
    EXPECT_EQ(verify(mailedCode(company)), kNoCode);
    EXPECT_EQ(apply(), kSent);
    EXPECT_EQ(verify(mailedCode(company)), kDone);
}

TEST_F(UninstallByClient, the_sixth_try_fails_even_with_the_right_code_until_a_new_one_is_asked_for) {
    EXPECT_EQ(apply(), kSent);
    const auto code = mailedCode(company);
    for (int i = 1; i <= 5; ++i) EXPECT_EQ(verify(otherThan(code)), kWrong) << "try " << i;
    EXPECT_EQ(verify(code), kNoCode);
    EXPECT_EQ(apply(), kSent);
    EXPECT_EQ(verify(mailedCode(company)), kDone);
}

TEST_F(UninstallByClient, a_session_that_the_server_does_not_know_is_refused_in_its_words) {
    user.user_loginSuccessWithDic(util::Dictionary{{"job_number", "1001"}, {"token", "gone"}, {"user_name", "chen.xiao@example.com"}});
    EXPECT_EQ(verify("123456"), "登录已过期，请重新登录");
}

}  // namespace
}  // namespace halvane::test
