#include "linux/FreedesktopNotifications.h"

#include "linux/LocalSocket.h"
#include "support/BusService.h"
#include "support/Eventually.h"
#include "support/RecordingLog.h"
#include "support/TemporaryDirectory.h"
#include "support/TestEnvironment.h"
#include "support/ThreadQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <mutex>
#include <string_view>

namespace halvane::linux {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;
using Clock = std::chrono::steady_clock;
using Urgency = platform::DesktopNotifications::Urgency;

/// The notification service of a desktop: keeps what it is given, and misbehaves as told.
class Desktop {
public:
    enum class Manner { Shows, Refuses, StaysSilent, AnswersNonsense };

    explicit Desktop(const test::PrivateBus& bus, Manner manner = Manner::Shows, bool markup = true)
        : manner_(manner),
          markup_(markup),
          service_(bus, "org.freedesktop.Notifications", "/org/freedesktop/Notifications", [this](auto* call) { return answer(call); }) {}

    /// "id<replaced> app|icon|summary|body|urgency|desktop-entry", in their order.
    [[nodiscard]] std::vector<std::string> shown() const {
        const std::lock_guard lock(mutex_);
        return shown_;
    }
    /// Who sent the last one.
    [[nodiscard]] std::string sender() const {
        const std::lock_guard lock(mutex_);
        return sender_;
    }

private:
    int answer(sd_bus_message* call) {
        const std::string_view member = sd_bus_message_get_member(call);
        if (member != "Notify" && member != "GetCapabilities") return 0;
        switch (manner_) {
            case Manner::StaysSilent:
                return 1;
            case Manner::AnswersNonsense:
                return sd_bus_reply_method_return(call, "s", "maybe");
            case Manner::Refuses:
                return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many\nnotices");
            case Manner::Shows:
                break;
        }
        if (member == "Notify") return sd_bus_reply_method_return(call, "u", keep(call));
        return markup_ ? sd_bus_reply_method_return(call, "as", 2, "body", "body-markup")
                       : sd_bus_reply_method_return(call, "as", 1, "body");
    }
    unsigned keep(sd_bus_message* call) {
        const char *app = "", *icon = "", *summary = "", *body = "";
        unsigned replaced = 0;
        sd_bus_message_read(call, "susss", &app, &replaced, &icon, &summary, &body);
        sd_bus_message_skip(call, "as");
        std::string urgency, entry;
        sd_bus_message_enter_container(call, 'a', "{sv}");
        while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
            const char* key = "";
            sd_bus_message_read(call, "s", &key);
            if (std::string_view(key) == "urgency") {
                std::uint8_t level = 99;
                sd_bus_message_read(call, "v", "y", &level);
                urgency = std::to_string(level);
            } else {
                const char* text = "";
                sd_bus_message_read(call, "v", "s", &text);
                entry = std::string(key) + "=" + text;
            }
            sd_bus_message_exit_container(call);
        }
        const std::lock_guard lock(mutex_);
        const unsigned id = replaced != 0 ? replaced : 40 + static_cast<unsigned>(shown_.size());
        shown_.push_back(std::to_string(id) + "<" + std::to_string(replaced) + " " + app + "|" + icon + "|" + summary + "|" + body + "|" +
                         urgency + "|" + entry);
        sender_ = sd_bus_message_get_sender(call);
        return id;
    }

    const Manner manner_;
    const bool markup_;
    mutable std::mutex mutex_;  // guards both below
    std::vector<std::string> shown_;
    std::string sender_;
    test::BusService service_;
};

