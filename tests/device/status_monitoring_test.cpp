#include "device/HVDeviceStatusMonitoring.h"

#include "support/FakeDevice.h"
#include "support/ScriptedClient.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace halvane::device {
namespace {

class StatusMonitoringTest : public testing::Test {
protected:
    StatusMonitoringTest() {
        signIn("chen.xiao@example.com");
        watch->setMonitoringBlock(
            [this](bool locked, bool lost) { told.push_back(std::string(locked ? "locked" : "free") + (lost ? " lost" : "")); });
    }
    void signIn(const util::Value& userName, const char* token = "t-1") {
        on.user.user_loginSuccessWithDic(util::Dictionary{{"job_number", "1001"}, {"token", token}, {"user_name", userName}});
    }
    /// Passes half a minute, in which the facts are read too.
    void halfMinute() {
        on.mainLoop->advance(30s);
        facts.runPending();
        on.mainLoop->runPending();
    }
    [[nodiscard]] std::size_t asked() const { return on.transport.exchanges.size(); }
    void reply(const std::string& body) {
        on.transport.replyJson(asked() - 1, body);
        on.mainLoop->runPending();
    }
    static std::string status(const char* lock, const char* lose) {
        return std::string(R"({"code":200,"data":{"lock_status":)") + lock + R"(,"lose_status":)" + lose + "}}";
    }

