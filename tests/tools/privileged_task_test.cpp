#include "tools/STPrivilegedTask.h"

#include "platform/ScriptInterpreter.h"
#include "support/FakeAuthorization.h"
#include "tools/AdministratorScript.h"

#include <gtest/gtest.h>

namespace halvane::tools {
namespace {

using Calls = std::vector<std::string>;

constexpr std::chrono::milliseconds kTick{50};

class PrivilegedTaskTest : public testing::Test {
protected:
    PrivilegedTaskTest() {
        on.notifications.addObserver(STPrivilegedTask::kDidTerminateNotification, [this](const util::NotificationCenter::Object& object) {
            events.push_back("notification");
            const auto ended = std::static_pointer_cast<STPrivilegedTask>(object);
            EXPECT_TRUE(task == nullptr || task == ended);
            EXPECT_FALSE(ended->isRunning());
        });
        task->terminationHandler = [this](STPrivilegedTask& ended) {
            events.push_back("handler " + std::to_string(ended.terminationStatus()));
        };
    }

    test::FakeAdministrator on;
    std::shared_ptr<STPrivilegedTask> task = STPrivilegedTask::initWithLaunchPath(
        on.collaborators, {.launchPath = "/bin/x", .arguments = {"a", "b c"}, .currentDirectoryPath = "/there"});
    Calls events;
};

TEST_F(PrivilegedTaskTest, asks_for_the_right_to_run_that_program_then_starts_it_and_gives_the_authorisation_back) {
    EXPECT_EQ(task->launch(), 0);
    EXPECT_EQ(on.authorization.calls,
              (Calls{"create", "copyRights 7 flags 19 system.privilege.admin=/bin/x", "execute 7 /bin/x [a] [b c] in /there", "free 7"}));
    EXPECT_TRUE(task->isRunning());
    EXPECT_EQ(task->processIdentifier(), 4711);
    EXPECT_EQ(task->outputFileHandle(), on.authorization.output);
    ASSERT_NE(task->outputFileHandle(), nullptr);
    EXPECT_TRUE(on.log.lines().empty());
}

TEST_F(PrivilegedTaskTest, a_second_launch_says_so_and_asks_nothing) {
    ASSERT_EQ(task->launch(), 0);
    on.authorization.calls.clear();
    EXPECT_EQ(task->launch(), 0);
    EXPECT_EQ(task->launchWithAuthorization(9), 0);
    EXPECT_TRUE(on.authorization.calls.empty());
    EXPECT_EQ(on.log.lines(), Calls(2, "Task already running: " + task->description()));
}

TEST_F(PrivilegedTaskTest, every_refusal_is_answered_as_it_came_and_leaves_the_task_to_be_launched_again) {
    auto& authorization = on.authorization;
    authorization.createStatus = -60008;
    EXPECT_EQ(task->launch(), -60008);
    EXPECT_EQ(authorization.calls, Calls{"create"});
    authorization.createStatus = 0;

    authorization.calls.clear();
    authorization.rightsStatus = platform::kAuthorizationCanceled;
    EXPECT_EQ(task->launch(), -60006);
    EXPECT_EQ(authorization.calls.size(), 2U) << "neither executed nor freed";
    authorization.rightsStatus = 0;

    authorization.calls.clear();
    authorization.executeStatus = platform::kAuthorizationToolExecuteFailure;
    EXPECT_EQ(task->launch(), -60031);
    EXPECT_EQ(authorization.calls.back(), "free 7");
    authorization.executeStatus = 0;
    EXPECT_FALSE(task->isRunning());
    EXPECT_EQ(on.mainLoop.waiting(), 0U);
    EXPECT_TRUE(on.log.lines().empty());

    authorization.available = false;
    authorization.calls.clear();
    EXPECT_FALSE(STPrivilegedTask::authorizationFunctionAvailable(authorization));
    EXPECT_EQ(task->launch(), -70001);
    EXPECT_EQ(task->launchWithAuthorization(9), -70001);
    EXPECT_TRUE(authorization.calls.empty());
    EXPECT_EQ(on.log.lines(), Calls(2, "AuthorizationExecuteWithPrivileges() function not available on this system"));
    authorization.available = true;
    EXPECT_EQ(task->launch(), 0);
}

TEST_F(PrivilegedTaskTest, a_tick_notices_the_end_and_tells_notification_then_handler_once) {
    ASSERT_EQ(task->launch(), 0);
    on.mainLoop.advance(kTick - std::chrono::milliseconds(1));
    EXPECT_EQ(on.authorization.collections, 0);
    on.mainLoop.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(on.authorization.collections, 1);
    EXPECT_TRUE(task->isRunning());
    EXPECT_EQ(on.authorization.lastCollected, 4711);
    task->terminate();
    EXPECT_TRUE(task->isRunning());

    on.authorization.waitStatus = 0x2A00;
    on.authorization.endsAfter = 1;
    on.mainLoop.advance(kTick);
    EXPECT_EQ(events, (Calls{"notification", "handler 42"}));
    EXPECT_EQ(task->terminationStatus(), 42);
    on.mainLoop.advance(kTick * 10);
    EXPECT_EQ(events.size(), 2U);
    EXPECT_EQ(on.mainLoop.waiting(), 0U);
}

TEST_F(PrivilegedTaskTest, a_handler_may_launch_the_task_again) {
    on.authorization.endsAfter = 1;
    on.authorization.waitStatus = 9;  // ended by a signal: no exit code
    int ended = 0;
    task->terminationHandler = [&](STPrivilegedTask& again) {
        EXPECT_EQ(again.terminationStatus(), 0);
        if (++ended == 1) {
            EXPECT_EQ(again.launch(), 0);
        }
    };
    ASSERT_EQ(task->launch(), 0);
    on.mainLoop.advance(kTick * 4);
    EXPECT_EQ(ended, 2);
}

TEST_F(PrivilegedTaskTest, a_task_that_nobody_holds_lives_until_its_end_and_its_handler_may_take_itself_off) {
    const std::weak_ptr<STPrivilegedTask> watched = task;
    std::string captured = "what the handler holds";
    task->terminationHandler = [this, captured](STPrivilegedTask& ended) {
        ended.terminationHandler = nullptr;
        events.push_back(captured);
    };
    ASSERT_EQ(task->launch(), 0);
    task.reset();
    on.mainLoop.advance(kTick * 3);
    EXPECT_FALSE(watched.expired());
    on.authorization.endsAfter = 1;
    on.mainLoop.advance(kTick * 2);
    EXPECT_EQ(events, (Calls{"notification", captured}));
    EXPECT_TRUE(watched.expired());
}

TEST_F(PrivilegedTaskTest, waiting_looks_again_and_again_and_tells_nobody) {
    ASSERT_EQ(task->launch(), 0);
    on.authorization.endsAfter = 1000;
    on.authorization.waitStatus = 0x0300;
    task->waitUntilExit();
    EXPECT_EQ(on.authorization.collections, 1000);
    EXPECT_EQ(task->terminationStatus(), 3);
    EXPECT_FALSE(task->isRunning());
    on.mainLoop.advance(kTick * 4);
    EXPECT_EQ(on.authorization.collections, 1000);
    EXPECT_TRUE(events.empty());

    task->waitUntilExit();
    ASSERT_EQ(on.log.lines().size(), 1U);
    EXPECT_TRUE(on.log.lines()[0].starts_with("Task <STPrivilegedTask: 0x"));
    EXPECT_TRUE(on.log.lines()[0].ends_with("> is not running"));
}

TEST_F(PrivilegedTaskTest, the_description_has_path_and_arguments_and_never_the_directory) {
    EXPECT_TRUE(task->description().ends_with("> /bin/x 'a' 'b c'"));
    EXPECT_EQ(task->description().find("CWD"), std::string::npos);
    const auto empty = STPrivilegedTask::initWithLaunchPath(on.collaborators, {});
    EXPECT_TRUE(empty->description().ends_with("> (null)"));
    EXPECT_EQ(empty->currentDirectoryPath, "/here");
    EXPECT_FALSE(empty->launchPath);
    EXPECT_EQ(empty->outputFileHandle(), nullptr);
}

TEST_F(PrivilegedTaskTest, texts_go_to_the_system_up_to_their_first_nul) {
    task->launchPath = std::string("/bin/x\0y", 8);
    task->arguments = {std::string("a\0b", 3), ""};
    ASSERT_EQ(task->launch(), 0);
    EXPECT_EQ(on.authorization.calls[1], "copyRights 7 flags 19 system.privilege.admin=/bin/x");
    EXPECT_EQ(on.authorization.calls[2], "execute 7 /bin/x [a] [] in /there");
}

TEST_F(PrivilegedTaskTest, the_short_way_launches_waits_and_answers_the_task_whatever_came) {
    on.authorization.endsAfter = 2;
    const auto done = STPrivilegedTask::launchedPrivilegedTaskWithLaunchPath(on.collaborators, {.launchPath = "/bin/y"});
    EXPECT_EQ(on.authorization.calls[2], "execute 7 /bin/y in /here");
    EXPECT_FALSE(done->isRunning());

    on.authorization.calls.clear();
    STPrivilegedTask::launchedPrivilegedTaskWithLaunchPath(on.collaborators, {.launchPath = "/bin/y"}, 9);
    EXPECT_EQ(on.authorization.calls, Calls{"execute 9 /bin/y in /here"});

    on.authorization.executeStatus = -60031;
    const auto failed = STPrivilegedTask::launchedPrivilegedTaskWithLaunchPath(on.collaborators, {.launchPath = "/bin/y"}, 9);
    ASSERT_NE(failed, nullptr);
    EXPECT_TRUE(on.log.lines().back().ends_with("is not running"));
}

class FakeInterpreter final : public platform::ScriptInterpreter {
public:
    std::variant<std::string, Failure> execute(const std::string& source) override {
        sources.push_back(source);
        return answer;
    }
    std::variant<std::string, Failure> answer;
    Calls sources;
};

TEST(AdministratorScriptTest, the_script_is_put_together_without_quoting_and_logged) {
    FakeInterpreter interpreter;
    test::RecordingLog log;
    interpreter.answer = "done";
    const auto result = runShellScriptAsAdministrator(interpreter, log, "/bin/ls", {"-l", "a b"}, true);
    EXPECT_TRUE(result.success);
    EXPECT_EQ(result.output, "done");
    EXPECT_FALSE(result.errorDescription);
    static_cast<void>(runShellScriptAsAdministrator(interpreter, log, "date", {}, false));
    const Calls expected{"do shell script \"/bin/ls -l a b\" with administrator privileges", "do shell script \"date \" "};
    EXPECT_EQ(interpreter.sources, expected);
    EXPECT_EQ(log.lines(), (Calls{"script = " + expected[0], "script = " + expected[1]}));
}

TEST(AdministratorScriptTest, failures_are_described) {
    using Failure = platform::ScriptInterpreter::Failure;
    const std::tuple<const char*, Failure, const char*> rows[] = {
        {"cancelled", {-128, "User canceled."}, "The administrator password is required to do this."},
        {"failed", {1, "no such file"}, "no such file"},
        {"no number", {std::nullopt, "odd"}, "odd"},
        {"nothing known", {}, ""},
    };
    for (const auto& [name, failure, text] : rows) {
        SCOPED_TRACE(name);
        FakeInterpreter interpreter;
        test::RecordingLog log;
        interpreter.answer = failure;
        const auto result = runShellScriptAsAdministrator(interpreter, log, "x", {}, true);
        EXPECT_FALSE(result.success);
        EXPECT_EQ(result.errorDescription, text);
        EXPECT_FALSE(result.output);
    }
}

}  // namespace
}  // namespace halvane::tools