class NotificationsTest : public testing::Test {
protected:
    static test::TestEnvironment on(const std::string& address) {
        return {{"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"}, {{"DBUS_SESSION_BUS_ADDRESS", address}}};
    }
    FreedesktopNotifications client(std::chrono::milliseconds deadline = kNever) { return {queue, log, deadline}; }
    /// Shows a notice: how long the queue was busy with it.
    std::chrono::milliseconds show(FreedesktopNotifications& notifications, const std::string& subject = "computer",
                                   const std::string& body = "正文", Urgency urgency = Urgency::Critical) {
        const auto begin = Clock::now();
        notifications.show({.subject = subject, .summary = "<摘要>", .body = body, .urgency = urgency});
        std::promise<void> done;
        queue->async([&done] { done.set_value(); });
        EXPECT_EQ(done.get_future().wait_for(60s), std::future_status::ready);
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    }
    /// Two notices that are not shown, and the one line that tells why.
    void expectSilence(const std::string& reason, std::chrono::milliseconds deadline = kNever) {
        auto notifications = client(deadline);
        EXPECT_LT(show(notifications) + show(notifications), 2 * std::min(deadline, 10'000ms) + 10s);
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_EQ(log.lines().front().find("notifications: nothing is shown: "), 0u);
        EXPECT_TRUE(log.contains(reason)) << log.lines().front();
    }

    /// Whoever waits for this shows.
    static constexpr std::chrono::milliseconds kNever{50'000};

    test::RecordingLog log;
    const test::PrivateBus bus;
    // Before the queue ends.
    const std::shared_ptr<test::ThreadQueue> queue = std::make_shared<test::ThreadQueue>();
};

TEST_F(NotificationsTest, notice_reaches_the_desktop_and_a_newer_one_takes_its_place) {
    const Desktop desktop(bus);
    const auto environment = on(bus.address());
    auto notifications = client();
    show(notifications, "computer");
    show(notifications, "update", "正文", Urgency::Normal);
    show(notifications, "computer", "新");
    EXPECT_EQ(desktop.shown(), (Lines{"40<0 Halvane|com.halvane.Halvane|<摘要>|正文|2|desktop-entry=com.halvane.Halvane",
                                      "41<0 Halvane|com.halvane.Halvane|<摘要>|正文|1|desktop-entry=com.halvane.Halvane",
                                      "40<40 Halvane|com.halvane.Halvane|<摘要>|新|2|desktop-entry=com.halvane.Halvane"}));
    EXPECT_EQ(log.lines(), Lines{});
}

TEST_F(NotificationsTest, program_stays_on_the_bus_because_desktops_take_away_what_others_left_behind) {
    const Desktop desktop(bus);
    const auto environment = on(bus.address());
    auto notifications = client();
    show(notifications);
    const auto first = desktop.sender();
    show(notifications);
    EXPECT_EQ(desktop.sender(), first);
}

TEST_F(NotificationsTest, body_is_plain_text_whatever_the_desktop_makes_of_markup) {
    const std::pair<bool, const char*> rows[] = {{true, "|a &amp;amp; &lt;b&gt;\"'|"}, {false, "|a &amp; <b>\"'|"}};
    for (const auto& [markup, expected] : rows) {
        const test::PrivateBus own;
        const Desktop desktop(own, Desktop::Manner::Shows, markup);
        const auto environment = on(own.address());
        auto notifications = client();
        show(notifications, "computer", "a &amp; <b>\"'");
        ASSERT_EQ(desktop.shown().size(), 1u);
        EXPECT_NE(desktop.shown()[0].find(expected), std::string::npos) << desktop.shown()[0];
    }
}

TEST_F(NotificationsTest, without_a_service_there_is_one_line_in_the_log) {
    const auto environment = on(bus.address());
    expectSilence("org.freedesktop.Notifications");
}

TEST_F(NotificationsTest, without_a_bus_there_is_one_line_in_the_log) {
    for (const char* address : {"", "unix:path=/nowhere/bus", "autolaunch:", "nonsense", "unix:path=/dev/null"}) {
        SCOPED_TRACE(address);
        const auto environment = on(address);
        auto notifications = client();
        EXPECT_LT(show(notifications), 10s);
    }
    EXPECT_EQ(log.lines().size(), 5u) << "one of each";
    EXPECT_TRUE(log.contains("there is no session bus"));
}

TEST_F(NotificationsTest, service_that_errs_is_one_line_in_the_log) {
    const auto environment = on(bus.address());
    const Desktop desktop(bus, Desktop::Manner::Refuses);
    expectSilence("too many\nnotices");
}

TEST_F(NotificationsTest, service_that_answers_nonsense_is_one_line_in_the_log) {
    const auto environment = on(bus.address());
    const Desktop desktop(bus, Desktop::Manner::AnswersNonsense);
    expectSilence("GetCapabilities");
}

TEST_F(NotificationsTest, silent_service_or_bus_holds_the_queue_no_longer_than_the_deadline_and_the_caller_not_at_all) {
    const auto environment = on(bus.address());
    const Desktop desktop(bus, Desktop::Manner::StaysSilent);
    expectSilence("no answer in time", 200ms);

    const test::TemporaryDirectory directory;
    const auto silentBus = LocalSocket::listenAt(directory.path() / "bus");
    const auto other = on("unix:path=" + (directory.path() / "bus").string());
    auto notifications = client(200ms);
    EXPECT_GE(show(notifications), 200ms);
    const auto begin = Clock::now();
    notifications.show({.subject = "computer", .summary = "s", .body = "b"});
    EXPECT_LT(Clock::now() - begin, 150ms) << "less than the deadline";
    show(notifications);  // the environment stays until the queue is through
}

TEST_F(NotificationsTest, service_or_bus_that_comes_later_is_used) {
    auto notifications = client();
    {
        const auto nowhere = on("unix:path=/nowhere/bus");
        show(notifications);
    }
    const auto environment = on(bus.address());
    show(notifications);
    {
        const Desktop desktop(bus);
        show(notifications);
        EXPECT_EQ(desktop.shown().size(), 1u);
    }
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(NotificationsTest, bus_that_ends_takes_neither_the_program_nor_the_next_notice_with_it) {
    auto first = std::make_unique<test::PrivateBus>();
    auto notifications = client();
    {
        const Desktop desktop(*first);
        const auto environment = on(first->address());
        show(notifications);
    }
    first.reset();
    const Desktop desktop(bus);
    const auto environment = on(bus.address());
    // The news of the end may still be on its way.
    ASSERT_TRUE(test::eventually([&] {
        show(notifications);
        return !desktop.shown().empty();
    }));
    EXPECT_EQ(desktop.shown()[0].find("40<0 "), 0u) << "nothing of the old desktop's is replaced";
}

}  // namespace
}  // namespace halvane::linux