    test::ScriptedClient on;
    test::FakeDevice device;
    test::ManualMainLoop facts;
    std::unique_ptr<HVDeviceStatusMonitoring> watch = std::make_unique<HVDeviceStatusMonitoring>(
        HVDeviceStatusMonitoring::Collaborators{on.mainLoop, facts, on.user, on.requests, device.helper});
    std::vector<std::string> told;
    using Told = std::vector<std::string>;
};

TEST_F(StatusMonitoringTest, first_question_goes_out_after_half_a_minute_and_then_one_each_half_minute) {
    watch->startMonitoring();
    on.mainLoop->advance(20s);
    watch->startMonitoring();
    on.mainLoop->advance(9'999ms);
    facts.runPending();
    on.mainLoop->runPending();
    EXPECT_EQ(asked(), 0u);
    on.mainLoop->advance(1ms);
    facts.runPending();
    on.mainLoop->runPending();
    ASSERT_EQ(asked(), 1u);
    EXPECT_EQ(on.last().request.method + " " + on.last().request.url, "POST http://company.test/api/client/user/equipment_status");
    EXPECT_EQ(on.last().request.body, R"({"username":"chen.xiao","sn":"HV-0001"})");
    halfMinute();
    EXPECT_EQ(asked(), 2u) << "without waiting for the first answer";
    watch->stopMonitoring();
    halfMinute();
    EXPECT_EQ(asked(), 2u);
    watch->startMonitoring();
    halfMinute();
    EXPECT_EQ(asked(), 3u);
}

TEST_F(StatusMonitoringTest, question_names_the_person_and_the_computer) {
    const struct {
        const char* name;
        util::Value userName;
        util::Value serialNumber;
        const char* body;
    } rows[] = {
        {"without a mail domain", "chen.xiao", "S", R"({"username":"chen.xiao","sn":"S"})"},
        {"two signs", "a@b@c", "S", R"({"username":"a","sn":"S"})"},
        {"no name", util::Value(), "S", R"({"username":"","sn":"S"})"},
        {"no serial number", "a@b", util::Value(), R"({"username":"a","sn":""})"},
    };
    for (const auto& row : rows) {
        signIn(row.userName);
        device.properties.set("IOPlatformSerialNumber", row.serialNumber);
        watch->deviceMonitoring();
        facts.runPending();
        on.mainLoop->runPending();
        EXPECT_EQ(on.last().request.body, row.body) << row.name;
    }
}

TEST_F(StatusMonitoringTest, only_a_reply_with_data_is_an_answer_and_only_Yes_is_yes) {
    const struct {
        const char* name;
        std::string reply;
        Told told;
    } rows[] = {
        {"neither", status(R"("No")", R"("No")"), {"free"}},
        {"locked", status(R"("Yes")", R"("No")"), {"locked"}},
        {"lost", status(R"("No")", R"("Yes")"), {"free lost"}},
        {"both", status(R"("Yes")", R"("Yes")"), {"locked lost"}},
        {"other spellings", status(R"("yes")", R"(" Yes")"), {"free"}},
        {"truth", status("true", "1"), {"free"}},
        {"null", status("null", "{}"), {"free"}},
        {"one key", R"({"code":200,"data":{"lock_status":"Yes"}})", {"locked"}},
        {"other keys", R"({"code":200,"data":{"locked":"Yes"}})", {"free"}},
        {"code in text", R"({"code":"200","data":{"lose_status":"Yes"}})", {"free lost"}},
        {"refused", R"({"code":401,"data":{"lose_status":"Yes"}})", {}},
        {"no code", R"({"data":{"lose_status":"Yes"}})", {}},
        {"no data", R"({"code":200})", {}},
        {"empty data", R"({"code":200,"data":{}})", {}},
        {"null data", R"({"code":200,"data":null})", {}},
        {"data of another kind", R"({"code":200,"data":["Yes"]})", {}},
        {"text for data", R"({"code":200,"data":"Yes"})", {}},
        {"no object", R"(["Yes"])", {}},
        {"a page", "<html>502</html>", {}},
        {"nothing", "", {}},
    };
    watch->startMonitoring();
    for (const auto& row : rows) {
        told.clear();
        halfMinute();
        reply(row.reply);
        EXPECT_EQ(told, row.told) << row.name;
    }
}

TEST_F(StatusMonitoringTest, a_thousand_failures_change_nothing_and_leave_nothing_behind) {
    watch->startMonitoring();
    for (int poll = 0; poll < 1000; ++poll) {
        halfMinute();
        ASSERT_EQ(asked(), static_cast<std::size_t>(poll) + 1);
        on.transport.fail(asked() - 1, util::UrlError::CannotConnect);
        on.mainLoop->runPending();
    }
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(on.mainLoop->waiting(), 1u) << "the timer alone";
    halfMinute();
    reply(status(R"("Yes")", R"("No")"));
    EXPECT_EQ(told, Told{"locked"}) << "and it watches on";
}

TEST_F(StatusMonitoringTest, nobody_is_asked_about_and_no_answer_is_for_another) {
    watch->startMonitoring();
    on.user.user_deleteUserInfo();
    halfMinute();
    EXPECT_EQ(asked(), 0u) << "nobody is signed in";
    signIn("chen.xiao@example.com");
    on.mainLoop->advance(30s);
    on.user.user_deleteUserInfo();
    facts.runPending();
    on.mainLoop->runPending();
    EXPECT_EQ(asked(), 0u) << "signed out while the facts were read";

    const std::pair<const char*, std::function<void()>> meanwhile[] = {
        {"signed out", [] {}},
        {"somebody else came", [this] { signIn("li.na@example.com"); }},
        {"the same person came anew", [this] { signIn("chen.xiao@example.com", "t-2"); }},
    };
    for (const auto& [name, happens] : meanwhile) {
        signIn("chen.xiao@example.com");
        halfMinute();
        on.user.user_deleteUserInfo();
        happens();
        reply(status(R"("Yes")", R"("Yes")"));
        EXPECT_TRUE(told.empty()) << name;
    }
}

TEST_F(StatusMonitoringTest, callback_may_end_the_watch_and_replies_may_come_after_its_end) {
    watch->startMonitoring();
    halfMinute();
    watch->setMonitoringBlock([this](bool, bool) {
        told.push_back("ended");
        watch.reset();
    });
    const auto first = asked() - 1;
    halfMinute();
    on.mainLoop->advance(30s);
    reply(status(R"("Yes")", R"("No")"));
    EXPECT_EQ(told, Told{"ended"});
    on.transport.replyJson(first, status(R"("Yes")", R"("No")"));
    facts.runPending();
    on.mainLoop->runPending();
    on.mainLoop->advance(60s);
    EXPECT_EQ(told, Told{"ended"});
    EXPECT_EQ(asked(), 2u);
}

}  // namespace
}  // namespace halvane::device
